// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "wayland/PopupPlacement.h"

#include "wayland/ClientBounds.h"

#include <QWaylandXdgPopup>

#include <algorithm>

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
    return start + (isFlipped ? -axis.offset : axis.offset);
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
        start = std::max(axis.lowBound, std::min(start, axis.highBound - axis.length));
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

QRect PopupPlacement::place(const QWaylandXdgPopup& popup, const QRect& bounds)
{
    const QRect anchor = ClientBounds::clamped(popup.anchorRect());
    const QPoint offset = ClientBounds::clamped(popup.offset());
    const QSize size = ClientBounds::clamped(popup.positionerSize());
    const Qt::Edges anchors = popup.anchorEdges();
    const Qt::Edges gravity = popup.gravityEdges();
    const auto has = [](Qt::Edges edges, Qt::Edge edge) {
        return edges.testFlag(edge);
    };

    const Span x = placeAlong(
        {anchor.x(), anchor.width(), has(anchors, Qt::LeftEdge), has(anchors, Qt::RightEdge),
         has(gravity, Qt::LeftEdge), has(gravity, Qt::RightEdge), offset.x(), size.width(), bounds.x(),
         bounds.x() + bounds.width(), popup.flipConstraints().testFlag(Qt::Horizontal),
         popup.slideConstraints().testFlag(Qt::Horizontal), popup.resizeConstraints().testFlag(Qt::Horizontal)});
    const Span y =
        placeAlong({anchor.y(), anchor.height(), has(anchors, Qt::TopEdge), has(anchors, Qt::BottomEdge),
                    has(gravity, Qt::TopEdge), has(gravity, Qt::BottomEdge), offset.y(), size.height(), bounds.y(),
                    bounds.y() + bounds.height(), popup.flipConstraints().testFlag(Qt::Vertical),
                    popup.slideConstraints().testFlag(Qt::Vertical), popup.resizeConstraints().testFlag(Qt::Vertical)});
    return ClientBounds::clamped(QRect(x.start, y.start, x.length, y.length));
}
