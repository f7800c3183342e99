// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "CompositorOptions.h"

QList<QCommandLineOption> CompositorOptions::declarations()
{
    return {
        {cSize, QStringLiteral("Size of the output in pixels; by default 1024x600."), QStringLiteral("WIDTHxHEIGHT")},
        {cTurnWindow,
         QStringLiteral("Turns the window with the screen's orientation, so that its contents stand upright.")},
        {cTouch, QStringLiteral("Makes the mouse a finger, with Ctrl held a pair of fingers.")},
        {cKeyboardLayout,
         QStringLiteral(
             "Keyboard layout of the applications, as \"de\" or\n\"de(nodeadkeys)\"; by default the desktop's."),
         QStringLiteral("LAYOUT")},
        {cPanel,
         QStringLiteral("Gives the application's window a strip of the screen, beside the views. EDGE is bottom, top, "
                        "left or right; by default bottom, with the size that the window has."),
         QStringLiteral("APPID[:EDGE[:SIZE]]")},
        {cScreenSaverTimeout,
         QStringLiteral("Seconds without input until the screen saver starts, 0 for never; by default 300."),
         QStringLiteral("SECONDS")},
        {cScript,
         QStringLiteral("Plays a script: views that come and go, calls that fail, input and more. SCRIPTS in "
                        "telvaro-compositor(1) explains the steps."),
         QStringLiteral("FILE")},
    };
}
