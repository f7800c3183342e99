// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "clients/ObjectProperties.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusReply>
#include <QDBusVariant>

#include <utility>

void PropertyWatcher::watch(const QString& path)
{
    QDBusConnection::TELVARO_BUS().connect(
        QStringLiteral(TELVARO_SERVICE_NAME), path, QStringLiteral("org.freedesktop.DBus.Properties"),
        QStringLiteral("PropertiesChanged"), this, SLOT(onPropertiesChanged(QString, QVariantMap, QStringList)));
}

void PropertyWatcher::onPropertiesChanged(const QString& /*interface*/, const QVariantMap& values,
                                          const QStringList& /*invalidated*/)
{
    Q_EMIT changed(values);
}

ObjectProperties::ObjectProperties(const QString& path, QString interface)
    : mProxy(QStringLiteral(TELVARO_SERVICE_NAME), path, QStringLiteral("org.freedesktop.DBus.Properties"),
             QDBusConnection::TELVARO_BUS())
    , mInterface(std::move(interface))
{
    watch(path);
}

bool ObjectProperties::hasOwner() const
{
    return mProxy.connection().interface()->isServiceRegistered(mProxy.service());
}

QVariant ObjectProperties::get(const QString& name)
{
    const QDBusReply<QDBusVariant> reply = mProxy.call(QStringLiteral("Get"), mInterface, name);
    return reply.isValid() ? reply.value().variant() : QVariant();
}

bool ObjectProperties::set(const QString& name, const QVariant& value)
{
    const QDBusMessage reply =
        mProxy.call(QStringLiteral("Set"), mInterface, name, QVariant::fromValue(QDBusVariant(value)));
    return reply.type() == QDBusMessage::ReplyMessage;
}
