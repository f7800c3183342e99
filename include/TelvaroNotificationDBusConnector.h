// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "TelvaroDBusConnectorBase.h"
#include "TelvaroExport.h"

#include <QString>
#include <QStringList>
#include <QVariantMap>

class QObject;

/// Sends desktop notifications. The compositor service is the device's notification server: notifications are sent to
/// its bus name, not to "org.freedesktop.Notifications".
///
/// D-Bus: object "/org/freedesktop/Notifications", interface "org.freedesktop.Notifications".
class TELVARO_EXPORT TelvaroNotificationDBusConnector : public TelvaroDBusConnectorBase
{
public:
    /// Creates the proxy; calls no method of the service.
    explicit TelvaroNotificationDBusConnector(QObject* parent = nullptr);

    /// Sends a new notification that never expires.
    ///
    /// `appIcon` is the name or the path of an icon. `actions` holds pairs of an action's identifier and its label; the
    /// hint "action-icons" asks the server to use each identifier as an icon name. All arguments are sent unchecked,
    /// including empty strings and an `actions` list of odd length.
    ///
    /// First calls isInterfaceValid() and does nothing if it returns false; it has logged the reason, except on another
    /// device. Blocks until the service replies, for up to 25 seconds if it hangs. The reply is discarded: an error is
    /// neither logged nor reported, and the notification's id is lost, so the notification can be neither replaced nor
    /// closed through this class.
    ///
    /// D-Bus: method "Notify", signature susssasa{sv}i: "", 0, appIcon, summary, body, actions, {"action-icons": true},
    /// 0.
    void notify(const QString& appIcon, const QString& summary, const QString& body, const QStringList& actions);

private:
    QVariantMap mHints;
};
