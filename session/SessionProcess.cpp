// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "SessionProcess.h"

#include <stdexcept>

#include <csignal>

#include <sys/prctl.h>
#include <unistd.h>

namespace {

constexpr int cStartDeadline = 20000;
constexpr int cEndDeadline = 5000;

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

QString SessionProcess::readFirstLine()
{
    while (!canReadLine()) {
        if (!waitForReadyRead(cStartDeadline)) {
            const std::string reason = state() == QProcess::NotRunning && error() != QProcess::FailedToStart
                ? "it ended"
                : errorString().toStdString();
            throw std::runtime_error(program().toStdString() + " did not start: " + reason);
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

void SessionProcess::setupChildProcess()
{
    ::prctl(PR_SET_PDEATHSIG, SIGTERM);
    if (mRole == Role::Background) {
        ::setpgid(0, 0);
    }
    // The session blocks what it handles itself, and a program inherits that.
    sigset_t none;
    sigemptyset(&none);
    ::sigprocmask(SIG_SETMASK, &none, nullptr);
}
