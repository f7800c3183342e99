// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "TelvaroExport.h"

#include <QString>

/// The names under which the compositor service is reached on D-Bus.
///
/// Every getter returns a reference to a constant string that is made on the first call and lives until the process
/// ends; it may be kept. All getters may be called from any thread, cost no bus traffic and no allocation, and log
/// nothing.
class TELVARO_EXPORT TelvaroDBusDefinitions
{
public:
    /// The service's well-known bus name; fixed when the library is built (TELVARO_SERVICE_NAME).
    static const QString& getServiceName();

    /// "/taskswitcher"
    static const QString& getTaskSwitcherPath();
    /// "de.Telvaro.taskswitcher"
    static const QString& getTaskSwitcherInterface();

    /// "org.freedesktop.DBus.Properties"
    static const QString& getPropertyInterface();
    /// "Get"
    static const QString& getPropertyMehodGet();
    /// "Set"
    static const QString& getPropertyMehodSet();

    /// "/globaloverlay"
    static const QString& getGlobalOverlayPath();
    /// "de.Telvaro.globaloverlay"
    static const QString& getGlobalOverlayInterface();
    /// "Hide"
    static const QString& getGlobalOverlayMethodHide();
    /// "Show"
    static const QString& getGlobalOverlayMethodShow();

    /// "/screen"
    static const QString& getScreenPath();
    /// "de.Telvaro.screen"
    static const QString& getScreenInterface();

    /// "/org/freedesktop/Notifications"
    static const QString& getNotificationsPath();
    /// "org.freedesktop.Notifications"; an interface name only: notifications are sent to getServiceName().
    static const QString& getNotificationsInterface();
    /// "Notify"
    static const QString& getNotificationsMethodNotify();

    /// "/screenshot"
    static const QString& getScreenShotPath();
    /// "de.Telvaro.screenshot"
    static const QString& getScreenShotInterface();
    /// "ScreenShot"
    static const QString& getScreenShotMethod();
};
