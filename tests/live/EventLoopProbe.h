// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QObject>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

/// Samples, from a thread of its own, how soon the event loop of the thread that made it handles an event.
class EventLoopProbe : public QObject
{
    Q_OBJECT

public:
    EventLoopProbe();
    ~EventLoopProbe() override;

    /// Ends the sampling and returns the longest that an event has had to wait, in milliseconds.
    qint64 finish();

protected:
    bool event(QEvent* event) override;

private:
    using Clock = std::chrono::steady_clock;

    void run();

    std::mutex mMutex;
    std::condition_variable mChange;
    bool mIsAwaited = false;
    bool mIsFinished = false;
    Clock::duration mLongest = Clock::duration::zero();
    std::thread mThread;
};
