// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QString>

class QStringList;

/// Runs a program to its end and keeps its output.
class QProcessHandler
{
public:
    /// Starts the program with an empty standard input and blocks, without a time limit, until it has exited; a
    /// grandchild that keeps the output open is not waited for. The program is looked up in PATH if its name holds no
    /// directory. Returns its exit status, or -1 if it could not be started or was killed by a signal. Logs nothing.
    int startProcess(const QString& program, const QStringList& arguments);

    /// Return all output of the last run on that channel, untrimmed.
    QString getStandardOutput() const;
    QString getStandardError() const;

private:
    QString mStandardOutput;
    QString mStandardError;
};
