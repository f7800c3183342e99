// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "TelvaroExport.h"

#include <QDBusInterface>
#include <QObject>

class DBusConnectionParameter;

/// The common base of all connectors: owns the proxy to one object of the compositor service and tells whether it may
/// be used now.
///
/// A connector is used from the thread that owns it, like any QObject. It starts no threads and keeps no state about
/// the service: one that was made before the service started becomes usable once the service is there and the event
/// loop of its thread has run. It is not copyable.
///
/// Constructing a connector blocks while Qt introspects the service's object, until that has succeeded once per
/// interface and process; with a service that does not answer each construction waits 25 seconds for it. Without a
/// service it does not wait.
///
/// The proxy sends method names unchecked: a derived connector must call valid D-Bus member names only, and give a
/// valid object path, since libdbus ends the process on others. A message above 128 MiB costs the connection. Run the
/// event loop once after the process has connected to the bus: if the bus dies in a call before that, the call does not
/// return.
class TELVARO_EXPORT TelvaroDBusConnectorBase : public QObject
{
    Q_OBJECT

public:
    /// Makes the proxy from the parameter's service, path and interface on the process's shared bus connection. Does
    /// not test the result: an unusable proxy is reported by isInterfaceValid(). The path must be a valid D-Bus object
    /// path. The parameter is read, not kept; its class is not installed, so that only the library's own connectors can
    /// be built on this one.
    explicit TelvaroDBusConnectorBase(DBusConnectionParameter&& parameter, QObject* parent = nullptr);
    ~TelvaroDBusConnectorBase() override;

    /// Whether an operation of this connector can reach the service now. Tests in this order, up to the first failure:
    ///
    /// 1. the device is a compositor device (TelvaroDeviceDistinction); nothing is logged if not;
    /// 2. the proxy's service is registered on the bus, else the warning
    ///    `DBus Service for Telvaro "<service>" is not registered`;
    /// 3. the proxy is valid, else the warning `Invalid DBus interface!`.
    ///
    /// Nothing is cached but the device: on a compositor device each call sends one query (NameHasOwner) to the bus
    /// daemon and blocks until its answer.
    bool isInterfaceValid() const;

protected:
    /// The proxy; lives as long as the connector and is no child of it.
    QDBusInterface mInterface;
};
