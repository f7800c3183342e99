// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "BackgroundProcess.h"

#include "Descriptors.h"
#include "ExitStatus.h"

#include <QFile>
#include <QTextStream>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

QString lastError()
{
    return QString::fromLocal8Bit(::strerror(errno));
}

[[noreturn]] void waitForChild(pid_t child, int socket, int log)
{
    QFile input;
    const QByteArray text = input.open(socket, QIODevice::ReadOnly) ? input.readAll() : QByteArray();
    if (!text.isEmpty()) {
        QTextStream(stdout) << QString::fromUtf8(text);
        std::exit(Done);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    QFile output;
    if (output.open(log, QIODevice::ReadOnly) && output.seek(0)) {
        QTextStream(stderr) << QString::fromLocal8Bit(output.readAll());
    }
    // Whatever ended the child, it was too early.
    std::exit(WIFEXITED(status) ? std::max<int>(WEXITSTATUS(status), Failed) : Failed);
}

} // namespace

BackgroundProcess::~BackgroundProcess()
{
    if (!mTemporaryLog.isEmpty()) {
        ::unlink(mTemporaryLog.constData());
    }
}

MaybeError BackgroundProcess::start(const QString& logPath)
{
    // Whoever reads from a pipe of the caller waits for its end.
    closeInheritedDescriptors();
    // The file at `logPath` may be the log of a running session.
    QByteArray temporaryLog = QFile::encodeName(logPath + QStringLiteral(".XXXXXX"));
    const int log = ::mkostemp(temporaryLog.data(), O_CLOEXEC);
    if (log < 0) {
        return Error{QStringLiteral("cannot write %1: %2").arg(logPath, lastError())};
    }
    mTemporaryLog = temporaryLog;
    mLogPath = logPath;
    int ends[2];
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) {
        return Error{QStringLiteral("cannot create a socket: %1").arg(lastError())};
    }
    const pid_t child = ::fork();
    if (child < 0) {
        return Error{QStringLiteral("cannot create a process: %1").arg(lastError())};
    }
    if (child > 0) {
        ::close(ends[1]);
        waitForChild(child, ends[0], log);
    }
    ::close(ends[0]);
    // Nobody could join the session.
    ::prctl(PR_SET_PDEATHSIG, SIGTERM);
    ::setsid();
    ::dup2(::open("/dev/null", O_RDONLY | O_CLOEXEC), STDIN_FILENO);
    ::dup2(log, STDOUT_FILENO);
    ::dup2(log, STDERR_FILENO);
    ::close(log);
    mParent = ends[1];
    return {};
}

MaybeError BackgroundProcess::release(const QString& text)
{
    if (::rename(mTemporaryLog.constData(), QFile::encodeName(mLogPath).constData()) != 0) {
        return Error{QStringLiteral("cannot write %1: %2").arg(mLogPath, lastError())};
    }
    mTemporaryLog.clear();
    ::prctl(PR_SET_PDEATHSIG, 0);
    const QByteArray data = text.toUtf8();
    const bool isSent =
        ::send(mParent, data.constData(), static_cast<size_t>(data.size()), MSG_NOSIGNAL) == data.size();
    ::close(mParent);
    return isSent ? MaybeError() : Error{QStringLiteral("the caller has ended")};
}
