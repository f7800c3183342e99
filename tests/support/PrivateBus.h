// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "ChildProcess.h"

#include <QDBusConnection>
#include <QTemporaryDir>

/// A private bus daemon without activatable services or access restrictions. The session and system bus addresses of
/// this process and its children point to it, so that no test ever reaches a bus of the machine. Must be constructed
/// before Qt connects to a bus.
class PrivateBus
{
public:
    PrivateBus();

    static QString address();
    /// Sets the session and system bus addresses of this process and its children.
    static void setAddress(const QByteArray& address);

    /// This process's shared connection to the bus, the one that the library uses.
    static QDBusConnection connection();

    /// Makes a round trip: the bus has handled all messages of this process, and its messages are queued in the event
    /// loop.
    static void synchronise();

    /// As above, and delivers the queued messages.
    static void deliver();

    /// The daemon's process.
    qint64 processId() const;

    /// Kills the daemon and waits for its end.
    void kill();

    /// Stops the daemon with SIGSTOP.
    void freeze();
    void thaw();

private:
    static bool waitForNames();

    QTemporaryDir mDirectory;
    ChildProcess mDaemon;
};
