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

// The service may be restarted while this program runs. The connectors need not be made again, but they do not tell:
// the bus does. The session bus is the one that the library uses unless it was built for the system bus.
ViewLogger::ViewLogger(const QString& awakeAppId, QObject* parent)
    : QObject(parent)
    , mServiceWatcher(TelvaroDBusDefinitions::getServiceName(), QDBusConnection::sessionBus(),
                      QDBusServiceWatcher::WatchForOwnerChange)
    , mAwakeAppId(awakeAppId)
{
    connect(&mTaskSwitcher, &TelvaroTaskSwitcherDBusConnector::viewsChanged, this, &ViewLogger::update);
    connect(&mTaskSwitcher, &TelvaroTaskSwitcherDBusConnector::currentViewChanged, this, &ViewLogger::update);
    // Queued, so that the connectors have heard of it as well.
    connect(&mServiceWatcher, &QDBusServiceWatcher::serviceOwnerChanged, this, &ViewLogger::update,
            Qt::QueuedConnection);
    update();
}

ViewLogger::~ViewLogger()
{
    setAwake(false);
}

void ViewLogger::update()
{
    // Without the service there are no views. The connector would say the same, with a warning for every read.
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
