// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "Command.h"

#include <TelvaroGlobalOverlayDBusConnector.h>

#include <QString>

namespace {

ExitStatus overlay(const QStringList& arguments)
{
    const QString action = arguments.value(0);
    const bool isShow = action == QLatin1String("show") && arguments.size() == 2;
    const bool isHide = action == QLatin1String("hide") && arguments.size() == 1;
    if (!isShow && !isHide) {
        return usageError("overlay", QStringLiteral("expected 'show TEXT' or 'hide'"));
    }
    if (!isOnCompositorDevice()) {
        return Failed;
    }
    TelvaroGlobalOverlayDBusConnector connector;
    if (isShow) {
        connector.showGlobalOverlay(arguments.at(1));
    } else {
        connector.hideGlobalOverlay();
    }
    return doneUnlessWarned();
}

} // namespace

QList<Command> overlayCommands()
{
    return {
        {"overlay", "Shows a message over everything on the screen, or hides it.", "show TEXT | hide",
         "The library does not report whether the service accepted; the exit status says\nwhether it was asked.",
         noOptions,
         [](const QCommandLineParser& /*parser*/, const QStringList& arguments) {
             return overlay(arguments);
         }},
    };
}
