// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QWaylandTouch>

/// The wl_touch objects of the seat at version 6. Unlike QWaylandTouch it sends the events of a client to all of its
/// objects instead of to the last one, and sends nothing to a client that has disconnected.
class ClientTouch : public QWaylandTouch
{
    Q_OBJECT

public:
    explicit ClientTouch(QWaylandSeat* seat);

    uint sendTouchPointEvent(QWaylandSurface* surface, int id, const QPointF& position,
                             Qt::TouchPointState state) override;
    void sendFrameEvent(QWaylandClient* client) override;
    void sendCancelEvent(QWaylandClient* client) override;
};
