// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "bus/BusService.h"

#include <QDBusConnectionInterface>
#include <QDBusError>
#include <QDebug>

namespace {

const auto cBus =
    &QDBusConnection::TELVARO_BUS == &QDBusConnection::systemBus ? QStringLiteral("system") : QStringLiteral("session");
const auto cServiceName = QStringLiteral(TELVARO_SERVICE_NAME);
const auto cNotificationName = QStringLiteral("org.freedesktop.Notifications");

bool requestName(const QDBusConnection& connection, const QString& name)
{
    const QDBusReply<QDBusConnectionInterface::RegisterServiceReply> reply = connection.interface()->registerService(
        name, QDBusConnectionInterface::DontQueueService, QDBusConnectionInterface::DontAllowReplacement);
    return reply.isValid() && reply.value() == QDBusConnectionInterface::ServiceRegistered;
}

} // namespace

BusService::BusService(QObject* parent)
    : QObject(parent)
    , mConnection(QDBusConnection::TELVARO_BUS())
{
    mConnection.connect(QString(), QStringLiteral("/org/freedesktop/DBus/Local"),
                        QStringLiteral("org.freedesktop.DBus.Local"), QStringLiteral("Disconnected"), this,
                        SIGNAL(disconnected()));
}

BusService::~BusService()
{
    for (const QString& path : qAsConst(mPaths)) {
        mConnection.unregisterObject(path);
    }
    if (mConnection.isConnected()) {
        giveNamesBack();
    }
}

MaybeError BusService::publish(const QString& path, QObject* object)
{
    if (!mConnection.isConnected()) {
        return Error{QStringLiteral("cannot connect to the %1 bus: %2").arg(cBus, mConnection.lastError().message())};
    }
    if (!mConnection.registerObject(path, object, QDBusConnection::ExportAdaptors)) {
        return Error{QStringLiteral("cannot publish the object %1").arg(path)};
    }
    mPaths.append(path);
    return {};
}

MaybeError BusService::takeName()
{
    if (requestName(mConnection, cServiceName)) {
        return {};
    }
    const QDBusError error = mConnection.lastError();
    const bool isOwned = mConnection.interface()->isServiceRegistered(cServiceName);
    return Error{
        isOwned ? QStringLiteral("the name %1 on the %2 bus is taken: another compositor is running")
                      .arg(cServiceName, cBus)
                : QStringLiteral("cannot take the name %1 on the %2 bus: %3").arg(cServiceName, cBus, error.message())};
}

void BusService::takeNotificationName()
{
    if (!requestName(mConnection, cNotificationName)) {
        qWarning("the name %s is taken by another notification server; notifications arrive under the name %s only",
                 qUtf8Printable(cNotificationName), qUtf8Printable(cServiceName));
    }
}

void BusService::giveNamesBack()
{
    mConnection.unregisterService(cNotificationName);
    mConnection.unregisterService(cServiceName);
}
