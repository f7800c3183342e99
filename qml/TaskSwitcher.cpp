// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "TaskSwitcher.h"

#include <QDBusError>
#include <QMetaObject>

TaskSwitcher::TaskSwitcher(QObject* parent)
    : ServiceObject(parent)
{
    connect(&mConnector, &TelvaroTaskSwitcherDBusConnector::viewsChanged, this, &TaskSwitcher::scheduleUpdate);
    connect(&mConnector, &TelvaroTaskSwitcherDBusConnector::currentViewChanged, this,
            &TaskSwitcher::onCurrentViewNotified);
    if (isAvailable()) {
        readAll();
    }
}

ViewListModel* TaskSwitcher::getViews()
{
    return &mViews;
}

QString TaskSwitcher::getCurrentView() const
{
    return mCurrentView;
}

int TaskSwitcher::getCurrentIndex() const
{
    return mCurrentIndex;
}

bool TaskSwitcher::switchTo(const QString& uuid)
{
    TelvaroTaskSwitcherDBusConnector::TaskSwitcherEntry view;
    view.uuid = uuid;
    const QDBusError error = mConnector.setCurrentView(view);
    if (error.isValid()) {
        Q_EMIT switchFailed(error.message());
        return false;
    }
    return true;
}

bool TaskSwitcher::switchToView(const QString& appId, uint sortIndex)
{
    return mConnector.switchToView(appId, sortIndex);
}

bool TaskSwitcher::next()
{
    return mConnector.iterateViews(false);
}

bool TaskSwitcher::previous()
{
    return mConnector.iterateViews(true);
}

void TaskSwitcher::surfaceToTop(const QString& processName)
{
    mConnector.surfaceToTop(processName);
}

void TaskSwitcher::onServiceChanged()
{
    readAll();
}

void TaskSwitcher::readAll()
{
    const QList<ViewListModel::View> views = readViews();
    // Without views there is no current one, and the connector would log that it cannot find it.
    mNotifiedView = views.isEmpty() ? QString() : mConnector.getCurrentView().uuid;
    show(views);
}

void TaskSwitcher::onCurrentViewNotified(const QString& uuid)
{
    mNotifiedView = uuid;
    // A change of both the current view and the list is signalled as this one only.
    scheduleUpdate();
}

// A burst of notifications is answered with one read.
void TaskSwitcher::scheduleUpdate()
{
    if (!mUpdateScheduled) {
        mUpdateScheduled = true;
        QMetaObject::invokeMethod(this, &TaskSwitcher::update, Qt::QueuedConnection);
    }
}

void TaskSwitcher::update()
{
    mUpdateScheduled = false;
    show(readViews());
}

QList<ViewListModel::View> TaskSwitcher::readViews()
{
    return isAvailable() ? mConnector.getViews() : QList<ViewListModel::View>();
}

void TaskSwitcher::show(const QList<ViewListModel::View>& views)
{
    mViews.setViews(views);
    const int currentIndex = mViews.indexOf(mNotifiedView);
    const bool isOtherView = mNotifiedView != mCurrentView;
    const bool isOtherIndex = currentIndex != mCurrentIndex;
    mCurrentView = mNotifiedView;
    mCurrentIndex = currentIndex;
    if (isOtherView) {
        Q_EMIT currentViewChanged();
    }
    if (isOtherIndex) {
        Q_EMIT currentIndexChanged();
    }
}
