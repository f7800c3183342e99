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

    /// The compositor's environment; may be changed before start().
    QProcessEnvironment& environment()
    {
        return mEnvironment;
    }

    const QProcessEnvironment& environment() const
    {
        return mEnvironment;
    }

    /// Starts the compositor and waits until it is ready; throws std::runtime_error if it fails to start.
    void start(const QStringList& options = {});
    /// As above, from a shell that has run `command` before.
    void startWithLimit(const QString& command);
    /// Starts the compositor, which is expected to fail, and returns its exit status.
    int runToEnd(const QStringList& options = {});

    void signal(int number);
    /// Returns the exit status, or the negative signal number after a crash.
    int waitForEnd();
    /// Terminates the compositor and returns as above.
    int end();
    bool isRunning();

    QString runtimeDirectory() const
    {
        return mDirectory.path();
    }
    /// The files in the runtime directory.
    QStringList sockets() const;
    QString display() const
    {
        return mDisplay;
    }
    qint64 processId() const
    {
        return mProcess.processId();
    }
    /// The processor time used so far, in milliseconds.
    qint64 processorTime() const;
    /// The resident memory in bytes; 0 under a sanitizer, whose own it would be.
    qint64 residentMemory() const;
    /// The part of it that is not of a file, in bytes.
    qint64 anonymousMemory() const;

    int descriptorCount() const;

    QByteArray output();
    QByteArray errors() const;

    /// The environment of a client of this compositor.
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
