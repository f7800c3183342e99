// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

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
    /// `compositorOptions` are passed on to the compositor.
    Session(QStringList compositorOptions, bool isHeadless, QObject* parent = nullptr);
    /// Stops the programs that still run, the bus last.
    ~Session() override;

    /// Starts the bus and then the compositor, and blocks until both are up. Returns why one is not.
    MaybeError start();

    /// Returns whether start() has failed because the compositor rejects its options. It has printed why.
    bool areOptionsRejected() const;

    /// Starts the command with this process's input and output; emits ended() when it has ended.
    void run(const QStringList& command);

    /// Returns the environment variables of a program in the session, as a shell exports them.
    QString environmentScript() const;

public Q_SLOTS:
    /// Terminates the command, or ends the session where it has none. Ignores SIGINT while a command runs: the terminal
    /// has sent it to the command, too, which may handle it.
    void end(int signal);

Q_SIGNALS:
    /// The status is the command's, as a shell reports it.
    void ended(int status);

private:
    MaybeError startBus();
    MaybeError startCompositor();
    /// Returns the variables as NAME=VALUE.
    QStringList environment() const;
    QProcessEnvironment commandEnvironment() const;
    void onBackgroundProgramEnded();

    QStringList mCompositorOptions;
    bool mIsHeadless;
    QTemporaryDir mDirectory;
    QString mBusAddress;
    QString mWaylandDisplay;
    SessionProcess mBus;
    SessionProcess mCompositor;
    SessionProcess mCommand;
};
