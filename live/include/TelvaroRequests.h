// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "TelvaroLiveExport.h"

#include <QDBusPendingReply>
#include <QString>
#include <QStringList>
#include <QVariantMap>

#include <cstdint>

/// Requests to the compositor service that need no state: global overlay, notifications, screenshots.
///
/// Every function sends one call and returns at once; none blocks or logs. Watch the QDBusPendingReply with a
/// QDBusPendingCallWatcher that is created before control returns to the event loop, or drop it: the request is
/// executed in either case. The reply carries the service's error or
/// - "org.freedesktop.DBus.Error.NameHasNoOwner" if the service is absent; it is never started;
/// - QDBusError::NoReply if it does not reply within 25 seconds;
/// - QDBusError::Disconnected without a bus;
/// - QDBusError::NotSupported if TelvaroDeviceDistinction::isCompositorDevice() is false; nothing is sent.
///
/// Qt writes the call to the bus in a thread of its own: a process that exits right after a request should wait for its
/// reply first, or the request may be lost.
///
/// The functions can be called from any thread of a process with a QCoreApplication; a watcher needs an event loop in
/// its thread.
class TELVARO_LIVE_EXPORT TelvaroRequests
{
public:
    /// Shows the message on top of everything else on the screen. An empty message is sent as an empty string.
    ///
    /// D-Bus: object "/globaloverlay", method "Show" of "de.Telvaro.globaloverlay", signature s.
    static QDBusPendingReply<> showGlobalOverlay(const QString& displayMessage);

    /// Hides the message.
    ///
    /// D-Bus: object "/globaloverlay", method "Hide" of "de.Telvaro.globaloverlay", no arguments.
    static QDBusPendingReply<> hideGlobalOverlay();

    /// Sends a desktop notification to the service, which is the device's notification server. The reply holds the id
    /// that the server has assigned, never 0.
    ///
    /// `appIcon` is the name or the path of an icon; `actions` holds pairs of an action's identifier and its label. A
    /// `replacesId` other than 0 replaces the notification with that id. `expireTimeout` is in milliseconds: 0 never
    /// expires, -1 is the server's default. All arguments are sent unchecked. A hint that holds an invalid QVariant
    /// aborts the process: D-Bus has no such value.
    ///
    /// D-Bus: object "/org/freedesktop/Notifications", method "Notify" of "org.freedesktop.Notifications", signature
    /// susssasa{sv}i with an empty application name, reply u.
    static QDBusPendingReply<uint> notify(const QString& appIcon, const QString& summary, const QString& body,
                                          const QStringList& actions = {}, uint32_t replacesId = 0,
                                          int expireTimeout = 0,
                                          const QVariantMap& hints = getDefaultNotificationHints());

    /// Returns {"action-icons": true}, which asks the server to use each action's identifier as an icon name.
    static QVariantMap getDefaultNotificationHints();

    /// Asks the service to store a screenshot in the directory. The reply holds the service's string unchanged, usually
    /// the path of the new file.
    ///
    /// The directory is sent exactly as passed, so use an absolute path. It must exist for this process; otherwise the
    /// reply carries QDBusError::InvalidArgs and nothing is sent. `timeout` is in milliseconds; -1 is Qt's limit of 25
    /// seconds.
    ///
    /// D-Bus: object "/screenshot", method "ScreenShot" of "de.Telvaro.screenshot", signature s, reply s.
    static QDBusPendingReply<QString> captureScreenShot(const QString& directory, int timeout = -1);
};
