// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <mutex>
#include <thread>

/// Stands between one application and the bus, and ends their connection at a message of choice. While it lives, it is
/// the bus for the processes that this one starts. Does not pass on descriptors.
class BusRelay
{
public:
    BusRelay();
    ~BusRelay();
    BusRelay(const BusRelay&) = delete;
    BusRelay& operator=(const BusRelay&) = delete;

    /// The members of the messages that the application has sent since the last time.
    QStringList takeMessages();

    /// Ends the connection, for both sides, instead of passing on the application's message with that number, counted
    /// from now on and from 1.
    void endAt(int number);

    /// Whether it has done so.
    bool hasEnded();

private:
    class Descriptor
    {
    public:
        explicit Descriptor(int number);
        ~Descriptor();
        Descriptor(const Descriptor&) = delete;
        Descriptor& operator=(const Descriptor&) = delete;
        int get() const;

    private:
        int mNumber;
    };

    void run();
    bool passOnFromBus(int application) const;
    bool passOnFromApplication(int application);
    bool mayPass(const QByteArray& message);

    QTemporaryDir mDirectory;
    QByteArray mBusAddress;
    Descriptor mListener;
    Descriptor mBus;
    /// What the application has sent and is not yet passed on.
    QByteArray mPending;
    bool mIsAuthenticated = false;

    std::mutex mMutex;
    QStringList mMessages;
    int mRemaining = 0;
    bool mHasEnded = false;

    std::thread mThread;
};
