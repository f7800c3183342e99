// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "Result.h"

#include <QDBusConnection>
#include <QObject>
#include <QString>
#include <QStringList>

/// The connection to the bus: publishes the objects and owns the names by which clients find them.
class BusService : public QObject
{
    Q_OBJECT

public:
    explicit BusService(QObject* parent = nullptr);
    /// Unregisters the objects and the names, so that nothing that happens while the compositor ends is signalled.
    ~BusService() override;

    /// Registers `object` with its adaptors.
    MaybeError publish(const QString& path, QObject* object);
    /// Requests the service's name. To be called when all objects are published: from then on clients find the
    /// service.
    MaybeError takeName();
    /// Requests the name under which applications of any desktop look for the notification server. A warning is logged
    /// if another program owns it.
    void takeNotificationName();

    /// Releases both names: the objects stay, but clients do not find the service.
    void giveNamesBack();

    const QDBusConnection& connection() const
    {
        return mConnection;
    }

Q_SIGNALS:
    void disconnected();

private:
    QDBusConnection mConnection;
    QStringList mPaths;
};
