// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "ChildProcess.h"

#include <QByteArray>
#include <QProcessEnvironment>
#include <QTemporaryDir>

/// A compositor with a runtime directory of its own.
class CompositorProcess
{
public:
    CompositorProcess();

    /// The compositor's own environment; it may be changed before start().
    QProcessEnvironment& environment()
    {
        return mEnvironment;
    }

    const QProcessEnvironment& environment() const
    {
        return mEnvironment;
    }

    /// Starts it and waits until it is up; throws std::runtime_error where it does not come up.
    void start(const QStringList& options = {});
    /// As above, by a shell that has run \a command before.
    void startWithLimit(const QString& command);
    /// Starts it and waits until it has ended, as it does where it cannot come up; answers the exit status.
    int runToEnd(const QStringList& options = {});

    void signal(int number);
    /// Answers the exit status, or the negative signal number where it crashed.
    int waitForEnd();
    /// Asks it to end and answers as above.
    int end();
    bool isRunning();

    QString runtimeDirectory() const
    {
        return mDirectory.path();
    }
    /// What is in the runtime directory.
    QStringList sockets() const;
    QString display() const
    {
        return mDisplay;
    }
    qint64 processId() const
    {
        return mProcess.processId();
    }
    /// Its processor time until now, in milliseconds.
    qint64 processorTime() const;
    /// Its resident memory in bytes.
    qint64 residentMemory() const;

    int descriptorCount() const;

    QByteArray output();
    QByteArray errors() const;

    /// For a client of this compositor.
    QProcessEnvironment clientEnvironment() const;

private:
    void start(const QString& program, const QStringList& arguments);
    QString errorFile() const;

    QTemporaryDir mDirectory;
    QTemporaryDir mErrorDirectory;
    QProcessEnvironment mEnvironment;
    ChildProcess mProcess;
    QString mDisplay;
};
