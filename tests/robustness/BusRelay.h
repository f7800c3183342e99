// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <mutex>
#include <thread>

/// A proxy between one application and the bus that drops the connection at a chosen message. During its lifetime,
/// child processes take it for the bus. Does not forward descriptors.
class BusRelay
{
public:
    BusRelay();
    ~BusRelay();
    BusRelay(const BusRelay&) = delete;
    BusRelay& operator=(const BusRelay&) = delete;

    /// The members of the messages that the application has sent since the last time.
    QStringList takeMessages();

    /// Drops the connection of both sides instead of forwarding the application's n-th message from now on, counted
    /// from 1.
    void endAt(int number);

    /// Whether endAt() has dropped the connection.
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
    /// Bytes from the application that are not forwarded yet.
    QByteArray mPending;
    bool mIsAuthenticated = false;

    std::mutex mMutex;
    QStringList mMessages;
    int mRemaining = 0;
    bool mHasEnded = false;

    std::thread mThread;
};
