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
    const QDBusConnectionInterface* const busDaemon = connection.interface();
    return busDaemon != nullptr && busDaemon->isServiceRegistered(serviceName);
}
