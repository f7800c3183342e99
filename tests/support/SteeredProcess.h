// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "ChildProcess.h"

#include <QJsonObject>

/// A program that takes commands and gives answers as JSON objects, one per line.
class SteeredProcess
{
public:
    SteeredProcess(const QString& program, const QStringList& arguments);
    virtual ~SteeredProcess();
    SteeredProcess(const SteeredProcess&) = delete;
    SteeredProcess& operator=(const SteeredProcess&) = delete;

    /// Starts the program, after kill() or the end of the program also anew, and waits until it is ready.
    virtual void start();

    /// Ends it without a chance to say goodbye, and waits until it is gone.
    void kill();

    /// Stops it from doing anything; returns once it has stopped.
    void freeze();
    void thaw();

    /// Whether it is there and takes commands.
    bool isRunning();

    /// Sends a command and waits for its answer. Throws std::runtime_error on an answer that is an error.
    QJsonObject command(const QJsonObject& command);

protected:
    /// The two halves of command(), for what a test does between them.
    void send(const QJsonObject& command);
    QJsonObject readAnswer();
    /// Whether there is an answer, after a wait of at most that long.
    bool waitForAnswer(int milliseconds = ChildProcess::cDeadline);

    qint64 processId() const;

    ChildProcess mProcess;

private:
    QString mProgram;
    QStringList mArguments;
};
