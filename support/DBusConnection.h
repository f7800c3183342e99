// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QDBusConnection>

class QString;

/// The one bus connection on which the compositor service is reached.
class DBusConnection
{
public:
    /// The process's shared connection to the bus that the build names (TELVARO_BUS), so that an application's own
    /// D-Bus code and every connector use the same one.
    static QDBusConnection getQDBusConnection();

    /// Asks the bus daemon, blocking, whether the name has an owner now. False without a connection to a bus.
    static bool isServiceRegistered(const QString& serviceName);
};
