// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "CompositorOptions.h"

QList<QCommandLineOption> CompositorOptions::declarations()
{
    return {
        {cSize, QStringLiteral("Size of the output in pixels; by default 1024x600."), QStringLiteral("WIDTHxHEIGHT")},
        {cScreenSaverTimeout,
         QStringLiteral("Seconds without input until the screen saver starts,\n0 for never; by default 300."),
         QStringLiteral("SECONDS")},
        {cScript, QStringLiteral("Plays a script: views that come and go, calls that fail,\nand more, at given times."),
         QStringLiteral("FILE")},
    };
}
