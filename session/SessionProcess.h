// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QProcess>
#include <QTimer>

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

    /// Starts a program that prints a line when it is up. Emits ready(), or ended() if there is no line in time.
    void startUntilReady(const QString& program, const QStringList& arguments);

    /// Sends SIGTERM and waits; sends SIGKILL to a program that does not end.
    void stop();

Q_SIGNALS:
    /// Emitted once, with the first line that the program has printed.
    void ready(const QString& line);
    /// Emitted for a program of startUntilReady(), with a text for the user: "telvaro-compositor did not start: it
    /// ended with exit status 1", "telvaro-compositor has ended with signal 9 (Killed)".
    void ended(const QString& reason);

protected:
    void setupChildProcess() override;

private:
    void onReadyRead();
    void onFinished();
    void fail(const QString& reason);

    Role mRole;
    /// Runs until the first line.
    QTimer mStartDeadline;
};
