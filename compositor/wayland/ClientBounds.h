// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QPoint>
#include <QRect>
#include <QSize>

/// Clamps coordinates and sizes from clients to +-32767, so that sums of them cannot overflow.
namespace ClientBounds {

constexpr int cFarthest = 32767;

inline int clamped(int value)
{
    return qBound(-cFarthest, value, cFarthest);
}

inline QPoint clamped(const QPoint& position)
{
    return {clamped(position.x()), clamped(position.y())};
}

inline QSize clamped(const QSize& size)
{
    return {clamped(size.width()), clamped(size.height())};
}

inline QRect clamped(const QRect& rect)
{
    // QRect computes its size as the difference of its corners, which may overflow an int.
    const auto distance = [](int from, int to) {
        return static_cast<int>(qBound<qint64>(-cFarthest, qint64(to) - from + 1, cFarthest));
    };
    return {clamped(rect.topLeft()), QSize(distance(rect.left(), rect.right()), distance(rect.top(), rect.bottom()))};
}

} // namespace ClientBounds
