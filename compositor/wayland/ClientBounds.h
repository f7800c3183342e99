// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QPoint>
#include <QRect>
#include <QSize>

/// How far what a client names may reach. Its numbers go up to where sums of them overflow; no output is that large.
namespace ClientBounds {
constexpr int cFarthest = 32767;

inline int bounded(int value)
{
    return qBound(-cFarthest, value, cFarthest);
}

inline QPoint bounded(const QPoint& position)
{
    return {bounded(position.x()), bounded(position.y())};
}

inline QSize bounded(const QSize& size)
{
    return {bounded(size.width()), bounded(size.height())};
}

inline QRect bounded(const QRect& rect)
{
    // QRect tells its size as the difference of its corners, which may be more than an int holds.
    const auto distance = [](int from, int to) {
        return static_cast<int>(qBound<qint64>(-cFarthest, qint64(to) - from + 1, cFarthest));
    };
    return {bounded(rect.topLeft()), QSize(distance(rect.left(), rect.right()), distance(rect.top(), rect.bottom()))};
}
} // namespace ClientBounds
