// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "wayland/ClientTouch.h"

#include "wayland/ClientResources.h"

#include <QWaylandClient>
#include <QWaylandCompositor>
#include <QWaylandSeat>
#include <QWaylandSurface>

#include <wayland-server-protocol.h>

namespace {

std::vector<wl_resource*> touchesOf(const QWaylandClient* client)
{
    return ClientResources::of(client == nullptr ? nullptr : client->client(), wl_touch_interface);
}

} // namespace

ClientTouch::ClientTouch(QWaylandSeat* seat)
    : QWaylandTouch(seat)
{
}

uint ClientTouch::sendTouchPointEvent(QWaylandSurface* surface, int id, const QPointF& position,
                                      Qt::TouchPointState state)
{
    const uint32_t serial = compositor()->nextSerial();
    const uint32_t time = compositor()->currentTimeMsecs();
    const wl_fixed_t x = wl_fixed_from_double(position.x());
    const wl_fixed_t y = wl_fixed_from_double(position.y());
    // A surface that is destroyed has no client.
    for (wl_resource* touch : touchesOf(surface->client())) {
        switch (state) {
        case Qt::TouchPointPressed:
            wl_touch_send_down(touch, serial, time, surface->resource(), id, x, y);
            break;
        case Qt::TouchPointMoved:
            wl_touch_send_motion(touch, time, id, x, y);
            break;
        case Qt::TouchPointReleased:
            wl_touch_send_up(touch, serial, time, id);
            break;
        default:
            break;
        }
    }
    return serial;
}

void ClientTouch::sendFrameEvent(QWaylandClient* client)
{
    for (wl_resource* touch : touchesOf(client)) {
        wl_touch_send_frame(touch);
    }
}

void ClientTouch::sendCancelEvent(QWaylandClient* client)
{
    for (wl_resource* touch : touchesOf(client)) {
        wl_touch_send_cancel(touch);
    }
}
