// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QDBusConnection>
#include <QStringList>

class QObject;
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
