// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "NotificationClient.h"

#include "ChildProcess.h"
#include "CompositorBus.h"
#include "PrivateBus.h"

#include <QCoreApplication>
#include <QElapsedTimer>

#include <stdexcept>

NotificationClient::NotificationClient()
{
    const QString service = QStringLiteral(TELVARO_SERVICE_NAME);
    const bool isConnected =
        PrivateBus::connection().connect(service, CompositorBus::cNotificationsPath, CompositorBus::cNotifications,
                                         QStringLiteral("NotificationClosed"), this, SLOT(recordClosed(uint, uint)))
        && PrivateBus::connection().connect(service, CompositorBus::cNotificationsPath, CompositorBus::cNotifications,
                                            QStringLiteral("ActionInvoked"), this, SLOT(recordAction(uint, QString)));
    if (!isConnected) {
        throw std::runtime_error("cannot follow the notifications");
    }
}

uint NotificationClient::notify(const Content& content)
{
    return CompositorBus::callChecked(CompositorBus::cNotificationsPath, CompositorBus::cNotifications,
                                      QStringLiteral("Notify"),
                                      {QStringLiteral("test"), content.replacesId, content.appIcon, content.summary,
                                       content.body, content.actions, content.hints, content.expireTimeout})
        .value(0)
        .toUInt();
}

QString NotificationClient::close(uint id)
{
    return CompositorBus::errorOf(CompositorBus::call(CompositorBus::cNotificationsPath, CompositorBus::cNotifications,
                                                      QStringLiteral("CloseNotification"), {id}));
}

QStringList NotificationClient::takeEvents()
{
    CompositorBus::currentView();
    PrivateBus::deliver();
    return std::exchange(mEvents, {});
}

QString NotificationClient::waitForEvent()
{
    QElapsedTimer timer;
    timer.start();
    while (mEvents.isEmpty() && timer.elapsed() < ChildProcess::cDeadline) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
    }
    if (mEvents.isEmpty()) {
        throw std::runtime_error("nothing became of the notifications");
    }
    return mEvents.takeFirst();
}

void NotificationClient::recordClosed(uint id, uint reason)
{
    mEvents.append(QStringLiteral("closed %1 %2").arg(id).arg(reason));
}

void NotificationClient::recordAction(uint id, const QString& key)
{
    mEvents.append(QStringLiteral("action %1 %2").arg(id).arg(key));
}
