// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QCommandLineOption>
#include <QList>
#include <QString>

/// The options of telvaro-compositor that telvaro-session passes on to it.
namespace CompositorOptions {

const QString cSize = QStringLiteral("size");
const QString cPanel = QStringLiteral("panel");
const QString cKeyboardLayout = QStringLiteral("keyboard-layout");
const QString cTouch = QStringLiteral("touch");
const QString cTurnWindow = QStringLiteral("turn-window");
const QString cScreenSaverTimeout = QStringLiteral("screensaver-timeout");
const QString cScript = QStringLiteral("script");

/// Without a value, and in every session.
const QString cRemoteControl = QStringLiteral("remote-control");

/// The options of a session's command line.
QList<QCommandLineOption> declarations();

} // namespace CompositorOptions
