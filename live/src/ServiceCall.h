// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QDBusError>
#include <QDBusPendingCall>

#include <functional>

class QObject;
class QString;
class QVariant;
template <typename T> class QList;

/// Calls that are sent without waiting for anything, and that never start the service.
class ServiceCall
{
public:
    /// Sends a request to the service, by its well-known name. On another device it is refused and not sent.
    static QDBusPendingCall request(const QString& path, const QString& interface, const QString& method,
                                    const QList<QVariant>& arguments, int timeout = -1);

    /// Sends a question to the peer, without a time limit: the bus daemon answers for a peer that ends, and one that
    /// hung may still answer.
    static QDBusPendingCall ask(const QString& peer, const QString& path, const QString& interface,
                                const QString& method, const QList<QVariant>& arguments);

    /// Calls the handler once when the call has been answered or has failed, from the event loop of the context's
    /// thread, after everything that the peer sent before. Not if the context is destroyed before.
    ///
    /// For calls that are returned to the user, who is to make the first watcher: of several, Qt forgets those that are
    /// made after the answer has come.
    static void whenAnswered(const QDBusPendingCall& call, QObject* context,
                             const std::function<void(const QDBusPendingCall&)>& handler);

    /// A call that has failed without being sent.
    static QDBusPendingCall refuse(QDBusError::ErrorType type, const QString& reason);

    /// A call that has succeeded without being sent.
    static QDBusPendingCall succeed();
};
