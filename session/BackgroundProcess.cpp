// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "BackgroundProcess.h"

#include "ExitStatus.h"

#include <QFile>
#include <QTextStream>

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

QString lastError()
{
    return QString::fromLocal8Bit(::strerror(errno));
}

[[noreturn]] void waitForChild(pid_t child, int socket, const QString& logPath)
{
    QFile input;
    const QByteArray text = input.open(socket, QIODevice::ReadOnly) ? input.readAll() : QByteArray();
    if (!text.isEmpty()) {
        QTextStream(stdout) << QString::fromUtf8(text);
        std::exit(Done);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    QFile log(logPath);
    if (log.open(QIODevice::ReadOnly)) {
        QTextStream(stderr) << QString::fromLocal8Bit(log.readAll());
        log.remove();
    }
    std::exit(WIFEXITED(status) ? WEXITSTATUS(status) : Failed);
}

} // namespace

BackgroundProcess::BackgroundProcess(int parent)
    : mParent(parent)
{
}

Result<BackgroundProcess> BackgroundProcess::start(const QString& logPath)
{
    constexpr mode_t cOwnerOnly = 0600;
    const int log =
        ::open(QFile::encodeName(logPath).constData(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, cOwnerOnly);
    if (log < 0) {
        return Error{QStringLiteral("cannot write %1: %2").arg(logPath, lastError())};
    }
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
        waitForChild(child, ends[0], logPath);
    }
    ::close(ends[0]);
    ::setsid();
    ::dup2(::open("/dev/null", O_RDONLY | O_CLOEXEC), STDIN_FILENO);
    ::dup2(log, STDOUT_FILENO);
    ::dup2(log, STDERR_FILENO);
    ::close(log);
    return BackgroundProcess(ends[1]);
}

bool BackgroundProcess::release(const QString& text)
{
    const QByteArray data = text.toUtf8();
    const bool isSent =
        ::send(mParent, data.constData(), static_cast<size_t>(data.size()), MSG_NOSIGNAL) == data.size();
    ::close(mParent);
    return isSent;
}
