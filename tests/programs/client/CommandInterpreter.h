// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "TestWindow.h"

#include <QHash>
#include <QObject>
#include <QPointer>
#include <QSocketNotifier>

/// Executes commands from standard input, one per line. Windows are numbered from 1 in the order of their opening.
///
/// - open APPID TITLE...: opens a window of the application
/// - title NUMBER TITLE...: changes a window's title
/// - close NUMBER
/// - menu NUMBER, combobox NUMBER, dialog NUMBER TITLE...: opens one
/// - ping: prints "pong"
/// - hang: stops handling events, the compositor's pings included
/// - crash, quit: ends, as at the end of the input
class CommandInterpreter : public QObject
{
    Q_OBJECT

public:
    explicit CommandInterpreter(QObject* parent = nullptr);

private:
    void read();
    void run(const QString& line);
    void open(const QString& appId, const QString& title);

    QSocketNotifier mNotifier;
    QByteArray mInput;
    QHash<int, QPointer<TestWindow>> mWindows;
    int mLastNumber = 0;
};
