// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "TelvaroDBusDefinitions.h"

#include <QString>

const QString& TelvaroDBusDefinitions::getServiceName()
{
    static const QString cServiceName = QStringLiteral(TELVARO_SERVICE_NAME);
    return cServiceName;
}

const QString& TelvaroDBusDefinitions::getTaskSwitcherPath()
{
    static const QString cTaskSwitcherPath = QStringLiteral("/taskswitcher");
    return cTaskSwitcherPath;
}

const QString& TelvaroDBusDefinitions::getTaskSwitcherInterface()
{
    static const QString cTaskSwitcherInterface = QStringLiteral("de.Telvaro.taskswitcher");
    return cTaskSwitcherInterface;
}

const QString& TelvaroDBusDefinitions::getPropertyInterface()
{
    static const QString cPropertyInterface = QStringLiteral("org.freedesktop.DBus.Properties");
    return cPropertyInterface;
}

const QString& TelvaroDBusDefinitions::getPropertyMehodGet()
{
    static const QString cPropertyMehodGet = QStringLiteral("Get");
    return cPropertyMehodGet;
}

const QString& TelvaroDBusDefinitions::getPropertyMehodSet()
{
    static const QString cPropertyMehodSet = QStringLiteral("Set");
    return cPropertyMehodSet;
}

const QString& TelvaroDBusDefinitions::getGlobalOverlayPath()
{
    static const QString cGlobalOverlayPath = QStringLiteral("/globaloverlay");
    return cGlobalOverlayPath;
}

const QString& TelvaroDBusDefinitions::getGlobalOverlayInterface()
{
    static const QString cGlobalOverlayInterface = QStringLiteral("de.Telvaro.globaloverlay");
    return cGlobalOverlayInterface;
}

const QString& TelvaroDBusDefinitions::getGlobalOverlayMethodHide()
{
    static const QString cGlobalOverlayMethodHide = QStringLiteral("Hide");
    return cGlobalOverlayMethodHide;
}

const QString& TelvaroDBusDefinitions::getGlobalOverlayMethodShow()
{
    static const QString cGlobalOverlayMethodShow = QStringLiteral("Show");
    return cGlobalOverlayMethodShow;
}

const QString& TelvaroDBusDefinitions::getScreenPath()
{
    static const QString cScreenPath = QStringLiteral("/screen");
    return cScreenPath;
}

const QString& TelvaroDBusDefinitions::getScreenInterface()
{
    static const QString cScreenInterface = QStringLiteral("de.Telvaro.screen");
    return cScreenInterface;
}

const QString& TelvaroDBusDefinitions::getNotificationsPath()
{
    static const QString cNotificationsPath = QStringLiteral("/org/freedesktop/Notifications");
    return cNotificationsPath;
}

const QString& TelvaroDBusDefinitions::getNotificationsInterface()
{
    static const QString cNotificationsInterface = QStringLiteral("org.freedesktop.Notifications");
    return cNotificationsInterface;
}

const QString& TelvaroDBusDefinitions::getNotificationsMethodNotify()
{
    static const QString cNotificationsMethodNotify = QStringLiteral("Notify");
    return cNotificationsMethodNotify;
}

const QString& TelvaroDBusDefinitions::getScreenShotPath()
{
    static const QString cScreenShotPath = QStringLiteral("/screenshot");
    return cScreenShotPath;
}

const QString& TelvaroDBusDefinitions::getScreenShotInterface()
{
    static const QString cScreenShotInterface = QStringLiteral("de.Telvaro.screenshot");
    return cScreenShotInterface;
}

const QString& TelvaroDBusDefinitions::getScreenShotMethod()
{
    static const QString cScreenShotMethod = QStringLiteral("ScreenShot");
    return cScreenShotMethod;
}
