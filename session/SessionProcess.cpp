// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "SessionProcess.h"

#include "CommandGuard.h"

#include <chrono>
#include <csignal>
#include <cstring>

#include <sys/prctl.h>
#include <unistd.h>

namespace {

constexpr std::chrono::seconds cStartDeadline(20);
// Longer than the guard of a command takes.
constexpr int cEndDeadline = 10000;

} // namespace

SessionProcess::SessionProcess(Role role, QObject* parent)
    : QProcess(parent)
    , mRole(role)
{
    if (role == Role::Command) {
        setProcessChannelMode(QProcess::ForwardedChannels);
        setInputChannelMode(QProcess::ForwardedInputChannel);
    } else {
        setProcessChannelMode(QProcess::ForwardedErrorChannel);
        setStandardInputFile(QProcess::nullDevice());
    }
    mStartDeadline.setSingleShot(true);
}

SessionProcess::~SessionProcess()
{
    stop();
}

void SessionProcess::startUntilReady(const QString& program, const QStringList& arguments)
{
    connect(this, &QProcess::readyReadStandardOutput, this, &SessionProcess::onReadyRead);
    connect(this, QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished), this, &SessionProcess::onFinished);
    connect(this, &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart) {
            fail(errorString());
        }
    });
    connect(&mStartDeadline, &QTimer::timeout, this, [this] {
        fail(QStringLiteral("it printed no line within %1 seconds").arg(cStartDeadline.count()));
    });
    mStartDeadline.start(cStartDeadline);
    start(program, arguments);
}

void SessionProcess::stop()
{
    if (state() == QProcess::NotRunning) {
        return;
    }
    terminate();
    if (!waitForFinished(cEndDeadline)) {
        kill();
        waitForFinished(cEndDeadline);
    }
}

void SessionProcess::onReadyRead()
{
    if (mStartDeadline.isActive() && canReadLine()) {
        mStartDeadline.stop();
        Q_EMIT ready(QString::fromLocal8Bit(readLine()).trimmed());
    }
}

void SessionProcess::onFinished()
{
    const QString ending = exitStatus() == QProcess::NormalExit
        ? QStringLiteral("exit status %1").arg(exitCode())
        : QStringLiteral("signal %1 (%2)").arg(exitCode()).arg(QString::fromLocal8Bit(::strsignal(exitCode())));
    if (mStartDeadline.isActive()) {
        fail(QStringLiteral("it ended with %1").arg(ending));
    } else {
        Q_EMIT ended(QStringLiteral("%1 has ended with %2").arg(program(), ending));
    }
}

void SessionProcess::fail(const QString& reason)
{
    mStartDeadline.stop();
    Q_EMIT ended(QStringLiteral("%1 did not start: %2").arg(program(), reason));
}

void SessionProcess::setupChildProcess()
{
    ::prctl(PR_SET_PDEATHSIG, SIGTERM);
    // The child inherits the signal mask, and the session blocks the signals that it reads from a descriptor.
    sigset_t none;
    sigemptyset(&none);
    ::sigprocmask(SIG_SETMASK, &none, nullptr);
    if (mRole == Role::Background) {
        ::setpgid(0, 0);
    } else {
        guardCommand();
    }
}
