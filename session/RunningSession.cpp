// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "RunningSession.h"

#include <QFile>

#include <cerrno>
#include <csignal>
#include <cstring>

#include <poll.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

constexpr int cEndDeadline = 20000;

/// The id may belong to another process by now.
bool isSession(int process)
{
    QFile name(QStringLiteral("/proc/%1/comm").arg(process));
    return name.open(QIODevice::ReadOnly) && name.readAll() == "telvaro-session\n";
}

} // namespace

MaybeError RunningSession::end()
{
    const QString value = qEnvironmentVariable(qPrintable(cProcessVariable));
    const int process = value.toInt();
    if (process <= 0) {
        return Error{QStringLiteral("this is not a session: %1 is not set").arg(cProcessVariable)};
    }
    // The descriptor keeps referring to this process, however its id is used later.
    const auto descriptor = static_cast<int>(::syscall(SYS_pidfd_open, process, 0));
    pollfd ended{descriptor, POLLIN, 0};
    // A process that has ended keeps its id and name until its parent has collected it.
    if (descriptor < 0 || !isSession(process) || ::poll(&ended, 1, 0) != 0) {
        return Error{QStringLiteral("the session has ended already")};
    }
    if (::syscall(SYS_pidfd_send_signal, descriptor, SIGTERM, nullptr, 0) != 0) {
        return Error{QStringLiteral("cannot end the session: %1").arg(QString::fromLocal8Bit(::strerror(errno)))};
    }
    return ::poll(&ended, 1, cEndDeadline) == 1 ? MaybeError() : Error{QStringLiteral("the session does not end")};
}
