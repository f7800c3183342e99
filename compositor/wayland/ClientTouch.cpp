// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "wayland/ClientTouch.h"

#include "wayland/ClientResources.h"

#include <QWaylandCompositor>
#include <QWaylandSeat>
#include <QWaylandSurface>

#include <algorithm>
#include <utility>
#include <wayland-server-protocol.h>

namespace {

std::vector<wl_resource*> touchesOf(const QWaylandClient* client)
{
    return ClientResources::of(client == nullptr ? nullptr : client->client(), wl_touch_interface);
}

} // namespace

ClientTouch::ClientTouch(QWaylandSeat& seat)
    : mSeat(seat)
{
}

bool ClientTouch::down(int finger, ClientWindow* window, ClientSurface* surface, const QPointF& position,
                       const QPointF& localPosition)
{
    QWaylandClient* const client =
        surface == nullptr || surface->surface() == nullptr ? nullptr : surface->surface()->client();
    if (client == nullptr || window == nullptr || isDown(finger) || !window->admitEvent()) {
        return false;
    }
    const int id = freeId();
    mGrabs.insert(finger, {id, client, window, surface, position - localPosition});
    const uint32_t serial = mSeat.compositor()->nextSerial();
    const uint32_t time = mSeat.compositor()->currentTimeMsecs();
    for (wl_resource* touch : touchesOf(client)) {
        wl_touch_send_down(touch, serial, time, surface->surface()->resource(), id,
                           wl_fixed_from_double(localPosition.x()), wl_fixed_from_double(localPosition.y()));
    }
    noteEvent(client);
    return true;
}

void ClientTouch::move(int finger, const QPointF& position)
{
    const auto grab = mGrabs.constFind(finger);
    if (grab == mGrabs.cend() || surfaceOf(*grab) == nullptr || grab->window == nullptr
        || !grab->window->admitEvent()) {
        return;
    }
    const QPointF local = position - grab->origin;
    const uint32_t time = mSeat.compositor()->currentTimeMsecs();
    for (wl_resource* touch : touchesOf(grab->client)) {
        wl_touch_send_motion(touch, time, grab->id, wl_fixed_from_double(local.x()), wl_fixed_from_double(local.y()));
    }
    noteEvent(grab->client);
}

void ClientTouch::up(int finger)
{
    if (!isDown(finger)) {
        return;
    }
    const Grab grab = mGrabs.take(finger);
    if (surfaceOf(grab) == nullptr) {
        return;
    }
    const uint32_t serial = mSeat.compositor()->nextSerial();
    const uint32_t time = mSeat.compositor()->currentTimeMsecs();
    for (wl_resource* touch : touchesOf(grab.client)) {
        wl_touch_send_up(touch, serial, time, grab.id);
    }
    noteEvent(grab.client);
}

void ClientTouch::sendFrame()
{
    for (const QPointer<QWaylandClient>& client : std::exchange(mUnframedClients, {})) {
        for (wl_resource* touch : touchesOf(client)) {
            wl_touch_send_frame(touch);
        }
    }
}

void ClientTouch::cancel()
{
    // The events before a cancel need no frame.
    mUnframedClients.clear();
    for (const Grab& grab : std::exchange(mGrabs, {})) {
        noteEvent(grab.client);
    }
    for (const QPointer<QWaylandClient>& client : std::exchange(mUnframedClients, {})) {
        for (wl_resource* touch : touchesOf(client)) {
            wl_touch_send_cancel(touch);
        }
    }
}

bool ClientTouch::isTouched(const wl_client* client) const
{
    return std::any_of(mGrabs.cbegin(), mGrabs.cend(), [client](const Grab& grab) {
        return surfaceOf(grab) != nullptr && grab.client != nullptr && grab.client->client() == client;
    });
}

/// Returns the lowest unused id: clients keep tables by them.
int ClientTouch::freeId() const
{
    const auto isUsed = [this](int id) {
        return std::any_of(mGrabs.cbegin(), mGrabs.cend(), [id](const Grab& grab) {
            return grab.id == id;
        });
    };
    int id = 0;
    while (isUsed(id)) {
        ++id;
    }
    return id;
}

QWaylandSurface* ClientTouch::surfaceOf(const Grab& grab)
{
    QWaylandSurface* const surface = grab.surface == nullptr ? nullptr : grab.surface->surface();
    return surface == nullptr || surface->isDestroyed() ? nullptr : surface;
}

void ClientTouch::noteEvent(const QPointer<QWaylandClient>& client)
{
    if (!mUnframedClients.contains(client)) {
        mUnframedClients.append(client);
    }
}
