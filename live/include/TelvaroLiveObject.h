// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "TelvaroLiveExport.h"

#include <QDBusError>
#include <QObject>

class LiveProperties;
class QDBusPendingCall;
class QString;

/// Base class of the live objects, which hold the state of the compositor service and follow it without ever blocking.
/// On its own it follows only whether the service is on the bus.
///
/// No operation of a live object blocks, including construction: it sends its reads and returns. A getter returns the
/// last value that the service has sent and sends nothing itself. The service may start after the object, exit,
/// restart, be replaced and hang: the object follows, and never causes the service to be started. Changes that the
/// service does not signal are not seen; the connectors of libTelvaro read them.
///
/// A request is an operation that asks the service to change something. It is sent at once, in every status, and
/// returns QDBusPendingReply, which QDBusPendingCallWatcher and coroutine libraries can wait for. Create the watcher
/// before control returns to the event loop. The reply outlives the object and can be dropped: a failure also emits
/// requestFailed(), with the errors that TelvaroRequests lists. waitForFinished() blocks, like any operation of a
/// connector. Dropping the reply or the object does not recall the request: it has been written to the bus by the time
/// the object is destroyed.
///
/// A live object needs a QCoreApplication and a running event loop in the thread that creates it, and belongs to that
/// thread. It starts no threads and no timers and logs nothing. The first use of the bus in a process connects to it,
/// which blocks in Qt. Slots may delete the object.
///
/// D-Bus: object "/org/freedesktop/DBus", interface "org.freedesktop.DBus". The owner of
/// TelvaroDBusDefinitions::getServiceName() is read once (GetNameOwner, s), then followed by NameOwnerChanged (sss).
class TELVARO_LIVE_EXPORT TelvaroLiveObject : public QObject
{
    Q_OBJECT
    /// Whether the values are those of the service.
    Q_PROPERTY(Status status READ getStatus NOTIFY statusChanged)

public:
    /// Whether the values of a live object are those of the service.
    enum Status
    {
        /// The service is not on the bus, the connection to the bus is missing or lost (Qt never reconnects), or
        /// TelvaroDeviceDistinction::isCompositorDevice() is false, in which case nothing is ever sent. All values are
        /// empty. Also signalled for a moment when a new service replaces the present one.
        Absent,
        /// A read has been sent and not been replied to yet. The values are empty, or the last ones if the service has
        /// signalled a change without the new value.
        Loading,
        /// Every value is that of the present service. For TelvaroLiveObject itself: the service is on the bus.
        Ready,
        /// The service refused a read, or sent a value of the wrong type; see getError(). Other values may still be
        /// awaited. The value concerned is the last good one, or empty; the next good one ends the status.
        Failed
    };
    Q_ENUM(Status)

    /// Follows the presence of the service. The status starts as Loading, or as Absent without a bus or on another
    /// device.
    explicit TelvaroLiveObject(QObject* parent = nullptr);
    ~TelvaroLiveObject() override;

    /// Returns whether the values are those of the service.
    Status getStatus() const;

    /// Returns the reason for the status Failed: the service's error, or QDBusError::InvalidSignature for a value of
    /// the wrong type. Returns an invalid error in every other status.
    QDBusError getError() const;

    /// Returns the time limit of requests in milliseconds.
    int getTimeout() const;

    /// Sets the time limit of later requests. A request without a reply within the limit fails with
    /// QDBusError::NoReply, although the service may still execute it. -1, the default, is Qt's limit of 25 seconds.
    /// Reads have no limit.
    void setTimeout(int milliseconds);

Q_SIGNALS:
    /// Emitted when the status has changed; the values already belong to the new status.
    void statusChanged();

    /// Emitted when a request of this object fails: the service refused it, is absent, or did not reply in time, or the
    /// request had nothing to send. Emitted for every failed request, whether or not its reply is kept, and never
    /// before the request has returned.
    void requestFailed(const QDBusError& error);

protected:
    /// Takes ownership of the properties. Their class is not installed, so only the library's own live objects can
    /// derive with them.
    Q_DECL_HIDDEN TelvaroLiveObject(LiveProperties* properties, QObject* parent);

    /// Emits requestFailed() when the request fails. Returns the request.
    QDBusPendingCall report(const QDBusPendingCall& request);

    /// The followed properties, of a class that is not installed.
    LiveProperties* const mProperties;

private:
    int mTimeout = -1;
};
