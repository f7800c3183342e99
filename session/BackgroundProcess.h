// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "Result.h"

#include <QByteArray>
#include <QString>

/// The program, continued in a child process without a terminal while its caller waits.
class BackgroundProcess
{
public:
    BackgroundProcess() = default;
    /// Removes the log of a child that has not been released.
    ~BackgroundProcess();
    Q_DISABLE_COPY(BackgroundProcess)

    /// Closes all descriptors but the standard ones and forks; to be called before anything else opens one, such as the
    /// application object. Returns in the child, whose output goes to a temporary file beside `logPath`. The parent
    /// blocks until release() and then exits with Done. If the child ends before, the parent prints the child's output
    /// and exits with its status, or with Failed if that is Done.
    /// If the parent ends before, the child gets SIGTERM.
    MaybeError start(const QString& logPath);

    /// Renames the log to its final path, replacing the file there, and lets the parent print the text and exit.
    /// Returns why that failed.
    MaybeError release(const QString& text);

private:
    int mParent = -1;
    QString mLogPath;
    /// Empty when the log has its final path.
    QByteArray mTemporaryLog;
};
