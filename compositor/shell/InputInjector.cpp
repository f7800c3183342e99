// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "shell/InputInjector.h"

#include "shell/OutputWindow.h"
#include "shell/SeatInput.h"
#include "shell/TouchInput.h"
#include "shell/WindowStack.h"
#include "state/Output.h"

#include <QScopedValueRollback>
#include <qpa/qwindowsysteminterface.h>

#include <utility>

namespace {

/// Between two looks at whether the client of the current view is ready.
constexpr int cPollMilliseconds = 16;
/// Above the ids of a touch screen.
constexpr int cFinger = 1 << 20;

/// Null for the events of keys.
const QPointF* positionOf(const Gesture::Event& event)
{
    return std::visit(
        [](const auto& what) -> const QPointF* {
            if constexpr (std::is_same_v<std::decay_t<decltype(what)>, Gesture::Key>) {
                return nullptr;
            } else {
                return &what.position;
            }
        },
        event.what);
}

} // namespace

InputInjector::InputInjector(const Output& output, const WindowStack& stack, OutputWindow& window)
    : mOutput(output)
    , mStack(stack)
    , mWindow(window)
{
    mTimer.setSingleShot(true);
    mTimer.setTimerType(Qt::PreciseTimer);
    connect(&mTimer, &QTimer::timeout, this, &InputInjector::run);
}

void InputInjector::inject(const Gesture& gesture, const Done& done)
{
    mQueue.push_back({gesture, done});
    if (!mTimer.isActive()) {
        run();
    }
}

void InputInjector::run()
{
    if (mIsRunning) {
        return;
    }
    const QScopedValueRollback<bool> running(mIsRunning, true);
    while (!mQueue.empty()) {
        if (mStack.isBehind() || (mNext == 0 && !mStack.isSettled())) {
            mTimer.start(cPollMilliseconds);
            return;
        }
        const QVector<Gesture::Event> events = mQueue.front().gesture.events;
        const MaybeError error = mNext == 0 ? begin() : MaybeError();
        if (error || mNext == events.size()) {
            finish(error);
            continue;
        }
        const Gesture::Event& event = events.at(mNext);
        if (event.delayMilliseconds > 0 && !std::exchange(mHasWaited, true)) {
            mTimer.start(event.delayMilliseconds);
            return;
        }
        mHasWaited = false;
        ++mNext;
        std::visit(
            [this](const auto& what) {
                send(what);
            },
            event.what);
    }
}

MaybeError InputInjector::begin()
{
    const Gesture& gesture = mQueue.front().gesture;
    mOrigin = QPointF();
    if (gesture.space == Gesture::Space::View) {
        const QRect frame = mStack.currentFrame();
        if (frame.isEmpty()) {
            return Error{QStringLiteral("there is no current view with a window")};
        }
        mOrigin = frame.topLeft();
    }
    for (const Gesture::Event& event : gesture.events) {
        const QPointF* const position = positionOf(event);
        const MaybeError error = position == nullptr ? MaybeError() : checkPosition(*position);
        if (error) {
            return error;
        }
    }
    return {};
}

MaybeError InputInjector::checkPosition(const QPointF& position) const
{
    const QSize size = mOutput.size();
    const QPointF place = toOutput(position);
    if (place.x() >= 0 && place.y() >= 0 && place.x() < size.width() && place.y() < size.height()) {
        return {};
    }
    return Error{QStringLiteral("the position %1,%2 is outside of the output, whose size is %3x%4")
                     .arg(place.x())
                     .arg(place.y())
                     .arg(size.width())
                     .arg(size.height())};
}

void InputInjector::finish(const MaybeError& error)
{
    mNext = 0;
    const Entry entry = std::move(mQueue.front());
    mQueue.pop_front();
    entry.done(error);
}

void InputInjector::send(const Gesture::Finger& event)
{
    mTouchInput->touch({{cFinger, toOutput(event.position), event.state}});
}

void InputInjector::send(const Gesture::Motion& event)
{
    mInput->pointerMotion(toOutput(event.position));
}

void InputInjector::send(const Gesture::Button& event)
{
    if (event.isPressed) {
        mInput->pointerPress(toOutput(event.position), event.button);
    } else {
        mInput->pointerRelease(toOutput(event.position), event.button);
    }
}

void InputInjector::send(const Gesture::Wheel& event)
{
    mInput->wheel(toOutput(event.position), event.angleDelta);
}

void InputInjector::send(const Gesture::Key& event)
{
    // Qt Wayland Compositor keeps the state of the modifiers, and derives the symbol from the scan code, only in events
    // that come from here.
    QWindowSystemInterface::handleExtendedKeyEvent(&mWindow, event.isPressed ? QEvent::KeyPress : QEvent::KeyRelease, 0,
                                                   Qt::NoModifier, event.scanCode, 0, 0, QString(), false, 1, false);
    QWindowSystemInterface::flushWindowSystemEvents();
}
