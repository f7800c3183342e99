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

    /// Connects the slot to a D-Bus signal on that connection, like QDBusConnection::connect(), and returns whether
    /// that succeeded. The signature is part of the match: Qt D-Bus aborts when it demarshals a signal that does not
    /// fit the slot. Returns false on a closed connection, on which QDBusConnection::connect() aborts.
    ///
    /// With a service name Qt blocks until the bus daemon has named its owner; with an empty one it does not, and the
    /// slot receives the signal from every sender.
    static bool subscribe(const QString& serviceName, const QString& path, const QString& interfaceName,
                          const QString& signalName, const QString& signature, QObject* receiver, const char* slot,
                          const QStringList& argumentMatch = {});
};
