// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "EventLoopProbe.h"

#include <QCoreApplication>
#include <QEvent>

#include <algorithm>

EventLoopProbe::EventLoopProbe()
    : mThread([this] {
        run();
    })
{
}

EventLoopProbe::~EventLoopProbe()
{
    finish();
}

qint64 EventLoopProbe::finish()
{
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        mIsFinished = true;
        mChange.notify_all();
    }
    if (mThread.joinable()) {
        mThread.join();
    }
    return std::chrono::duration_cast<std::chrono::milliseconds>(mLongest).count();
}

bool EventLoopProbe::event(QEvent* event)
{
    if (event->type() != QEvent::User) {
        return QObject::event(event);
    }
    const std::lock_guard<std::mutex> lock(mMutex);
    mIsAwaited = false;
    mChange.notify_all();
    return true;
}

void EventLoopProbe::run()
{
    const std::chrono::milliseconds interval(1);
    std::unique_lock<std::mutex> lock(mMutex);
    while (!mIsFinished) {
        mIsAwaited = true;
        const Clock::time_point posted = Clock::now();
        QCoreApplication::postEvent(this, new QEvent(QEvent::User));
        mChange.wait(lock, [this] {
            return !mIsAwaited || mIsFinished;
        });
        mLongest = std::max(mLongest, Clock::now() - posted);
        mChange.wait_for(lock, interval, [this] {
            return mIsFinished;
        });
    }
}
