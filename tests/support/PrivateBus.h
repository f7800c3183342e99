// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "ChildProcess.h"

#include <QDBusConnection>
#include <QTemporaryDir>

/// A bus daemon of this process's own, with no services to start, on which anybody may do anything. Both the session
/// and the system bus address of this process and its children name it, so that nothing here ever reaches a bus of the
/// machine. To be made before Qt touches a bus.
class PrivateBus
{
public:
    PrivateBus();

    static QString address();
    /// Has this process, and those that it starts, take the bus at the address for the session's and the system's.
    static void setAddress(const QByteArray& address);

    /// This process's shared connection to the bus, the one that the library uses.
    static QDBusConnection connection();

    /// Returns once the bus has handled all that this process has sent, and this process has all that the bus had for
    /// it by then, waiting in its event loop.
    static void synchronise();

    /// As above, and delivers it.
    static void deliver();

    /// The daemon's process.
    qint64 processId() const;

    /// Ends the daemon, as a crash of it would, and waits until it is gone.
    void kill();

    /// Stops the daemon from doing anything.
    void freeze();
    void thaw();

private:
    static bool waitForNames();

    QTemporaryDir mDirectory;
    ChildProcess mDaemon;
};
