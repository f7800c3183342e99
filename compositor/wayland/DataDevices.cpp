// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "wayland/DataDevices.h"

#include "wayland/ClientResources.h"
#include "wayland/ClientSurface.h"
#include "wayland/ServerGlobals.h"

#include <QWaylandSeat>
#include <QWaylandSurface>
#include <QWaylandSurfaceRole>

#include <utility>
#include <wayland-server-protocol.h>

namespace {

constexpr int cVersion = 3;

void destroyResource(wl_client*, wl_resource* resource)
{
    wl_resource_destroy(resource);
}

DataDevices* devicesOf(wl_resource* resource)
{
    return static_cast<DataDevices*>(wl_resource_get_user_data(resource));
}

} // namespace

DataDevices::DataDevices(ServerGlobals& globals, QWaylandSeat& seat)
    : mSeat(seat)
    , mDrag(seat)
{
    globals.announce(&wl_data_device_manager_interface, cVersion, this, bind);
    connect(&seat, &QWaylandSeat::keyboardFocusChanged, this, &DataDevices::handleFocusChange);
}

void DataDevices::bind(wl_client* client, void* data, uint32_t version, uint32_t id)
{
    static const struct wl_data_device_manager_interface requests = {createSource, createDevice};
    wl_resource* const resource =
        wl_resource_create(client, &wl_data_device_manager_interface, static_cast<int>(version), id);
    if (resource == nullptr) {
        wl_client_post_no_memory(client);
        return;
    }
    wl_resource_set_implementation(resource, &requests, data, nullptr);
}

void DataDevices::createSource(wl_client* client, wl_resource* manager, uint32_t id)
{
    DataSource::create(client, wl_resource_get_version(manager), id);
}

void DataDevices::createDevice(wl_client* client, wl_resource* manager, uint32_t id, wl_resource*)
{
    static const struct wl_data_device_interface requests = {startDrag, setSelection, destroyResource};
    wl_resource* const resource =
        wl_resource_create(client, &wl_data_device_interface, wl_resource_get_version(manager), id);
    if (resource == nullptr) {
        wl_client_post_no_memory(client);
        return;
    }
    DataDevices* const self = devicesOf(manager);
    wl_resource_set_implementation(resource, &requests, self, nullptr);
    const QWaylandSurface* const focus = self->mSeat.keyboardFocus();
    if (focus != nullptr && focus->waylandClient() == client) {
        self->offerClipboard(focus);
    }
}

void DataDevices::startDrag(wl_client* client, wl_resource* device, wl_resource* source, wl_resource*,
                            wl_resource* icon, uint32_t)
{
    static QWaylandSurfaceRole role("wl_data_device-icon");
    if (icon != nullptr && !QWaylandSurface::fromResource(icon)->setRole(&role, device, WL_DATA_DEVICE_ERROR_ROLE)) {
        return;
    }
    // A drag without a source is for the client itself, which gets the pointer's events anyway.
    if (source != nullptr) {
        devicesOf(device)->mDrag.start(
            client, source, icon == nullptr ? nullptr : ClientSurface::of(QWaylandSurface::fromResource(icon)));
    }
}

void DataDevices::setSelection(wl_client* client, wl_resource* device, wl_resource* source, uint32_t)
{
    DataDevices* const self = devicesOf(device);
    DataSource* const selected = DataSource::of(source);
    if (self->mayTakeClipboard(client)) {
        self->setClipboard(selected);
    } else if (selected != nullptr && selected->claim()) {
        selected->sendCancelled();
    }
}

void DataDevices::handleFocusChange(const QWaylandSurface* surface)
{
    QWaylandClient* const client = surface == nullptr ? nullptr : surface->client();
    if (client != mFocusedClient) {
        mLeftClient = std::exchange(mFocusedClient, client);
    }
    offerClipboard(surface);
}

bool DataDevices::mayTakeClipboard(const wl_client* client) const
{
    return (mFocusedClient != nullptr && mFocusedClient->client() == client)
        || (mLeftClient != nullptr && mLeftClient->client() == client);
}

void DataDevices::setClipboard(DataSource* source)
{
    if (source != nullptr && source == mClipboard) {
        return;
    }
    if (source != nullptr && !source->claim()) {
        source->sendCancelled();
        return;
    }
    if (mClipboard != nullptr) {
        mClipboard->disconnect(this);
        mClipboard->sendCancelled();
    }
    mClipboard = source;
    if (source != nullptr) {
        connect(source, &QObject::destroyed, this, [this] {
            setClipboard(nullptr);
        });
    }
    offerClipboard(mSeat.keyboardFocus());
}

void DataDevices::offerClipboard(const QWaylandSurface* surface)
{
    for (const QPointer<DataOffer>& offer : std::exchange(mOffers, {})) {
        if (offer != nullptr) {
            offer->revoke();
        }
    }
    wl_client* const client = surface == nullptr ? nullptr : surface->waylandClient();
    for (wl_resource* device : ClientResources::of(client, wl_data_device_interface)) {
        DataOffer* const offer =
            mClipboard == nullptr ? nullptr : DataOffer::create(device, mClipboard, DataOffer::Purpose::Clipboard);
        mOffers.append(offer);
        wl_data_device_send_selection(device, offer == nullptr ? nullptr : offer->resource());
    }
}
