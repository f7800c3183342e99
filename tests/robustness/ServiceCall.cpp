// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "ServiceCall.h"

#include "Scenario.h"
#include "ValueText.h"

#include <QMap>

namespace {

ServiceCall get(const QString& operation, const QString& path, const QString& property, int number = 1)
{
    return {operation, path, QString(), QStringLiteral("Get"), property, number};
}

ServiceCall set(const QString& operation, const QString& path, const QString& property)
{
    return {operation, path, QString(), QStringLiteral("Set"), property, 1};
}

// A value of the property as the service of Scenario has it, in GVariant's text format.
QString propertyValue(const QString& property)
{
    static const QMap<QString, QString> cValues{
        {QStringLiteral("views"), Scenario::views()},
        {QStringLiteral("currentView"), QStringLiteral("'one'")},
        {QStringLiteral("screenSaverActive"), QStringLiteral("true")},
        {QStringLiteral("screenSaverTimeoutSeconds"), QStringLiteral("300")},
        {QStringLiteral("orientation"), QStringLiteral("'90'")},
        {QStringLiteral("fullScreen"), QStringLiteral("true")},
    };
    return cValues.value(property);
}

} // namespace

QList<ServiceCall> ServiceCall::all()
{
    const QString switcher = QStringLiteral("/taskswitcher");
    const QString screen = QStringLiteral("/screen");
    const QString overlay = QStringLiteral("/globaloverlay");
    const QString overlayInterface = QStringLiteral("de.Telvaro.globaloverlay");
    const QString views = QStringLiteral("views");
    const QString current = QStringLiteral("currentView");
    const QString active = QStringLiteral("screenSaverActive");
    const QString enabled = QStringLiteral("screenSaverEnabled");
    const QString timeout = QStringLiteral("screenSaverTimeoutSeconds");
    const QString orientation = QStringLiteral("orientation");
    const QString fullScreen = QStringLiteral("fullScreen");
    QList<ServiceCall> calls{
        get(QStringLiteral("getViews"), switcher, views),
        get(QStringLiteral("getCurrentView"), switcher, views),
        get(QStringLiteral("getCurrentView"), switcher, current),
        set(QStringLiteral("setCurrentView"), switcher, current),
        get(QStringLiteral("pidToTaskSwitcherEntry"), switcher, views),
        get(QStringLiteral("idsToTaskSwitcherEntry"), switcher, views),
        get(QStringLiteral("switchToView"), switcher, views),
        set(QStringLiteral("switchToView"), switcher, current),
        get(QStringLiteral("surfaceToTop"), switcher, views),
        set(QStringLiteral("surfaceToTop"), switcher, current),
        get(QStringLiteral("isCurrentView"), switcher, views),
        get(QStringLiteral("isCurrentView"), switcher, current),
        get(QStringLiteral("new TelvaroScreenDBusConnector"), screen, active),
        get(QStringLiteral("getProperty"), screen, timeout),
        set(QStringLiteral("setProperty"), screen, orientation),
        set(QStringLiteral("enableScreenSaver"), screen, enabled),
        set(QStringLiteral("disableScreenSaver"), screen, enabled),
        set(QStringLiteral("setScreenSaverTimeout"), screen, timeout),
        get(QStringLiteral("isScreenSaverActive"), screen, active),
        get(QStringLiteral("getOrientation"), screen, orientation),
        set(QStringLiteral("setOrientation"), screen, orientation),
        set(QStringLiteral("setFullScreen"), screen, fullScreen),
        get(QStringLiteral("getFullScreen"), screen, fullScreen),
        {QStringLiteral("showGlobalOverlay"), overlay, overlayInterface, QStringLiteral("Show"), QString(), 1},
        {QStringLiteral("hideGlobalOverlay"), overlay, overlayInterface, QStringLiteral("Hide"), QString(), 1},
        {QStringLiteral("notify"), QStringLiteral("/org/freedesktop/Notifications"),
         QStringLiteral("org.freedesktop.Notifications"), QStringLiteral("Notify"), QString(), 1},
        {QStringLiteral("captureScreenShot"), QStringLiteral("/screenshot"), QStringLiteral("de.Telvaro.screenshot"),
         QStringLiteral("ScreenShot"), QString(), 1},
    };
    for (const QString& direction : {QStringLiteral("forward"), QStringLiteral("backward")}) {
        const QString iterate = QStringLiteral("iterateViews ") + direction;
        calls.append({get(iterate, switcher, views, 1), get(iterate, switcher, views, 2),
                      get(iterate, switcher, current), set(iterate, switcher, current)});
    }
    return calls;
}

QStringList ServiceCall::rightAnswer() const
{
    if (member == QLatin1String("Get")) {
        return {ValueText::variant(propertyValue(property))};
    }
    if (member == QLatin1String("Notify")) {
        return {QStringLiteral("uint32 1")};
    }
    if (member == QLatin1String("ScreenShot")) {
        return {QStringLiteral("'/shots/1.png'")};
    }
    return {};
}

void ServiceCall::script(ScriptedServiceProcess& service, const Behaviour& behaviour) const
{
    const Behaviour right = Behaviour::reply(rightAnswer());
    QList<Behaviour> behaviours;
    for (int before = 1; before < number; ++before) {
        behaviours.append(right);
    }
    behaviours.append({behaviour, right});
    if (property.isEmpty()) {
        service.script(path, interface, member, behaviours);
    } else {
        service.scriptProperty(member, path, property, behaviours);
    }
}
