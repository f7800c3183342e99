// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "clients/QtViews.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusReply>
#include <QDBusVariant>

void awaitChange(const bool& isChanged)
{
    QDBusConnection::TELVARO_BUS().send(
        QDBusMessage::createMethodCall(QStringLiteral(TELVARO_SERVICE_NAME), QStringLiteral("/benchmark"),
                                       QStringLiteral("de.Telvaro.benchmark"), QStringLiteral("NotifyChange")));
    while (!isChanged) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
}

QVariant fetchViewsProperty()
{
    QDBusMessage request =
        QDBusMessage::createMethodCall(QStringLiteral(TELVARO_SERVICE_NAME), QStringLiteral("/taskswitcher"),
                                       QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
    request << QStringLiteral("de.Telvaro.taskswitcher") << QStringLiteral("views");
    const QDBusReply<QDBusVariant> reply = QDBusConnection::TELVARO_BUS().call(request);
    return reply.value().variant();
}
