// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "wayland/XdgOutput.h"

#include "state/Output.h"

#include <wayland-server-core.h>

#include <xdg-output-unstable-v1-server-protocol.h>

namespace {

constexpr int cVersion = 2;

void destroyResource(wl_client*, wl_resource* resource)
{
    wl_resource_destroy(resource);
}

const struct zxdg_output_v1_interface cOutputRequests = {destroyResource};

} // namespace

XdgOutput::XdgOutput(wl_display* display, const Output& output)
    : mGlobal(wl_global_create(display, &zxdg_output_manager_v1_interface, cVersion, this, bind))
    , mOutput(output)
{
}

XdgOutput::~XdgOutput()
{
    for (wl_resource* resource : qAsConst(mResources)) {
        wl_resource_set_user_data(resource, nullptr);
    }
    wl_global_destroy(mGlobal);
}

void XdgOutput::announceSize() const
{
    for (wl_resource* resource : mResources) {
        zxdg_output_v1_send_logical_size(resource, mOutput.size().width(), mOutput.size().height());
        zxdg_output_v1_send_done(resource);
    }
}

void XdgOutput::bind(wl_client* client, void* data, uint32_t version, uint32_t id)
{
    static const struct zxdg_output_manager_v1_interface requests = {destroyResource, create};
    wl_resource* const resource =
        wl_resource_create(client, &zxdg_output_manager_v1_interface, static_cast<int>(version), id);
    if (resource == nullptr) {
        wl_client_post_no_memory(client);
        return;
    }
    wl_resource_set_implementation(resource, &requests, data, nullptr);
}

void XdgOutput::create(wl_client* client, wl_resource* manager, uint32_t id, wl_resource*)
{
    auto* const self = static_cast<XdgOutput*>(wl_resource_get_user_data(manager));
    wl_resource* const resource =
        wl_resource_create(client, &zxdg_output_v1_interface, wl_resource_get_version(manager), id);
    if (resource == nullptr) {
        wl_client_post_no_memory(client);
        return;
    }
    wl_resource_set_implementation(resource, &cOutputRequests, self, forget);
    self->mResources.append(resource);

    zxdg_output_v1_send_logical_position(resource, 0, 0);
    if (wl_resource_get_version(resource) >= ZXDG_OUTPUT_V1_NAME_SINCE_VERSION) {
        zxdg_output_v1_send_name(resource, "TELVARO-1");
        zxdg_output_v1_send_description(resource, "Telvaro reference display");
    }
    zxdg_output_v1_send_logical_size(resource, self->mOutput.size().width(), self->mOutput.size().height());
    zxdg_output_v1_send_done(resource);
}

void XdgOutput::forget(wl_resource* resource)
{
    if (auto* const self = static_cast<XdgOutput*>(wl_resource_get_user_data(resource))) {
        self->mResources.removeOne(resource);
    }
}
