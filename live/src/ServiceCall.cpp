// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "ServiceCall.h"

#include "DBusConnection.h"

#include <TelvaroDBusDefinitions.h>
#include <TelvaroDeviceDistinction.h>

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QList>
#include <QMetaObject>
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

void ServiceCall::whenAnswered(const QDBusPendingCall& call, QObject* context,
                               const std::function<void(const QDBusPendingCall&)>& handler)
{
    const auto watch = [call, context, handler] {
        auto* const watcher = new QDBusPendingCallWatcher(call, context);
        QObject::connect(watcher, &QDBusPendingCallWatcher::finished, context, [watcher, handler] {
            QObject::disconnect(watcher, &QDBusPendingCallWatcher::finished, nullptr, nullptr);
            watcher->deleteLater();
            handler(*watcher);
        });
        if (watcher->isFinished()) {
            // It may be one of those that Qt forgets.
            QMetaObject::invokeMethod(
                watcher,
                [watcher] {
                    Q_EMIT watcher->finished(watcher);
                },
                Qt::QueuedConnection);
        }
    };
    QMetaObject::invokeMethod(context, watch, Qt::QueuedConnection);
}

QDBusPendingCall ServiceCall::refuse(QDBusError::ErrorType type, const QString& reason)
{
    return QDBusPendingCall::fromError(QDBusError(type, reason));
}

QDBusPendingCall ServiceCall::succeed()
{
    return QDBusPendingCall::fromCompletedCall(QDBusMessage().createReply());
}
