// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "shell/Gesture.h"

#include <algorithm>

namespace {

constexpr int cMotionMilliseconds = 16;
/// Clients recognise a drag by a motion that is not the first one.
constexpr int cFewestMotions = 10;
constexpr int cWheelStep = 120;

/// Returns the motions from `from` to `to`, which take `milliseconds` together.
template <typename MakeEvent>
QVector<Gesture::Event> motions(const QPointF& from, const QPointF& to, int milliseconds, const MakeEvent& makeEvent)
{
    QVector<Gesture::Event> events;
    const int count = std::max(cFewestMotions, milliseconds / cMotionMilliseconds);
    for (int i = 1; i <= count; ++i) {
        const int delay = i * milliseconds / count - (i - 1) * milliseconds / count;
        events.append({delay, makeEvent(from + (to - from) * i / count)});
    }
    return events;
}

} // namespace

Gesture Gesture::tap(const QPointF& position, int holdMilliseconds)
{
    return {
        Space::Output,
        {{0, Finger{Qt::TouchPointPressed, position}}, {holdMilliseconds, Finger{Qt::TouchPointReleased, position}}}};
}

Gesture Gesture::click(const QPointF& position, Qt::MouseButton button, int holdMilliseconds)
{
    return {Space::Output,
            {{0, Motion{position}},
             {0, Button{true, position, button}},
             {holdMilliseconds, Button{false, position, button}}}};
}

Gesture Gesture::dragFinger(const QPointF& from, const QPointF& to, int milliseconds)
{
    Gesture gesture{Space::Output, {{0, Finger{Qt::TouchPointPressed, from}}}};
    gesture.events += motions(from, to, milliseconds, [](const QPointF& position) {
        return Finger{Qt::TouchPointMoved, position};
    });
    gesture.events.append({0, Finger{Qt::TouchPointReleased, to}});
    return gesture;
}

Gesture Gesture::dragPointer(const QPointF& from, const QPointF& to, int milliseconds)
{
    Gesture gesture{Space::Output, {{0, Motion{from}}, {0, Button{true, from, Qt::LeftButton}}}};
    gesture.events += motions(from, to, milliseconds, [](const QPointF& position) {
        return Motion{position};
    });
    gesture.events.append({0, Button{false, to, Qt::LeftButton}});
    return gesture;
}

Gesture Gesture::movePointer(const QPointF& position)
{
    return {Space::Output, {{0, Motion{position}}}};
}

Gesture Gesture::scroll(const QPointF& position, const QPoint& steps)
{
    return {Space::Output, {{0, Wheel{position, steps * -cWheelStep}}}};
}

void Gesture::pressKeys(const QVector<quint32>& scanCodes)
{
    for (const quint32 scanCode : scanCodes) {
        events.append({0, Key{true, scanCode}});
    }
}

void Gesture::releaseKeys(const QVector<quint32>& scanCodes, int delayMilliseconds)
{
    for (auto scanCode = scanCodes.crbegin(); scanCode != scanCodes.crend(); ++scanCode) {
        events.append({scanCode == scanCodes.crbegin() ? delayMilliseconds : 0, Key{false, *scanCode}});
    }
}
