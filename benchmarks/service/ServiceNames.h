// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

/// The D-Bus names for the programs without Qt.
namespace ServiceNames {

constexpr const char* cService = TELVARO_SERVICE_NAME;
constexpr const char* cTaskSwitcherPath = "/taskswitcher";
constexpr const char* cTaskSwitcherInterface = "de.Telvaro.taskswitcher";
constexpr const char* cScreenPath = "/screen";
constexpr const char* cScreenInterface = "de.Telvaro.screen";
constexpr const char* cOverlayPath = "/globaloverlay";
constexpr const char* cOverlayInterface = "de.Telvaro.globaloverlay";
constexpr const char* cNotificationsPath = "/org/freedesktop/Notifications";
constexpr const char* cNotificationsInterface = "org.freedesktop.Notifications";
constexpr const char* cScreenShotPath = "/screenshot";
constexpr const char* cScreenShotInterface = "de.Telvaro.screenshot";
constexpr const char* cPropertiesInterface = "org.freedesktop.DBus.Properties";

constexpr const char* cBusDaemon = "org.freedesktop.DBus";
constexpr const char* cBusDaemonPath = "/org/freedesktop/DBus";

/// Makes the benchmark service notify a change of the current view.
constexpr const char* cNotifyChangePath = "/benchmark";
constexpr const char* cNotifyChangeInterface = "de.Telvaro.benchmark";
constexpr const char* cNotifyChangeMethod = "NotifyChange";

} // namespace ServiceNames
