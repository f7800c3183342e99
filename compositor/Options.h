// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "Result.h"
#include "script/Script.h"
#include "shell/Keymap.h"

#include <QByteArray>
#include <QCommandLineOption>
#include <QList>
#include <QSize>

class QCommandLineParser;

/// The settings of the command line.
struct Options
{
    QSize size{1024, 600};
    /// Empty for the first free one.
    QByteArray socketName;
    int screenSaverTimeoutSeconds = 300;
    bool isFullScreenWindow = false;
    bool isWindowTurning = false;
    bool isMouseFinger = false;
    bool isRemoteControlled = false;
    Keymap::Layout keyboardLayout;
    /// Empty where no script is given.
    Script::Plan script;

    static QList<QCommandLineOption> declarations();
    static Result<Options> read(const QCommandLineParser& parser);
};
