// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QString>

/// The library's warnings when the service or the bus fails.
namespace Warnings {

inline const QString cUnreadViews = QStringLiteral("Unable to read views!");
inline const QString cUnreadCurrentView = QStringLiteral("Unable to read current view!");
inline const QString cUnparsed = QStringLiteral("Unable to parse dbus-reply to dbus-argument");
inline const QString cNoCurrentView = QStringLiteral("current view not found in all views list");
inline const QString cNoPid = QStringLiteral("pid not matched with a view, return empty TaskSwitcherEntry");
inline const QString cNoIds =
    QStringLiteral("app Id and sortIndex not matched with a view, return empty TaskSwitcherEntry");
inline const QString cNoStep = QStringLiteral("iterate view failed: no view is in the view list with current appID");
inline const QString cSwitchFailed = QStringLiteral("switch view failed ");
inline const QString cStepFailed = QStringLiteral("iterateViews failed: ");
inline const QString cAbsent =
    QStringLiteral("DBus Service for Telvaro \"" TELVARO_SERVICE_NAME "\" is not registered");
inline const QString cInvalid = QStringLiteral("Invalid DBus interface!");
inline const QString cUnsubscribedTaskSwitcher = QStringLiteral("Failed to connect to PropertiesChanged signal");
inline const QString cUnsubscribedScreen = QStringLiteral("Failed to connect to PropertiesChanged siganl");

inline QString unread(const QString& property)
{
    return QStringLiteral("Unable to read property:  \"%1\"").arg(property);
}

inline QString unconverted(const QString& property)
{
    const bool isText = property == QLatin1String("orientation");
    return QStringLiteral("Unable to convert property  \"%1\" to %2!")
        .arg(property, isText ? QStringLiteral("QString") : QStringLiteral("bool"));
}

/// A QDBusError as QDebug writes it.
inline QString error(const QString& name, const QString& message)
{
    return QStringLiteral("QDBusError(\"%1\", \"%2\")").arg(name, message);
}

inline const QString cInvalidInterface =
    error(QStringLiteral("org.freedesktop.DBus.Error.UnknownInterface"), QStringLiteral("Invalid QDBus Interface"));

inline QString invalidScreenShot(const QString& message)
{
    return QStringLiteral("Reply of  \"ScreenShot\" is invalid! \"%1\"").arg(message);
}

} // namespace Warnings
