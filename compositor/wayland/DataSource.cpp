// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "wayland/DataSource.h"

#include <unistd.h>
#include <utility>
#include <wayland-server-protocol.h>

namespace {

/// The bytes of all types of one source. They are sent to every client that is offered the data.
constexpr int cMostTypeBytes = 8192;
constexpr quint32 cAllActions = WL_DATA_DEVICE_MANAGER_DND_ACTION_COPY | WL_DATA_DEVICE_MANAGER_DND_ACTION_MOVE
    | WL_DATA_DEVICE_MANAGER_DND_ACTION_ASK;

void destroyResource(wl_client*, wl_resource* resource)
{
    wl_resource_destroy(resource);
}

} // namespace

void DataSource::create(wl_client* client, int version, quint32 id)
{
    static const struct wl_data_source_interface requests = {offer, destroyResource, setActions};
    wl_resource* const resource = wl_resource_create(client, &wl_data_source_interface, version, id);
    if (resource == nullptr) {
        wl_client_post_no_memory(client);
        return;
    }
    wl_resource_set_implementation(resource, &requests, new DataSource(resource), [](wl_resource* destroyed) {
        delete of(destroyed);
    });
}

DataSource::DataSource(wl_resource* resource)
    : mResource(resource)
    , mActions(WL_DATA_DEVICE_MANAGER_DND_ACTION_COPY)
{
}

DataSource* DataSource::of(wl_resource* resource)
{
    return resource == nullptr ? nullptr : static_cast<DataSource*>(wl_resource_get_user_data(resource));
}

bool DataSource::claim()
{
    return !std::exchange(mIsUsed, true);
}

void DataSource::sendTarget(const char* type)
{
    wl_data_source_send_target(mResource, type);
}

void DataSource::sendAction(quint32 action)
{
    if (wl_resource_get_version(mResource) >= WL_DATA_SOURCE_ACTION_SINCE_VERSION) {
        wl_data_source_send_action(mResource, action);
    }
}

void DataSource::sendRequest(const char* type, int descriptor)
{
    wl_data_source_send_send(mResource, type, descriptor);
    close(descriptor);
}

void DataSource::sendCancelled()
{
    wl_data_source_send_cancelled(mResource);
}

void DataSource::sendDropPerformed()
{
    if (wl_resource_get_version(mResource) >= WL_DATA_SOURCE_DND_DROP_PERFORMED_SINCE_VERSION) {
        wl_data_source_send_dnd_drop_performed(mResource);
    }
}

void DataSource::sendFinished()
{
    if (wl_resource_get_version(mResource) >= WL_DATA_SOURCE_DND_FINISHED_SINCE_VERSION) {
        wl_data_source_send_dnd_finished(mResource);
    }
}

void DataSource::offer(wl_client*, wl_resource* resource, const char* type)
{
    DataSource* const self = of(resource);
    const QByteArray text(type);
    if (self->mTypeBytes + text.size() <= cMostTypeBytes) {
        self->mTypeBytes += text.size();
        self->mTypes.append(text);
    }
}

void DataSource::setActions(wl_client*, wl_resource* resource, uint32_t actions)
{
    DataSource* const self = of(resource);
    if ((actions & ~cAllActions) != 0) {
        wl_resource_post_error(resource, WL_DATA_SOURCE_ERROR_INVALID_ACTION_MASK, "there is no such action");
    } else if (self->mIsUsed || std::exchange(self->mHasActions, true)) {
        wl_resource_post_error(resource, WL_DATA_SOURCE_ERROR_INVALID_SOURCE,
                               "the actions are set once, before the source is used");
    } else {
        self->mActions = actions;
    }
}
