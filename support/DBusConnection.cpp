// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "DBusConnection.h"

#include <QDBusConnectionInterface>
#include <QDBusReply>
#include <QString>

QDBusConnection DBusConnection::getQDBusConnection()
{
    return QDBusConnection::TELVARO_BUS();
}

bool DBusConnection::isServiceRegistered(const QString& serviceName)
{
    const QDBusConnection connection = getQDBusConnection();
    QDBusConnectionInterface* const busDaemon = connection.interface();
    if (busDaemon == nullptr) {
        return false;
    }
    // Like QDBusConnectionInterface::isServiceRegistered(), without its lookup among all methods of the proxy.
    const QDBusReply<bool> reply =
        busDaemon->callWithArgumentList(QDBus::Block, QStringLiteral("NameHasOwner"), {serviceName});
    return reply.value();
}

bool DBusConnection::subscribe(const QString& serviceName, const QString& path, const QString& interfaceName,
                               const QString& signalName, const QString& signature, QObject* receiver, const char* slot,
                               const QStringList& argumentMatch)
{
    QDBusConnection connection = getQDBusConnection();
    return connection.isConnected()
        && connection.connect(serviceName, path, interfaceName, signalName, argumentMatch, signature, receiver, slot);
}
