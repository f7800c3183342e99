// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "Result.h"
#include "SessionProcess.h"

#include <QObject>
#include <QProcessEnvironment>
#include <QStringList>
#include <QTemporaryDir>

/// A private bus, a compositor and a command, which start and end together.
class Session : public QObject
{
    Q_OBJECT

public:
    /// `compositorOptions` are passed on to the compositor. `command` is the program and its arguments, or empty.
    Session(QStringList compositorOptions, bool isHeadless, QStringList command, QObject* parent = nullptr);
    /// Stops the programs that still run, the bus last.
    ~Session() override;

    /// Starts the bus and then the compositor; emits ready() when both are up. Returns why that cannot begin.
    MaybeError start();

    /// Starts the command, if any, with this process's input and output; emits ended() when it has ended.
    void run();

    /// Returns the commands of a shell that give it the environment of a program in the session.
    QString environmentScript() const;

public Q_SLOTS:
    /// Terminates the command, or ends the session where none runs. Ignores SIGINT while a command runs: the terminal
    /// has sent it to the command, too, which may handle it.
    void end(int signal);

Q_SIGNALS:
    void ready();
    /// The status is the command's, as a shell reports it. If the session has failed, it has printed why.
    void ended(int status);

private:
    QString busLog() const;
    /// Returns the last line of the bus after a colon, or an empty text.
    QString lastBusMessage() const;
    void startCompositor();
    void onCompositorReady(const QString& line);
    void onProgramEnded(const QString& reason);
    void failToStart(const QString& reason);
    void fail(const QString& reason);
    /// Returns the variables as NAME=VALUE.
    QStringList environment() const;
    QProcessEnvironment commandEnvironment() const;

    QStringList mCompositorOptions;
    bool mIsHeadless;
    bool mIsDisplayUsed = false;
    QStringList mCommandLine;
    QTemporaryDir mDirectory;
    QString mBusAddress;
    QString mWaylandDisplay;
    SessionProcess mBus;
    SessionProcess mCompositor;
    SessionProcess mCommand;
};
