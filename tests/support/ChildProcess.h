// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QProcess>

/// A program of a test's own that never outlives the test program, however that ends.
class ChildProcess : public QProcess
{
    Q_OBJECT

public:
    /// How long anything that a test waits for may take; far more than it needs on a busy machine.
    static constexpr int cDeadline = 20000;

    explicit ChildProcess(QObject* parent = nullptr);
    ~ChildProcess() override;

    /// Path of one of the programs of the test service. They are native programs also where the tests themselves run
    /// under emulation: the environment variable TELVARO_SERVICE_PROGRAMS names their directory then.
    static QString serviceProgram(const QString& name);

    /// Starts the program; throws std::runtime_error where it cannot be.
    void run(const QString& program, const QStringList& arguments = {});

    /// Waits for a line of standard output; false where none comes.
    bool waitForOutputLine(int milliseconds = cDeadline);

    /// The next line of standard output, without the line break. Throws std::runtime_error where none comes.
    QByteArray readOutputLine();

    /// Ends the program at once and waits until it is gone.
    void end();

    /// Stops the program from doing anything; returns once it has stopped.
    void freeze();
    void thaw();

protected:
    void setupChildProcess() override;
};
