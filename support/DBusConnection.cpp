// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "DBusConnection.h"

#include <QDBusMessage>
#include <QDBusReply>
#include <QString>

namespace {

QDBusMessage createOwnerQuery(const QString& serviceName)
{
    QDBusMessage query =
        QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
                                       QStringLiteral("org.freedesktop.DBus"), QStringLiteral("NameHasOwner"));
    query.setArguments({serviceName});
    return query;
}

} // namespace

QDBusConnection DBusConnection::getQDBusConnection()
{
    return QDBusConnection::TELVARO_BUS();
}

bool DBusConnection::isServiceRegistered(const QString& serviceName)
{
    // Prepared for the first name that is asked for, which as a rule is the only one. It is only read from here on, and
    // so may be sent by any thread.
    static const QString cName = serviceName;
    static const QDBusMessage cQuery = createOwnerQuery(cName);
    const QDBusReply<bool> reply =
        getQDBusConnection().call(serviceName == cName ? cQuery : createOwnerQuery(serviceName));
    return reply.value();
}
