// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QString>

/// What the library logs where the service fails it.
namespace Warnings {

inline const QString cUnreadViews = QStringLiteral("Unable to read views!");
inline const QString cUnreadCurrentView = QStringLiteral("Unable to read current view!");
inline const QString cUnparsed = QStringLiteral("Unable to parse dbus-reply to dbus-argument");
inline const QString cNoCurrentView = QStringLiteral("current view not found in all views list");
inline const QString cNoPid = QStringLiteral("pid not matched with a view, return empty TaskSwitcherEntry");
inline const QString cNoIds =
    QStringLiteral("app Id and sortIndex not matched with a view, return empty TaskSwitcherEntry");
inline const QString cNoStep = QStringLiteral("iterate view failed: no view is in the view list with current appID");
inline const QString cAbsent =
    QStringLiteral("DBus Service for Telvaro \"" TELVARO_SERVICE_NAME "\" is not registered");
inline const QString cInvalid = QStringLiteral("Invalid DBus interface!");

} // namespace Warnings
