// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QProcess>

/// A child process that dies with the test program.
class ChildProcess : public QProcess
{
    Q_OBJECT

public:
    /// The deadline for every wait, generous for a busy machine.
    static constexpr int cDeadline = 20000;

    explicit ChildProcess(QObject* parent = nullptr);
    ~ChildProcess() override;

    /// The path of a service program, which is native even if the tests run under emulation: the environment variable
    /// TELVARO_SERVICE_PROGRAMS then names its directory.
    static QString serviceProgram(const QString& name);

    /// Starts the program; throws std::runtime_error on a failure.
    void run(const QString& program, const QStringList& arguments = {});

    /// Waits for a line of standard output; returns false on a timeout.
    bool waitForOutputLine(int milliseconds = cDeadline);

    /// Returns the next line of standard output without its line break. Throws std::runtime_error on a timeout.
    QByteArray readOutputLine();

    /// Kills the program and waits for its end.
    void end();

    /// Sends SIGSTOP; returns once the program has stopped.
    void freeze();
    void thaw();

protected:
    void setupChildProcess() override;
};
