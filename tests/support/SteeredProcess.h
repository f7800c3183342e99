// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "ChildProcess.h"

#include <QJsonObject>

/// A child process with commands and replies as JSON objects, one per line.
class SteeredProcess
{
public:
    SteeredProcess(const QString& program, const QStringList& arguments);
    virtual ~SteeredProcess();
    SteeredProcess(const SteeredProcess&) = delete;
    SteeredProcess& operator=(const SteeredProcess&) = delete;

    /// Starts or restarts the program and waits until it is ready.
    virtual void start();

    /// Kills the program and waits for its end.
    void kill();

    /// Sends SIGSTOP; returns once the program has stopped.
    void freeze();
    void thaw();

    /// Whether the program runs and replies.
    bool isRunning();

    /// Sends a command and waits for its reply. Throws std::runtime_error on an error reply.
    QJsonObject command(const QJsonObject& command);

protected:
    /// The two halves of command().
    void send(const QJsonObject& command);
    QJsonObject readAnswer();
    /// Waits for a reply; returns false on a timeout.
    bool waitForAnswer(int milliseconds = ChildProcess::cDeadline);

    qint64 processId() const;

    ChildProcess mProcess;

private:
    QString mProgram;
    QStringList mArguments;
};
