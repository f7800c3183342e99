// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "TelvaroExport.h"

#include <QDBusInterface>
#include <QObject>

class DBusConnectionParameter;

/// Base class of all connectors. Owns the QDBusInterface of one object of the compositor service and checks whether
/// that proxy can be used.
///
/// Use a connector only in the thread that it lives in, like any QObject. It starts no threads and keeps no state about
/// the service: a connector that is created before the service starts becomes usable once the service is on the bus and
/// the event loop of the connector's thread has run. It is not copyable.
///
/// The constructor blocks while Qt introspects the service's object; Qt caches a successful introspection per interface
/// and process. If the service hangs, every construction blocks for 25 seconds until one introspection has succeeded.
/// If the service is absent, construction does not wait for it.
///
/// A subclass must call only valid D-Bus member names and pass a valid object path: the proxy does not check them, and
/// libdbus aborts the process on an invalid one. A message above 128 MiB closes the connection. If the bus daemon dies
/// during a call before the event loop has run for the first time, the call never returns.
class TELVARO_EXPORT TelvaroDBusConnectorBase : public QObject
{
    Q_OBJECT

public:
    /// Creates the proxy for the parameter's service, path and interface on the process's shared bus connection. Does
    /// not check the proxy; isInterfaceValid() does. The path must be a valid D-Bus object path. The parameter is read,
    /// not kept. Its class is not installed, so only the library's own connectors can derive directly from this class.
    explicit TelvaroDBusConnectorBase(DBusConnectionParameter&& parameter, QObject* parent = nullptr);
    ~TelvaroDBusConnectorBase() override;

    /// Returns whether this connector can reach the service now. Checks in this order and stops at the first failure:
    ///
    /// 1. the device is a compositor device (TelvaroDeviceDistinction); otherwise logs nothing;
    /// 2. the proxy's service is registered on the bus; otherwise logs the warning
    ///    `DBus Service for Telvaro "<service>" is not registered`;
    /// 3. the proxy is valid; otherwise logs the warning `Invalid DBus interface!`.
    ///
    /// Only the kind of device is cached. On a compositor device each call sends one NameHasOwner query to the bus
    /// daemon and blocks until the reply.
    bool isInterfaceValid() const;

protected:
    /// The QDBusInterface of the service's object; a member, not a child QObject, of the connector.
    QDBusInterface mInterface;
};
