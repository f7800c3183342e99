// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "wayland/ClientDrag.h"

#include "wayland/ClientResources.h"

#include <QWaylandCompositor>
#include <QWaylandSeat>

#include <algorithm>
#include <utility>
#include <wayland-server-protocol.h>

ClientDrag::ClientDrag(QWaylandSeat& seat)
    : mSeat(seat)
{
}

void ClientDrag::start(wl_client* client, wl_resource* source, ClientSurface* image)
{
    DataSource* const dragged = DataSource::of(source);
    if (isActive() || !mMayStart || !mMayStart(client) || !dragged->claim()) {
        dragged->sendCancelled();
        return;
    }
    mSource = dragged;
    mImage = image;
    connect(dragged, &QObject::destroyed, this, [this] {
        leave();
        Q_EMIT activeChanged();
    });
    Q_EMIT activeChanged();
}

void ClientDrag::move(QWaylandSurface* target, const QPointF& position)
{
    if (target == nullptr || target->waylandClient() == nullptr) {
        leave();
        return;
    }
    if (target != mFocus) {
        leave();
        enter(target, position);
    }
    const uint32_t time = mSeat.compositor()->currentTimeMsecs();
    for (const Target& entered : mTargets) {
        wl_data_device_send_motion(entered.device, time, wl_fixed_from_double(position.x()),
                                   wl_fixed_from_double(position.y()));
    }
}

void ClientDrag::drop()
{
    DataSource* const source = std::exchange(mSource, nullptr);
    if (source == nullptr) {
        return;
    }
    source->disconnect(this);
    bool isTaken = false;
    for (const Target& target : mTargets) {
        if (target.offer != nullptr && target.offer->takesDrop()) {
            wl_data_device_send_drop(target.device);
            target.offer->drop();
            isTaken = true;
        }
    }
    leave();
    if (isTaken) {
        source->sendDropPerformed();
    } else {
        source->sendCancelled();
    }
    Q_EMIT activeChanged();
}

void ClientDrag::enter(QWaylandSurface* surface, const QPointF& position)
{
    mFocus = surface;
    const uint32_t serial = mSeat.compositor()->nextSerial();
    for (wl_resource* device : ClientResources::of(surface->waylandClient(), wl_data_device_interface)) {
        DataOffer* const offer = DataOffer::create(device, mSource, DataOffer::Purpose::Drag);
        if (offer == nullptr) {
            break;
        }
        wl_data_device_send_enter(device, serial, surface->resource(), wl_fixed_from_double(position.x()),
                                  wl_fixed_from_double(position.y()), offer->resource());
        auto listener = std::make_unique<ResourceListener>(device, [this, device] {
            mTargets.erase(std::find_if(mTargets.begin(), mTargets.end(), [device](const Target& target) {
                return target.device == device;
            }));
        });
        mTargets.push_back({device, offer, std::move(listener)});
    }
}

void ClientDrag::leave()
{
    mFocus = nullptr;
    for (const Target& target : std::exchange(mTargets, {})) {
        wl_data_device_send_leave(target.device);
        if (target.offer != nullptr) {
            target.offer->revoke();
        }
    }
}
