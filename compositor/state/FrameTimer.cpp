// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "state/FrameTimer.h"

#include "state/Limits.h"

using Limits::cFrameMilliseconds;

FrameTimer::FrameTimer(QObject* parent)
    : QObject(parent)
{
    mTimer.setSingleShot(true);
    mTimer.setTimerType(Qt::PreciseTimer);
    connect(&mTimer, &QTimer::timeout, this, [this] {
        mSinceFrame.restart();
        Q_EMIT due();
    });
    mSinceFrame.start();
}

void FrameTimer::request()
{
    if (!mTimer.isActive()) {
        mTimer.start(
            static_cast<int>(qBound<qint64>(0, cFrameMilliseconds - mSinceFrame.elapsed(), cFrameMilliseconds)));
    }
}
