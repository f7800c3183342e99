// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "wayland/PopupPlacement.h"

#include "wayland/ClientBounds.h"
#include "wayland/XdgPositioner.h"

#include <algorithm>
#include <xdg-shell-server-protocol.h>

namespace {

/// The positioner along one axis: low is left or top, high is right or bottom.
struct Axis
{
    int anchorStart;
    int anchorLength;
    bool anchorLow;
    bool anchorHigh;
    bool gravityLow;
    bool gravityHigh;
    int offset;
    int length;
    int lowBound;
    int highBound;
    bool mayFlip;
    bool maySlide;
    bool mayResize;
};

struct Span
{
    int start;
    int length;
};

int startOf(const Axis& axis, bool isFlipped)
{
    const bool anchorLow = isFlipped ? axis.anchorHigh : axis.anchorLow;
    const bool anchorHigh = isFlipped ? axis.anchorLow : axis.anchorHigh;
    const bool gravityLow = isFlipped ? axis.gravityHigh : axis.gravityLow;
    const bool gravityHigh = isFlipped ? axis.gravityLow : axis.gravityHigh;

    int start = axis.anchorStart + (anchorLow ? 0 : anchorHigh ? axis.anchorLength : axis.anchorLength / 2);
    start -= gravityLow ? axis.length : gravityHigh ? 0 : axis.length / 2;
    return start + axis.offset;
}

Span placeAlong(const Axis& axis)
{
    const auto fits = [&axis](int start) {
        return start >= axis.lowBound && start + axis.length <= axis.highBound;
    };

    int start = startOf(axis, false);
    if (!fits(start) && axis.mayFlip && fits(startOf(axis, true))) {
        start = startOf(axis, true);
    }
    if (!fits(start) && axis.maySlide) {
        // Of a popup larger than the bounds, the edge opposite to the gravity is visible.
        const int lowest = axis.lowBound;
        const int highest = axis.highBound - axis.length;
        start =
            axis.gravityLow ? std::min(std::max(start, lowest), highest) : std::max(std::min(start, highest), lowest);
    }
    int length = axis.length;
    if (!fits(start) && axis.mayResize) {
        const int end = std::min(start + length, axis.highBound);
        start = std::max(start, axis.lowBound);
        length = std::max(1, end - start);
    }
    return {start, length};
}

} // namespace

QRect PopupPlacement::place(const PopupRules& rules, const QRect& bounds)
{
    const QRect& anchorRect = rules.anchorRect;
    const auto may = [&rules](uint32_t adjustment) {
        return (rules.adjustment & adjustment) != 0;
    };
    const Span x = placeAlong(
        {anchorRect.x(), anchorRect.width(), rules.anchor.testFlag(Qt::LeftEdge), rules.anchor.testFlag(Qt::RightEdge),
         rules.gravity.testFlag(Qt::LeftEdge), rules.gravity.testFlag(Qt::RightEdge), rules.offset.x(),
         rules.size.width(), bounds.x(), bounds.x() + bounds.width(), may(XDG_POSITIONER_CONSTRAINT_ADJUSTMENT_FLIP_X),
         may(XDG_POSITIONER_CONSTRAINT_ADJUSTMENT_SLIDE_X), may(XDG_POSITIONER_CONSTRAINT_ADJUSTMENT_RESIZE_X)});
    const Span y = placeAlong(
        {anchorRect.y(), anchorRect.height(), rules.anchor.testFlag(Qt::TopEdge), rules.anchor.testFlag(Qt::BottomEdge),
         rules.gravity.testFlag(Qt::TopEdge), rules.gravity.testFlag(Qt::BottomEdge), rules.offset.y(),
         rules.size.height(), bounds.y(), bounds.y() + bounds.height(),
         may(XDG_POSITIONER_CONSTRAINT_ADJUSTMENT_FLIP_Y), may(XDG_POSITIONER_CONSTRAINT_ADJUSTMENT_SLIDE_Y),
         may(XDG_POSITIONER_CONSTRAINT_ADJUSTMENT_RESIZE_Y)});
    return ClientBounds::clamped(QRect(x.start, y.start, x.length, y.length));
}
