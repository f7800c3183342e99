// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "ServiceObject.h"

#include <TelvaroDBusDefinitions.h>
#include <TelvaroDeviceDistinction.h>

#include <QDBusConnectionInterface>
#include <QDBusReply>
#include <QDBusServiceWatcher>

ServiceObject::ServiceObject(QObject* parent)
    : QObject(parent)
{
    const QDBusConnection bus = getBus();
    // Qt cannot subscribe on a connection that is gone.
    if (!TelvaroDeviceDistinction::isCompositorDevice() || !bus.isConnected()) {
        return;
    }
    const auto* const watcher = new QDBusServiceWatcher(TelvaroDBusDefinitions::getServiceName(), bus,
                                                        QDBusServiceWatcher::WatchForOwnerChange, this);
    // Queued, since the connectors' proxies learn of the owner from the same notification, some after the watcher.
    connect(watcher, &QDBusServiceWatcher::serviceOwnerChanged, this, &ServiceObject::onOwnerChanged,
            Qt::QueuedConnection);
    mAvailable = bus.interface()->isServiceRegistered(TelvaroDBusDefinitions::getServiceName());
}

bool ServiceObject::isAvailable() const
{
    return mAvailable;
}

QDBusConnection ServiceObject::getBus()
{
    return QDBusConnection::TELVARO_BUS();
}

void ServiceObject::onServiceChanged()
{
}

void ServiceObject::onOwnerChanged(const QString& /*service*/, const QString& /*oldOwner*/, const QString& newOwner)
{
    const bool wasAvailable = mAvailable;
    mAvailable = !newOwner.isEmpty();
    onServiceChanged();
    if (mAvailable != wasAvailable) {
        Q_EMIT availableChanged();
    }
}
