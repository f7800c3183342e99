// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "wayland/ClientDrag.h"

#include "wayland/ClientResources.h"
#include "wayland/RequestGuard.h"

#include <QWaylandDrag>
#include <QWaylandSeat>
#include <QWaylandSurface>

#include <wayland-server-protocol.h>

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
    setTarget(client);
    ClientResources::forEach(client, wl_data_device_interface, [this](wl_resource* device) {
        mTargetListeners.push_back(std::make_unique<ResourceListener>(device, [this] {
            leave();
        }));
    });
    if (mTargetListeners.empty()) {
        mTarget = nullptr;
    }
    return mTarget != nullptr;
}

void ClientDrag::setTarget(wl_client* client)
{
    mTarget = client;
    mTargetListeners.clear();
}
