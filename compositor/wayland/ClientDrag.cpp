// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "wayland/ClientDrag.h"

#include "wayland/RequestGuard.h"

#include <QWaylandDrag>
#include <QWaylandSeat>
#include <QWaylandSurface>

#include <wayland-server-core.h>

#include <cstring>
#include <vector>

namespace {
std::vector<wl_resource*> dataDevicesOf(wl_client* client)
{
    std::vector<wl_resource*> devices;
    wl_client_for_each_resource(
        client,
        [](wl_resource* resource, void* data) {
            if (std::strcmp(wl_resource_get_class(resource), "wl_data_device") == 0) {
                static_cast<std::vector<wl_resource*>*>(data)->push_back(resource);
            }
            return WL_ITERATOR_CONTINUE;
        },
        &devices);
    return devices;
}
} // namespace

ClientDrag::ClientDrag(QWaylandSeat* seat, RequestGuard& guard)
    : mSeat(seat)
    , mGuard(guard)
{
    connect(&guard, &RequestGuard::dragStarting, this, &ClientDrag::begin);
}

void ClientDrag::begin(wl_resource* source)
{
    mSource = source;
    mGuard.watch(source, this, [this, source] {
        if (mSource == source) {
            leave();
            mSource = nullptr;
        }
    });
}

void ClientDrag::move(QWaylandSurface* target, const QPointF& position)
{
    wl_client* const client = target == nullptr ? nullptr : target->waylandClient();
    if (client == nullptr || !follow(client)) {
        leave();
        return;
    }
    mSeat->drag()->dragMove(target, position);
}

void ClientDrag::drop()
{
    mSeat->drag()->drop();
    mSource = nullptr;
    mTarget = nullptr;
}

void ClientDrag::leave()
{
    mSeat->drag()->cancelDrag();
    mTarget = nullptr;
}

/// False when the client does not listen to drags.
bool ClientDrag::follow(wl_client* client)
{
    if (client == mTarget) {
        return true;
    }
    const std::vector<wl_resource*> devices = dataDevicesOf(client);
    for (wl_resource* device : devices) {
        mGuard.watch(device, this, [this, client] {
            if (mTarget == client) {
                leave();
            }
        });
    }
    if (!devices.empty()) {
        mTarget = client;
    }
    return !devices.empty();
}
