// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QPoint>
#include <QPointF>
#include <QVector>
#include <Qt>

#include <variant>

/// Input to inject: the events of a pointer, a finger or keys, in their order.
struct Gesture
{
    enum class Space
    {
        /// The rotated contents of the output, as a person sees them upright.
        Output,
        /// The current view's window, from its top left corner.
        View
    };

    struct Finger
    {
        Qt::TouchPointState state;
        QPointF position;
    };
    struct Motion
    {
        QPointF position;
    };
    struct Button
    {
        bool isPressed;
        QPointF position;
        Qt::MouseButton button;
    };
    struct Wheel
    {
        QPointF position;
        QPoint angleDelta;
    };
    struct Key
    {
        bool isPressed;
        /// In the numbers of X11.
        quint32 scanCode;
    };
    struct Event
    {
        /// Since the event before.
        int delayMilliseconds;
        std::variant<Finger, Motion, Button, Wheel, Key> what;
    };

    Space space = Space::Output;
    QVector<Event> events;

    static Gesture tap(const QPointF& position, int holdMilliseconds);
    static Gesture click(const QPointF& position, Qt::MouseButton button, int holdMilliseconds);
    static Gesture dragFinger(const QPointF& from, const QPointF& to, int milliseconds);
    static Gesture dragPointer(const QPointF& from, const QPointF& to, int milliseconds);
    static Gesture movePointer(const QPointF& position);
    /// `steps` are notches of the wheel, to the right and down.
    static Gesture scroll(const QPointF& position, const QPoint& steps);

    /// Presses the keys in their order.
    void pressKeys(const QVector<quint32>& scanCodes);
    /// Releases the keys in the reverse order.
    void releaseKeys(const QVector<quint32>& scanCodes, int delayMilliseconds = 0);
};
