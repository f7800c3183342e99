// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "Result.h"

#include <QProcess>

/// A child process that the kernel terminates when the session dies, however the session dies.
class SessionProcess : public QProcess
{
    Q_OBJECT

public:
    enum class Role
    {
        /// Has a process group of its own: interrupts from the terminal reach only the command.
        Background,
        /// Has the session's own input, output and terminal, and ends with all that it has started.
        Command
    };

    explicit SessionProcess(Role role, QObject* parent = nullptr);
    ~SessionProcess() override;

    /// Blocks until the program has printed a line. Returns it, or why the program did not print one.
    Result<QString> readFirstLine();

    /// Sends SIGTERM and waits; sends SIGKILL to a program that does not end.
    void stop();

    /// Returns how the program ended: "exit status 1", "signal 9 (Killed)".
    QString ending() const;

protected:
    void setupChildProcess() override;

private:
    Role mRole;
};
