// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "TelvaroLiveExport.h"

#include <QDBusPendingReply>
#include <QString>
#include <QStringList>
#include <QVariantMap>

#include <cstdint>

/// Requests to the compositor service that need no state: a message over the screen, notifications, screenshots.
///
/// Every function sends one call, returns at once and never blocks. The reply is Qt's own pending reply: watch it with
/// QDBusPendingCallWatcher, made before control returns to the event loop, or drop it; what was sent is executed in
/// either case. It carries the service's error, the bus daemon's "org.freedesktop.DBus.Error.NameHasNoOwner" if the
/// service is not there (it is never started), QDBusError::NoReply if it does not answer within 25 seconds, or
/// QDBusError::Disconnected without a bus. On another device than TelvaroDeviceDistinction::isCompositorDevice() it
/// carries QDBusError::NotSupported, and nothing is sent. Nothing is logged.
///
/// A process that ends right after a call may end before Qt has written it to the bus: wait for the reply first.
///
/// The functions may be called from any thread with a QCoreApplication in the process; a watcher needs an event loop in
/// its thread.
class TELVARO_LIVE_EXPORT TelvaroRequests
{
public:
    /// Shows the message over everything on the screen; an empty one is sent as an empty string.
    ///
    /// D-Bus: object "/globaloverlay", method "Show" of "de.Telvaro.globaloverlay", signature s.
    static QDBusPendingReply<> showGlobalOverlay(const QString& displayMessage);

    /// Takes the message away.
    ///
    /// D-Bus: object "/globaloverlay", method "Hide" of "de.Telvaro.globaloverlay", no arguments.
    static QDBusPendingReply<> hideGlobalOverlay();

    /// Posts a desktop notification and replies with the id that the server gave it, never 0. The service itself is the
    /// notification server of the device.
    ///
    /// appIcon is the name or the path of an icon; actions holds pairs of an identifier and a label. A replacesId other
    /// than 0 replaces the notification with that id. expireTimeout is in milliseconds; 0 never expires, -1 leaves it
    /// to the server. All of them are sent as they are. A hint that holds an invalid QVariant ends the process, since
    /// D-Bus has no such value.
    ///
    /// D-Bus: object "/org/freedesktop/Notifications", method "Notify" of "org.freedesktop.Notifications", signature
    /// susssasa{sv}i with an empty application name, reply u.
    static QDBusPendingReply<uint> notify(const QString& appIcon, const QString& summary, const QString& body,
                                          const QStringList& actions = {}, uint32_t replacesId = 0,
                                          int expireTimeout = 0,
                                          const QVariantMap& hints = getDefaultNotificationHints());

    /// {"action-icons": true}, by which the server reads each action's identifier as the name of an icon.
    static QVariantMap getDefaultNotificationHints();

    /// Has the service store a screenshot in the directory and replies with the string that it answers, unchanged: the
    /// path of the new file, as far as it is the service's business to say.
    ///
    /// The directory goes to the service exactly as it is passed, so use an absolute path. It must exist for this
    /// process, else the reply carries QDBusError::InvalidArgs and nothing is sent. The time limit is in milliseconds;
    /// -1 is Qt's limit of 25 seconds.
    ///
    /// D-Bus: object "/screenshot", method "ScreenShot" of "de.Telvaro.screenshot", signature s, reply s.
    static QDBusPendingReply<QString> captureScreenShot(const QString& directory, int timeout = -1);
};
