// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "BusClients.h"

#include "PrivateBus.h"

#include <QDBusError>
#include <QDBusMessage>

#include <stdexcept>

BusClients::BusClients(int count)
{
    for (int i = 0; i < count; ++i) {
        const QDBusConnection connection =
            QDBusConnection::connectToBus(PrivateBus::address(), QStringLiteral("client-%1").arg(i));
        if (!connection.isConnected()) {
            throw std::runtime_error(connection.lastError().message().toStdString());
        }
        mConnections.append(connection);
    }
}

BusClients::~BusClients()
{
    for (const QDBusConnection& connection : qAsConst(mConnections)) {
        QDBusConnection::disconnectFromBus(connection.name());
    }
}

QDBusPendingCall BusClients::send(const QDBusConnection& connection, const QString& path, const QString& interface,
                                  const QString& member, const QVariantList& arguments)
{
    QDBusMessage message =
        QDBusMessage::createMethodCall(QStringLiteral(TELVARO_SERVICE_NAME), path, interface, member);
    message.setArguments(arguments);
    return connection.asyncCall(message, ChildProcess::cDeadline);
}
