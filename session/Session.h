// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "SessionProcess.h"

#include <QObject>
#include <QProcessEnvironment>
#include <QStringList>
#include <QTemporaryDir>

#include <stdexcept>

/// A desk without the device: a bus and a compositor of its own, and what runs in it, all of which begin and end
/// together.
class Session : public QObject
{
    Q_OBJECT

public:
    /// The compositor has refused its options, and has said why.
    class WrongUsage : public std::runtime_error
    {
    public:
        using std::runtime_error::runtime_error;
    };

    /// The options are the compositor's.
    Session(QStringList compositorOptions, bool isHeadless, QObject* parent = nullptr);
    /// Ends what is still running, the bus last.
    ~Session() override;

    /// Starts the bus and then the compositor, and blocks until both are up. Throws std::runtime_error if one is not,
    /// and WrongUsage if that is because of the options.
    void start();

    /// Runs the command in the session, with this process's input and output; ended() follows.
    void run(const QStringList& command);

    /// What a program needs in its environment to be part of the session, as NAME=VALUE.
    QStringList environment() const;

public Q_SLOTS:
    /// Asks the command to end, or the session where it has none. An interrupt from the terminal has reached the
    /// command already, which may have its own idea of it.
    void end(int signal);

Q_SIGNALS:
    /// Everything is over. The status is the command's, as a shell tells it.
    void ended(int status);

private:
    void startBus();
    void startCompositor();
    QString readCompositorsLine();
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
