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
{
    connect(&guard, &RequestGuard::dragStarting, this, &ClientDrag::begin);
}

void ClientDrag::begin(wl_resource* source)
{
    mSource = source;
    mSourceListener = std::make_unique<ResourceListener>(source, [this] {
        leave();
        mSource = nullptr;
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
    mSourceListener.reset();
    setTarget(nullptr);
}

void ClientDrag::leave()
{
    mSeat->drag()->cancelDrag();
    setTarget(nullptr);
}

/// Returns false when the client has no wl_data_device.
bool ClientDrag::follow(wl_client* client)
{
    if (client == mTarget) {
        return true;
    }
    const std::vector<wl_resource*> devices = dataDevicesOf(client);
    if (devices.empty()) {
        return false;
    }
    setTarget(client);
    for (wl_resource* device : devices) {
        mTargetListeners.push_back(std::make_unique<ResourceListener>(device, [this] {
            leave();
        }));
    }
    return true;
}

void ClientDrag::setTarget(wl_client* client)
{
    mTarget = client;
    mTargetListeners.clear();
}
