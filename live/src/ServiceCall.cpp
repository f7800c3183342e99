// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "ServiceCall.h"

#include "DBusConnection.h"

#include <TelvaroDBusDefinitions.h>
#include <TelvaroDeviceDistinction.h>

#include <QDBusMessage>
#include <QList>
#include <QString>
#include <QVariant>

#include <algorithm>
#include <limits>

namespace {

QDBusPendingCall send(const QString& peer, const QString& path, const QString& interface, const QString& method,
                      const QList<QVariant>& arguments, int timeout)
{
    QDBusMessage message = QDBusMessage::createMethodCall(peer, path, interface, method);
    message.setArguments(arguments);
    message.setAutoStartService(false);
    // libdbus ends a process that names any other limit below 0.
    return DBusConnection::getQDBusConnection().asyncCall(message, std::max(timeout, -1));
}

} // namespace

QDBusPendingCall ServiceCall::request(const QString& path, const QString& interface, const QString& method,
                                      const QList<QVariant>& arguments, int timeout)
{
    if (!TelvaroDeviceDistinction::isCompositorDevice()) {
        return refuse(QDBusError::NotSupported, QStringLiteral("This device has no compositor service"));
    }
    return send(TelvaroDBusDefinitions::getServiceName(), path, interface, method, arguments, timeout);
}

QDBusPendingCall ServiceCall::ask(const QString& peer, const QString& path, const QString& interface,
                                  const QString& method, const QList<QVariant>& arguments)
{
    // libdbus takes it for no limit at all.
    const int unlimited = std::numeric_limits<int>::max();
    return send(peer, path, interface, method, arguments, unlimited);
}

QDBusPendingCall ServiceCall::refuse(QDBusError::ErrorType type, const QString& reason)
{
    return QDBusPendingCall::fromError(QDBusError(type, reason));
}

QDBusPendingCall ServiceCall::succeed()
{
    return QDBusPendingCall::fromCompletedCall(QDBusMessage().createReply());
}
