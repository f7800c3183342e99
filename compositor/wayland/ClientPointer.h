// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QWaylandPointer>

struct wl_client;

/// The wl_pointer objects of the seat at version 6. Adds to QWaylandPointer the events since version 5, which Qt never
/// sends: `frame` after each group of events, and the source and the discrete steps of an axis.
class ClientPointer : public QWaylandPointer
{
    Q_OBJECT

public:
    explicit ClientPointer(QWaylandSeat* seat);

    uint sendMousePressEvent(Qt::MouseButton button) override;
    uint sendMouseReleaseEvent(Qt::MouseButton button) override;
    void sendMouseMoveEvent(QWaylandView* view, const QPointF& localPosition, const QPointF& outputPosition) override;
    /// `delta` is in eighths of a degree.
    void sendMouseWheelEvent(Qt::Orientation orientation, int delta) override;

private:
    wl_client* focusedClient() const;
};
