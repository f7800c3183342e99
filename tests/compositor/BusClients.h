// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QDBusConnection>
#include <QDBusPendingCall>
#include <QList>
#include <QVariant>

/// Several clients of the compositor's objects at once, each with a connection of its own to the bus.
class BusClients
{
public:
    explicit BusClients(int count);
    ~BusClients();
    BusClients(const BusClients&) = delete;
    BusClients& operator=(const BusClients&) = delete;

    const QList<QDBusConnection>& connections() const
    {
        return mConnections;
    }

    /// Does not wait for the reply.
    static QDBusPendingCall send(const QDBusConnection& connection, const QString& path, const QString& interface,
                                 const QString& member, const QVariantList& arguments);

private:
    QList<QDBusConnection> mConnections;
};
