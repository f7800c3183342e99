// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "ViewLogger.h"

#include <TelvaroDBusDefinitions.h>

#include <QDBusConnection>
#include <QDateTime>
#include <QTextStream>

namespace {

void logLine(const QString& event, const TelvaroTaskSwitcherDBusConnector::TaskSwitcherEntry& view)
{
    QTextStream(stdout) << QDateTime::currentDateTime().toString(Qt::ISODate) << ' ' << event << ' ' << view.appId
                        << '/' << view.sortIndex << " (process " << view.pid << "), "
                        << view.attributes.value(QStringLiteral("title")).toString() << '\n';
}

} // namespace

// The connectors survive a restart of the service, but do not report it: QDBusServiceWatcher does. The library uses the
// session bus unless it was built for the system bus.
ViewLogger::ViewLogger(const QString& awakeAppId, QObject* parent)
    : QObject(parent)
    , mServiceWatcher(TelvaroDBusDefinitions::getServiceName(), QDBusConnection::sessionBus(),
                      QDBusServiceWatcher::WatchForOwnerChange)
    , mAwakeAppId(awakeAppId)
{
    connect(&mTaskSwitcher, &TelvaroTaskSwitcherDBusConnector::viewsChanged, this, &ViewLogger::update);
    connect(&mTaskSwitcher, &TelvaroTaskSwitcherDBusConnector::currentViewChanged, this, &ViewLogger::update);
    connect(&mServiceWatcher, &QDBusServiceWatcher::serviceOwnerChanged, this, &ViewLogger::update);
    update();
}

ViewLogger::~ViewLogger()
{
    setAwake(false);
}

void ViewLogger::update()
{
    // Without the service there are no views. getViews() would return none as well, but log a warning for every read.
    QList<View> views;
    if (mTaskSwitcher.isInterfaceValid()) {
        views = mTaskSwitcher.getViews();
    }
    logDifferences(views);

    View current;
    if (!views.isEmpty()) {
        current = mTaskSwitcher.getCurrentView();
    }
    if (current.uuid != mCurrentUuid && !current.uuid.isEmpty()) {
        logLine(QStringLiteral("current"), current);
    }
    mCurrentUuid = current.uuid;
    setAwake(!mAwakeAppId.isEmpty() && current.appId == mAwakeAppId);
}

void ViewLogger::logDifferences(const QList<View>& views)
{
    QHash<QString, View> gone = mViews;
    for (const View& view : views) {
        if (gone.remove(view.uuid) == 0) {
            logLine(QStringLiteral("appeared"), view);
        }
        mViews.insert(view.uuid, view);
    }
    for (const View& view : qAsConst(gone)) {
        logLine(QStringLiteral("left"), view);
        mViews.remove(view.uuid);
    }
}

void ViewLogger::setAwake(bool awake)
{
    if (awake == mAwake) {
        return;
    }
    mAwake = awake;
    if (awake) {
        mScreen.disableScreenSaver();
    } else {
        mScreen.enableScreenSaver();
    }
}
