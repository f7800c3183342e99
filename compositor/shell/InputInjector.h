// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "Result.h"
#include "shell/Gesture.h"

#include <QObject>
#include <QTimer>

#include <deque>
#include <functional>

class Output;
class OutputWindow;
class SeatInput;
class TouchInput;
class WindowStack;

/// Injects gestures, one after the other, where OutputWindow delivers those of a person.
class InputInjector : public QObject
{
    Q_OBJECT

public:
    /// Receives why a gesture could not be made, or nothing when it has ended.
    using Done = std::function<void(const MaybeError&)>;

    InputInjector(const Output& output, const WindowStack& stack, OutputWindow& window);

    void setInput(SeatInput* input, TouchInput* touchInput)
    {
        mInput = input;
        mTouchInput = touchInput;
    }

    /// Injects the gesture when all earlier ones have ended and the current view's window has its size: at once if that
    /// is so, up to the gesture's first delay. Waits in between for a client that has yet to read earlier events,
    /// rather than have it miss the others.
    void inject(const Gesture& gesture, const Done& done);

private:
    struct Entry
    {
        Gesture gesture;
        Done done;
    };

    void run();
    MaybeError begin();
    void finish(const MaybeError& error);
    /// Returns the position on the output.
    QPointF toOutput(const QPointF& position) const
    {
        return position + mOrigin;
    }
    MaybeError checkPosition(const QPointF& position) const;

    void send(const Gesture::Finger& event);
    void send(const Gesture::Motion& event);
    void send(const Gesture::Button& event);
    void send(const Gesture::Wheel& event);
    void send(const Gesture::Key& event);

    const Output& mOutput;
    const WindowStack& mStack;
    OutputWindow& mWindow;
    SeatInput* mInput = nullptr;
    TouchInput* mTouchInput = nullptr;
    std::deque<Entry> mQueue;
    /// The next event of the first gesture; 0 before it has begun.
    int mNext = 0;
    /// The delay of the next event has passed.
    bool mHasWaited = false;
    bool mIsRunning = false;
    QPointF mOrigin;
    QTimer mTimer;
};
