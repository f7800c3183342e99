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
    struct Panel
    {
        /// Empty for no panel.
        QString appId;
        Qt::Edge edge = Qt::BottomEdge;
        /// 0 for the size of the window.
        int thickness = 0;
    };
    Panel panel;
    /// Empty where no script is given.
    Script::Plan script;

    static QList<QCommandLineOption> declarations();
    static Result<Options> read(const QCommandLineParser& parser);
};
