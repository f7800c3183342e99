// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QProcess>

/// A program of the session, which never outlives it, however it ends.
class SessionProcess : public QProcess
{
    Q_OBJECT

public:
    enum class Role
    {
        /// Works behind the command and does not see the terminal's interrupts, which are the command's.
        Background,
        /// Has the session's own input, output and terminal.
        Command
    };

    explicit SessionProcess(Role role, QObject* parent = nullptr);
    ~SessionProcess() override;

    /// The first line that the program prints. Throws std::runtime_error where it prints none.
    QString readFirstLine();

    /// Asks the program to end and waits; ends it where it does not.
    void stop();

protected:
    void setupChildProcess() override;

private:
    Role mRole;
};
