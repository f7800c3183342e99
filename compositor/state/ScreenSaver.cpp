// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "state/ScreenSaver.h"

#include <limits>

ScreenSaver::ScreenSaver(int timeoutSeconds, QObject* parent)
    : QObject(parent)
    , mTimeoutSeconds(timeoutSeconds)
{
    mTimer.setSingleShot(true);
    connect(&mTimer, &QTimer::timeout, this, &ScreenSaver::startOrWait);
    restart();
}

void ScreenSaver::setEnabled(bool enabled)
{
    if (enabled == mEnabled) {
        return;
    }
    mEnabled = enabled;
    Q_EMIT enabledChanged();
    restart();
}

void ScreenSaver::setTimeoutSeconds(int seconds)
{
    if (seconds == mTimeoutSeconds) {
        return;
    }
    mTimeoutSeconds = seconds;
    Q_EMIT timeoutChanged();
    restart();
}

bool ScreenSaver::activate()
{
    if (mEnabled) {
        mTimer.stop();
        setActive(true);
    }
    return mEnabled;
}

void ScreenSaver::noteInput()
{
    // Input is frequent, so the timer is not restarted: startOrWait() sees when it fires that it was too early.
    mIdle.restart();
    if (mActive) {
        setActive(false);
        restart();
    }
}

void ScreenSaver::setActive(bool active)
{
    if (active != mActive) {
        mActive = active;
        Q_EMIT activeChanged();
    }
}

void ScreenSaver::restart()
{
    mIdle.restart();
    mTimer.stop();
    if (!canStart()) {
        setActive(false);
    } else if (!mActive) {
        startOrWait();
    }
}

void ScreenSaver::startOrWait()
{
    qint64 remaining = qint64(mTimeoutSeconds) * 1000 - mIdle.elapsed();
    if (remaining <= 0 && (!mIsAutomatic || (mIsInhibited && mIsInhibited()))) {
        mIdle.restart();
        remaining = qint64(mTimeoutSeconds) * 1000;
    }
    if (remaining <= 0) {
        setActive(true);
    } else {
        mTimer.start(static_cast<int>(qMin<qint64>(remaining, std::numeric_limits<int>::max())));
    }
}
