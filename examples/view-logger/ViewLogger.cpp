// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "ViewLogger.h"

#include <TelvaroViewModel.h>

#include <QDateTime>
#include <QList>
#include <QTextStream>

namespace {

void logLine(const QString& event, const TelvaroTaskSwitcherDBusConnector::TaskSwitcherEntry& view)
{
    QTextStream(stdout) << QDateTime::currentDateTime().toString(Qt::ISODate) << ' ' << event << ' ' << view.appId
                        << '/' << view.sortIndex << " (process " << view.pid << "), "
                        << view.attributes.value(QStringLiteral("title")).toString() << '\n';
}

} // namespace

ViewLogger::ViewLogger(const QString& awakeAppId, QObject* parent)
    : QObject(parent)
    , mAwakeAppId(awakeAppId)
{
    // No value is lost or stale if the service starts later or is restarted: the status and the values change then.
    connect(&mTaskSwitcher, &TelvaroTaskSwitcher::statusChanged, this, &ViewLogger::update);
    connect(&mTaskSwitcher, &TelvaroTaskSwitcher::viewsChanged, this, &ViewLogger::update);
    connect(&mTaskSwitcher, &TelvaroTaskSwitcher::currentViewChanged, this, &ViewLogger::update);
}

ViewLogger::~ViewLogger()
{
    if (mAwake) {
        // A process that exits at once may exit before the request is sent.
        constexpr int cPatience = 1000;
        mScreen.setTimeout(cPatience);
        mScreen.setScreenSaverEnabled(true).waitForFinished();
    }
}

void ViewLogger::update()
{
    logDifferences(mTaskSwitcher.getViews()->getViews());

    const View current = mTaskSwitcher.getViews()->getView(mTaskSwitcher.getCurrentView());
    if (current.uuid != mCurrentUuid && !current.uuid.isEmpty()) {
        logLine(QStringLiteral("current"), current);
    }
    mCurrentUuid = current.uuid;
    const bool awake = !mAwakeAppId.isEmpty() && current.appId == mAwakeAppId;
    if (awake != mAwake) {
        mAwake = awake;
        mScreen.setScreenSaverEnabled(!awake);
    }
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
