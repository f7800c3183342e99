// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "TelvaroExport.h"

#include <QString>

/// D-Bus names of the compositor service: bus name, object paths, interfaces and members.
///
/// Every getter returns a reference to a constant string that is created on the first call and lives until the process
/// ends, so the reference may be kept. All getters are thread-safe, send nothing, log nothing and, after the first
/// call, allocate nothing.
class TELVARO_EXPORT TelvaroDBusDefinitions
{
public:
    /// Well-known bus name of the service, set when the library is built (TELVARO_SERVICE_NAME).
    static const QString& getServiceName();

    /// "/taskswitcher"
    static const QString& getTaskSwitcherPath();
    /// "de.Telvaro.taskswitcher"
    static const QString& getTaskSwitcherInterface();

    /// "org.freedesktop.DBus.Properties"
    static const QString& getPropertyInterface();
    // The misspelled names of the next two are exported symbols: correcting them breaks every application.

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
    /// "org.freedesktop.Notifications". An interface name only: notifications are sent to getServiceName().
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
