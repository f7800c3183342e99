// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "SessionProcess.h"

#include "CommandGuard.h"

#include <csignal>
#include <cstring>

#include <sys/prctl.h>
#include <unistd.h>

namespace {

constexpr int cStartDeadline = 20000;
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
}

SessionProcess::~SessionProcess()
{
    stop();
}

Result<QString> SessionProcess::readFirstLine()
{
    while (!canReadLine()) {
        if (!waitForReadyRead(cStartDeadline)) {
            const QString reason = state() == QProcess::NotRunning && error() != QProcess::FailedToStart
                ? QStringLiteral("it ended with %1").arg(ending())
                : errorString();
            return Error{QStringLiteral("%1 did not start: %2").arg(program(), reason)};
        }
    }
    return QString::fromLocal8Bit(readLine()).trimmed();
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

QString SessionProcess::ending() const
{
    return exitStatus() == QProcess::NormalExit
        ? QStringLiteral("exit status %1").arg(exitCode())
        : QStringLiteral("signal %1 (%2)").arg(exitCode()).arg(QString::fromLocal8Bit(::strsignal(exitCode())));
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
