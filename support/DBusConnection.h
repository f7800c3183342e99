// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QDBusConnection>
#include <QStringList>

class QObject;
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

    /// Subscribes the slot to a signal on that connection, as QDBusConnection::connect() does; returns whether that
    /// succeeded. Signals of another signature than the given one are dropped: Qt's demarshaller does not survive those
    /// that do not fit the slot. On a connection that is gone the subscription fails; Qt's own ends the process.
    ///
    /// With the name of a service, Qt blocks until the bus daemon has named its owner; with an empty one it does not,
    /// and the slot hears everybody.
    static bool subscribe(const QString& serviceName, const QString& path, const QString& interfaceName,
                          const QString& signalName, const QString& signature, QObject* receiver, const char* slot,
                          const QStringList& argumentMatch = {});
};
