// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "TimeLimit.h"

#include "ExitStatus.h"
#include "Printable.h"

#include <QByteArray>
#include <QString>

#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>

#include <sys/time.h>
#include <unistd.h>

namespace {

using Clock = std::chrono::steady_clock;

std::array<char, 512> message;
std::size_t messageSize = 0;
Clock::time_point limit;
int reserve = 0;

// May interrupt anything, so it calls only functions that a signal handler may call.
void onAlarm(int /*signal*/)
{
    [[maybe_unused]] const ssize_t written = write(STDERR_FILENO, message.data(), messageSize);
    _exit(Failed);
}

void setTimer(std::chrono::microseconds time)
{
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(time);
    itimerval timer{};
    timer.it_value.tv_sec = static_cast<time_t>(seconds.count());
    timer.it_value.tv_usec = static_cast<suseconds_t>((time - seconds).count());
    setitimer(ITIMER_REAL, &timer, nullptr);
}

std::chrono::microseconds timeLeft()
{
    // A timer of 0 would never end.
    return std::max(std::chrono::duration_cast<std::chrono::microseconds>(limit - Clock::now()),
                    std::chrono::microseconds(1));
}

} // namespace

void TimeLimit::start(int milliseconds, const QString& text)
{
    limit = Clock::now() + std::chrono::milliseconds(milliseconds);
    reserve = milliseconds / 4;
    struct sigaction action = {};
    action.sa_handler = onAlarm;
    action.sa_flags = SA_RESTART;
    sigaction(SIGALRM, &action, nullptr);
    // Whoever started the process may have blocked it.
    sigset_t alarm;
    sigemptyset(&alarm);
    sigaddset(&alarm, SIGALRM);
    pthread_sigmask(SIG_UNBLOCK, &alarm, nullptr);
    expect(text);
}

void TimeLimit::expect(const QString& text)
{
    lift();
    QByteArray line = "telvaroctl: " + printable(text).toUtf8();
    int size = std::min(line.size(), static_cast<int>(message.size()) - 1);
    // Not within a character.
    while ((line.constData()[size] & 0xc0) == 0x80) {
        --size;
    }
    line.truncate(size);
    line += '\n';
    std::copy(line.begin(), line.end(), message.begin());
    messageSize = static_cast<std::size_t>(line.size());
    setTimer(timeLeft());
}

int TimeLimit::remaining()
{
    return static_cast<int>(std::chrono::duration_cast<std::chrono::milliseconds>(timeLeft()).count());
}

int TimeLimit::remainingButReserve()
{
    return std::max(1, remaining() - reserve);
}

int TimeLimit::beyond()
{
    return remaining() + 1000;
}

void TimeLimit::lift()
{
    setTimer(std::chrono::microseconds(0));
}
