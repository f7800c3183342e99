// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "TelvaroLiveExport.h"

#include <QDBusError>
#include <QObject>

class LiveProperties;
class QDBusPendingCall;
class QString;

/// The base of the live objects, which hold the state of the compositor service and follow it without ever waiting.
/// By itself it follows only whether the service is there.
///
/// No operation of a live object blocks, its construction included: it sends its questions to the bus and returns.
/// What a getter returns is what the service last said; nothing is sent for it. The service may start after the
/// object, end, restart, be replaced and hang: the object follows, and never has a service started. What the service
/// changes without a notification is not seen; the blocking connectors read it.
///
/// A request is an operation that asks the service to change something. It is sent at once, in every status, and
/// returns Qt's own pending reply, which QDBusPendingCallWatcher, or a coroutine library, can wait for. The reply
/// outlives the object, and may be dropped: a failure also emits requestFailed(). Make the watcher before control
/// returns to the event loop. waitForFinished() blocks, like any operation of a blocking connector. Dropping the reply
/// or the object does not recall what was sent: when an object is destroyed, its requests have been written to the bus.
///
/// A live object needs a QCoreApplication, belongs to the thread that made it, and needs a running event loop there. It
/// starts no threads and no timers and logs nothing. The first use of the bus in a process connects to it, which Qt
/// does blocking. Slots may delete the object.
///
/// D-Bus: the owner of TelvaroDBusDefinitions::getServiceName() is asked for once (GetNameOwner) and followed by
/// NameOwnerChanged.
class TELVARO_LIVE_EXPORT TelvaroLiveObject : public QObject
{
    Q_OBJECT
    /// See getStatus().
    Q_PROPERTY(Status status READ getStatus NOTIFY statusChanged)

public:
    /// How far the values of an object are those of the service.
    enum Status
    {
        /// The service is not on the bus, there is no connection to the bus (any longer; Qt makes no other), or this
        /// is another device than TelvaroDeviceDistinction::isCompositorDevice(), where nothing is ever sent. All
        /// values are empty. Also signalled in passing when a new service replaces the one that is there.
        Absent,
        /// The bus or the service has been asked and has not answered yet. Values are empty, or, where the service did
        /// not send the new value along with its notification, the last ones.
        Loading,
        /// Every value is the present service's. For TelvaroLiveObject itself: the service is there.
        Ready,
        /// The service refused to give a value, or sent one of a wrong type; see getError(). The next good value makes
        /// the object ready.
        Failed
    };
    Q_ENUM(Status)

    /// Follows the presence of the service. The status begins as Loading, or as Absent where there is nobody to ask.
    explicit TelvaroLiveObject(QObject* parent = nullptr);
    ~TelvaroLiveObject() override;

    /// How far the values are those of the service now.
    Status getStatus() const;

    /// Why the status is Failed: the service's own error, or QDBusError::InvalidSignature for a value of a wrong type.
    /// Otherwise invalid.
    QDBusError getError() const;

    /// The time limit of requests in milliseconds.
    int getTimeout() const;

    /// Limits the time that the service has to answer the requests made from now on; one that it does not answer in
    /// time fails with QDBusError::NoReply, though the service may still execute it. -1, the default, is Qt's limit of
    /// 25 seconds. Only requests have a limit.
    void setTimeout(int milliseconds);

Q_SIGNALS:
    /// The status changed; the values are already those that belong to it.
    void statusChanged();

    /// A request of this object failed: the service refused it or is not there, or the time limit passed. Follows every
    /// failed request whether or not its reply is kept, and never before the request has returned.
    void requestFailed(const QDBusError& error);

protected:
    /// Takes ownership of the properties, whose class is not installed: for the live objects of the library only.
    Q_DECL_HIDDEN TelvaroLiveObject(LiveProperties* properties, QObject* parent);

    /// Emits requestFailed() if and when the request, of a derived class, fails. Returns the request.
    QDBusPendingCall report(const QDBusPendingCall& request);

    /// All that the object knows; a child of it.
    LiveProperties* const mProperties;

private:
    int mTimeout = -1;
};
