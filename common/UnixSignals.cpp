// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "UnixSignals.h"

#include <csignal>
#include <sys/signalfd.h>
#include <unistd.h>

namespace {

sigset_t terminationSignals()
{
    sigset_t set;
    sigemptyset(&set);
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
        sigaddset(&set, number);
    }
    return set;
}

int openDescriptor()
{
    const sigset_t set = terminationSignals();
    return signalfd(-1, &set, SFD_CLOEXEC | SFD_NONBLOCK);
}

} // namespace

void UnixSignals::block()
{
    const sigset_t set = terminationSignals();
    pthread_sigmask(SIG_BLOCK, &set, nullptr);
}

void UnixSignals::unblock()
{
    const sigset_t set = terminationSignals();
    pthread_sigmask(SIG_UNBLOCK, &set, nullptr);
}

UnixSignals::UnixSignals(QObject* parent)
    : QObject(parent)
    , mDescriptor(openDescriptor())
    , mNotifier(mDescriptor, QSocketNotifier::Read)
{
    connect(&mNotifier, &QSocketNotifier::activated, this, [this] {
        signalfd_siginfo information{};
        if (read(mDescriptor, &information, sizeof(information)) == sizeof(information)) {
            Q_EMIT terminationRequested(static_cast<int>(information.ssi_signo));
        }
    });
}

UnixSignals::~UnixSignals()
{
    mNotifier.setEnabled(false);
    close(mDescriptor);
}
