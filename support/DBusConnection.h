// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QDBusConnection>

class QString;

/// Bus connection to the compositor service, shared by all connectors.
class DBusConnection
{
public:
    /// Returns the process's shared connection to the bus chosen at build time (TELVARO_BUS), so that every connector
    /// and the application's own D-Bus code use the same connection.
    static QDBusConnection getQDBusConnection();

    /// Returns whether the name has an owner now. Sends NameHasOwner to the bus daemon and blocks until the reply.
    /// Returns false without a connection to a bus.
    static bool isServiceRegistered(const QString& serviceName);
};
