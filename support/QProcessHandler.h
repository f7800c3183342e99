// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QString>

class QStringList;

/// Runs one program at a time to its end and keeps what it printed.
class QProcessHandler
{
public:
    /// Starts the program, looked up on the search path where it holds no directory, with an empty standard input, and
    /// blocks until it has ended, however long that takes; a grandchild that keeps the output open is not waited for.
    /// Returns 0 when it ended with exit status 0, its exit status when it ended with another, and -1 when it could not
    /// be started or was ended by a signal. Logs nothing.
    int startProcess(const QString& program, const QStringList& arguments);

    /// All that the last run wrote to the channel, untrimmed.
    QString getStandardOutput() const;
    QString getStandardError() const;

private:
    QString mStandardOutput;
    QString mStandardError;
};
