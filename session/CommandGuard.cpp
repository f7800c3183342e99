// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "CommandGuard.h"

#include "Descriptors.h"

#include <QDir>
#include <QFile>
#include <QMultiHash>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <ctime>
#include <optional>
#include <set>

#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using Clock = std::chrono::steady_clock;

constexpr Clock::time_point cNever = Clock::time_point::max();
constexpr std::chrono::seconds cCommandGrace(5);
constexpr std::chrono::seconds cDescendantGrace(1);
// A shell's.
constexpr int cSignalBase = 128;

sigset_t awaitedSignals()
{
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, SIGCHLD);
    sigaddset(&set, SIGTERM);
    return set;
}

/// Blocks until SIGCHLD, SIGTERM or the deadline. Returns the signal, or -1 after the deadline.
int waitForSignal(Clock::time_point deadline)
{
    const sigset_t set = awaitedSignals();
    if (deadline == cNever) {
        return ::sigwaitinfo(&set, nullptr);
    }
    const auto left = std::max(deadline - Clock::now(), Clock::duration::zero());
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(left);
    const timespec limit{static_cast<time_t>(seconds.count()),
                         static_cast<long>(std::chrono::nanoseconds(left - seconds).count())};
    return ::sigtimedwait(&set, nullptr, &limit);
}

/// Collects the children that have ended. Returns the status of `command` as a shell reports it, if it is among them.
std::optional<int> collectChildren(pid_t command)
{
    std::optional<int> result;
    int status = 0;
    for (pid_t child = ::waitpid(-1, &status, WNOHANG); child > 0; child = ::waitpid(-1, &status, WNOHANG)) {
        if (child == command) {
            result = WIFEXITED(status) ? WEXITSTATUS(status) : cSignalBase + WTERMSIG(status);
        }
    }
    return result;
}

bool hasChildren()
{
    siginfo_t information{};
    return ::waitid(P_ALL, 0, &information, WEXITED | WNOHANG | WNOWAIT) == 0;
}

std::set<pid_t> descendants()
{
    QMultiHash<pid_t, pid_t> children;
    const QStringList processes =
        QDir(QStringLiteral("/proc")).entryList({QStringLiteral("[0-9]*")}, QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QString& process : processes) {
        QFile file(QStringLiteral("/proc/%1/stat").arg(process));
        if (file.open(QIODevice::ReadOnly)) {
            const QByteArray line = file.readAll();
            // State and parent follow the name, which stands in parentheses and may hold anything.
            const QList<QByteArray> fields = line.mid(line.lastIndexOf(')') + 2).split(' ');
            children.insert(fields.value(1).toInt(), process.toInt());
        }
    }
    std::set<pid_t> result;
    QList<pid_t> pending{::getpid()};
    while (!pending.isEmpty()) {
        const QList<pid_t> found = children.values(pending.takeFirst());
        result.insert(found.cbegin(), found.cend());
        pending.append(found);
    }
    return result;
}

/// Sends the signal to every descendant once, also to those that appear meanwhile. Returns when none is left, at the
/// latest after the grace period.
void signalDescendants(int signal)
{
    const Clock::time_point deadline = Clock::now() + cDescendantGrace;
    std::set<pid_t> signalled;
    while (hasChildren() && Clock::now() < deadline) {
        const std::set<pid_t> found = descendants();
        for (const pid_t process : found) {
            if (signalled.insert(process).second) {
                ::kill(process, signal);
            }
        }
        // The end of a process that has another parent sends no signal to this one.
        constexpr std::chrono::milliseconds cRescan(50);
        waitForSignal(std::min(deadline, Clock::now() + cRescan));
        collectChildren(0);
    }
}

[[noreturn]] void guard(pid_t command)
{
    // QProcess learns that the command has been executed when all copies of a pipe's end are closed.
    closeInheritedDescriptors();
    Clock::time_point deadline = cNever;
    std::optional<int> status = collectChildren(command);
    while (!status) {
        const int signal = waitForSignal(deadline);
        if (signal == SIGTERM && deadline == cNever) {
            ::kill(command, SIGTERM);
            deadline = Clock::now() + cCommandGrace;
        } else if (signal < 0 && errno == EAGAIN) {
            ::kill(command, SIGKILL);
            deadline = cNever;
        }
        status = collectChildren(command);
    }
    signalDescendants(SIGTERM);
    signalDescendants(SIGKILL);
    ::_exit(*status);
}

} // namespace

void guardCommand()
{
    ::prctl(PR_SET_CHILD_SUBREAPER, 1);
    // The guard must not lose the end of the command, and leaves what the terminal sends to the command.
    sigset_t all;
    sigfillset(&all);
    sigset_t previous;
    ::sigprocmask(SIG_SETMASK, &all, &previous);
    const pid_t command = ::fork();
    if (command > 0) {
        guard(command);
    }
    ::prctl(PR_SET_PDEATHSIG, SIGTERM);
    ::sigprocmask(SIG_SETMASK, &previous, nullptr);
}
