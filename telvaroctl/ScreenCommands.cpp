// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "Command.h"
#include "Console.h"
#include "Json.h"
#include "Table.h"

#include <TelvaroScreenDBusConnector.h>

#include <QDBusVariant>
#include <QJsonObject>
#include <QString>
#include <QVariant>

namespace {

// The library exports cScreenSaverTimoutProperty under this misspelled name, which is part of its ABI.
using Screen = TelvaroScreenDBusConnector;

QString onOrOff(bool isOn)
{
    return isOn ? QStringLiteral("on") : QStringLiteral("off");
}

bool isOnOrOff(const QString& word)
{
    return word == QLatin1String("on") || word == QLatin1String("off");
}

/// Reads the property back: the library does not report whether the service accepted a write.
ExitStatus confirm(Screen& screen, const QString& property, const QVariant& wanted)
{
    const QVariant value = warningCount() == 0 ? screen.getProperty(property) : QVariant();
    if (warningCount() > 0) {
        return Failed;
    }
    if (value != wanted) {
        printError(QStringLiteral("the service did not accept '%1': %2 is '%3'")
                       .arg(wanted.toString(), property, value.toString()));
        return Failed;
    }
    return Done;
}

ExitStatus showScreenSaver(Screen& screen, bool asJson)
{
    const bool isActive = screen.isScreenSaverActive();
    const QVariant isEnabled = screen.getProperty(Screen::cScreenSaverEnabledProperty);
    const QVariant timeout = screen.getProperty(Screen::cScreenSaverTimoutProperty);
    if (warningCount() > 0) {
        return Failed;
    }
    if (asJson) {
        printJson(QJsonObject{
            {QStringLiteral("active"), isActive},
            {QStringLiteral("enabled"), toJson(isEnabled)},
            {QStringLiteral("timeoutSeconds"), toJson(timeout)},
        });
    } else {
        printLine(QStringLiteral("screen saver %1, %2, timeout %3 s")
                      .arg(onOrOff(isEnabled.toBool()),
                           isActive ? QStringLiteral("active") : QStringLiteral("not active"), timeout.toString()));
    }
    return Done;
}

ExitStatus screenSaver(const QCommandLineParser& parser, const QStringList& arguments)
{
    const QString action = arguments.value(0, QStringLiteral("status"));
    const bool isTimeout = action == QLatin1String("timeout");
    if ((!isTimeout && !isOnOrOff(action) && action != QLatin1String("status"))
        || arguments.size() > (isTimeout ? 2 : 1)) {
        return usageError("screensaver", QStringLiteral("expected 'on', 'off', 'status' or 'timeout SECONDS'"));
    }
    bool isNumber = false;
    const int seconds = arguments.value(1).toInt(&isNumber);
    if (isTimeout && !isNumber) {
        return usageError("screensaver", QStringLiteral("'%1' is not a number of seconds").arg(arguments.value(1)));
    }
    if (!isOnCompositorDevice()) {
        return Failed;
    }
    Screen screen;
    if (isTimeout) {
        screen.setScreenSaverTimeout(seconds);
        return confirm(screen, Screen::cScreenSaverTimoutProperty, seconds);
    }
    if (action == QLatin1String("on")) {
        screen.enableScreenSaver();
        return confirm(screen, Screen::cScreenSaverEnabledProperty, true);
    }
    if (action == QLatin1String("off")) {
        screen.disableScreenSaver();
        return confirm(screen, Screen::cScreenSaverEnabledProperty, false);
    }
    return showScreenSaver(screen, isJsonWanted(parser));
}

QString toDegrees(const QString& word)
{
    if (word == QLatin1String("landscape")) {
        return Screen::getOrientationLandscape();
    }
    if (word == QLatin1String("portrait")) {
        return Screen::getOrientationPortrait();
    }
    if (word == QLatin1String("inverse-portrait")) {
        return Screen::getOrientationInversePortrait();
    }
    return word;
}

ExitStatus orientation(const QCommandLineParser& parser, const QStringList& arguments)
{
    if (arguments.size() > 1) {
        return wrongArgumentCount("orientation");
    }
    const QString degrees = toDegrees(arguments.value(0, QStringLiteral("0")));
    bool isNumber = false;
    degrees.toInt(&isNumber);
    if (!isNumber) {
        return usageError("orientation",
                          QStringLiteral("'%1' is neither the name of an orientation nor a number").arg(degrees));
    }
    if (!isOnCompositorDevice()) {
        return Failed;
    }
    Screen screen;
    if (!arguments.isEmpty()) {
        screen.setOrientation(degrees);
        return confirm(screen, Screen::cScreenOrientationProperty, degrees);
    }
    const QString current = screen.getOrientation();
    if (warningCount() > 0) {
        return Failed;
    }
    if (isJsonWanted(parser)) {
        printJson(QJsonObject{{QStringLiteral("orientation"), current}});
    } else {
        printLine(printable(current));
    }
    return Done;
}

ExitStatus fullScreen(const QCommandLineParser& parser, const QStringList& arguments)
{
    if (arguments.size() > 1 || (!arguments.isEmpty() && !isOnOrOff(arguments.constFirst()))) {
        return usageError("fullscreen", QStringLiteral("expected 'on', 'off' or nothing"));
    }
    if (!isOnCompositorDevice()) {
        return Failed;
    }
    Screen screen;
    if (!arguments.isEmpty()) {
        const bool isWanted = arguments.constFirst() == QLatin1String("on");
        screen.setFullScreen(isWanted);
        return confirm(screen, Screen::cFullScreenProperty, isWanted);
    }
    const bool isFullScreen = screen.getFullScreen();
    if (warningCount() > 0) {
        return Failed;
    }
    if (isJsonWanted(parser)) {
        printJson(QJsonObject{{QStringLiteral("fullScreen"), isFullScreen}});
    } else {
        printLine(onOrOff(isFullScreen));
    }
    return Done;
}

} // namespace

QList<Command> screenCommands()
{
    return {
        {"screensaver", "Shows or changes the screen saver's settings.", "[on | off | status | timeout SECONDS]",
         "A change is read back; exits with 1 if the service did not accept it.", jsonOption, screenSaver},
        {"orientation", "Shows or changes the rotation of the screen's contents.",
         "[landscape | portrait | inverse-portrait | DEGREES]",
         "A change is read back; exits with 1 if the service did not accept it.", jsonOption, orientation},
        {"fullscreen", "Shows or changes whether the current view has the whole screen.", "[on | off]",
         "A change is read back; exits with 1 if the service did not accept it.", jsonOption, fullScreen},
    };
}
