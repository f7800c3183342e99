// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "wayland/DataOffer.h"

#include <unistd.h>
#include <utility>
#include <wayland-server-protocol.h>

namespace {

constexpr quint32 cNone = WL_DATA_DEVICE_MANAGER_DND_ACTION_NONE;
constexpr quint32 cCopy = WL_DATA_DEVICE_MANAGER_DND_ACTION_COPY;
constexpr quint32 cMove = WL_DATA_DEVICE_MANAGER_DND_ACTION_MOVE;
constexpr quint32 cAsk = WL_DATA_DEVICE_MANAGER_DND_ACTION_ASK;

void destroyResource(wl_client*, wl_resource* resource)
{
    wl_resource_destroy(resource);
}

} // namespace

DataOffer* DataOffer::create(wl_resource* device, DataSource* source, Purpose purpose)
{
    static const struct wl_data_offer_interface requests = {accept, receive, destroyResource, finish, setActions};
    wl_client* const client = wl_resource_get_client(device);
    wl_resource* const resource =
        wl_resource_create(client, &wl_data_offer_interface, wl_resource_get_version(device), 0);
    if (resource == nullptr) {
        wl_client_post_no_memory(client);
        return nullptr;
    }
    auto* const offer = new DataOffer(resource, source, purpose);
    wl_resource_set_implementation(resource, &requests, offer, [](wl_resource* destroyed) {
        delete of(destroyed);
    });
    wl_data_device_send_data_offer(device, resource);
    for (const QByteArray& type : source->types()) {
        wl_data_offer_send_offer(resource, type.constData());
    }
    if (purpose == Purpose::Drag && offer->knowsActions()) {
        wl_data_offer_send_source_actions(resource, source->actions());
    }
    return offer;
}

DataOffer::DataOffer(wl_resource* resource, DataSource* source, Purpose purpose)
    : mResource(resource)
    , mSource(source)
    , mPurpose(purpose)
    , mActions(knowsActions() ? cNone : cCopy)
    , mPreferredAction(cNone)
    , mAction(cNone)
{
    if (purpose == Purpose::Drag && !knowsActions()) {
        chooseAction();
    }
}

DataOffer::~DataOffer()
{
    if (mSource == nullptr || !mIsDropped) {
        return;
    }
    // Only since version 3 can a client say that it has finished.
    if (knowsActions()) {
        mSource->sendCancelled();
    } else {
        mSource->sendFinished();
    }
}

bool DataOffer::takesDrop() const
{
    return !knowsActions() || (mHasType && mAction != cNone);
}

void DataOffer::drop()
{
    mIsDropped = true;
}

void DataOffer::revoke()
{
    if (!mIsDropped) {
        mSource = nullptr;
    }
}

DataOffer* DataOffer::of(wl_resource* resource)
{
    return static_cast<DataOffer*>(wl_resource_get_user_data(resource));
}

void DataOffer::accept(wl_client*, wl_resource* resource, uint32_t, const char* type)
{
    DataOffer* const self = of(resource);
    if (self->mSource != nullptr && self->mPurpose == Purpose::Drag && !self->mIsDropped) {
        self->mHasType = type != nullptr;
        self->mSource->sendTarget(type);
    }
}

void DataOffer::receive(wl_client*, wl_resource* resource, const char* type, int32_t descriptor)
{
    DataOffer* const self = of(resource);
    if (self->mSource != nullptr) {
        self->mSource->sendRequest(type, descriptor);
    } else {
        close(descriptor);
    }
}

void DataOffer::finish(wl_client*, wl_resource* resource)
{
    DataOffer* const self = of(resource);
    if (self->mPurpose != Purpose::Drag || !self->mIsDropped) {
        wl_resource_post_error(resource, WL_DATA_OFFER_ERROR_INVALID_FINISH, "nothing has been dropped");
        return;
    }
    if (DataSource* const source = std::exchange(self->mSource, nullptr)) {
        source->sendFinished();
    }
}

void DataOffer::setActions(wl_client*, wl_resource* resource, uint32_t actions, uint32_t preferred)
{
    DataOffer* const self = of(resource);
    if (self->mPurpose != Purpose::Drag) {
        wl_resource_post_error(resource, WL_DATA_OFFER_ERROR_INVALID_OFFER, "the offer is not of a drag");
    } else if ((actions & ~(cCopy | cMove | cAsk)) != 0) {
        wl_resource_post_error(resource, WL_DATA_OFFER_ERROR_INVALID_ACTION_MASK, "there is no such action");
    } else if (preferred != cNone && ((preferred & (preferred - 1)) != 0 || (preferred & actions) == 0)) {
        wl_resource_post_error(resource, WL_DATA_OFFER_ERROR_INVALID_ACTION, "one of the actions is preferred");
    } else {
        self->mActions = actions;
        self->mPreferredAction = preferred;
        self->chooseAction();
    }
}

bool DataOffer::knowsActions() const
{
    return wl_resource_get_version(mResource) >= WL_DATA_OFFER_SET_ACTIONS_SINCE_VERSION;
}

/// Chooses the action that the target prefers, or the first that both sides support.
void DataOffer::chooseAction()
{
    if (mSource == nullptr) {
        return;
    }
    const quint32 common = mActions & mSource->actions();
    quint32 action = mPreferredAction & common;
    for (const quint32 candidate : {cCopy, cMove, cAsk}) {
        if (action == cNone) {
            action = common & candidate;
        }
    }
    if (action != std::exchange(mAction, action)) {
        mSource->sendAction(action);
        if (knowsActions()) {
            wl_data_offer_send_action(mResource, action);
        }
    }
}
