// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "TelvaroDBusConnectorBase.h"
#include "TelvaroExport.h"

#include <QString>
#include <QStringList>
#include <QVariantMap>

class QObject;

/// Posts desktop notifications. The compositor service itself is the notification server of the device: notifications
/// go to its bus name, not to "org.freedesktop.Notifications".
///
/// D-Bus: object "/org/freedesktop/Notifications", interface "org.freedesktop.Notifications".
class TELVARO_EXPORT TelvaroNotificationDBusConnector : public TelvaroDBusConnectorBase
{
public:
    /// Makes the proxy; calls nothing.
    explicit TelvaroNotificationDBusConnector(QObject* parent = nullptr);

    /// Posts a new notification that never expires.
    ///
    /// appIcon is the name or the path of an icon. actions holds pairs: the identifier of an action and its label; the
    /// hint "action-icons" asks the server to read each identifier as the name of an icon. All of them are sent as
    /// they are, an empty text or a list of odd length included.
    ///
    /// First asks isInterfaceValid() and does nothing if it is false; it has logged why, except on another device.
    /// Blocks until the service has answered, up to 25 seconds with a service that hangs. The answer is not looked at:
    /// an error is neither logged nor reported, and the notification's id is not kept, so that it can be neither
    /// replaced nor closed from here.
    ///
    /// D-Bus: method "Notify", signature susssasa{sv}i: "", 0, appIcon, summary, body, actions, {"action-icons": true},
    /// 0.
    void notify(const QString& appIcon, const QString& summary, const QString& body, const QStringList& actions);

private:
    QVariantMap mHints;
};
