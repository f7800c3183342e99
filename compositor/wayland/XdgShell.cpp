// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "wayland/XdgShell.h"

#include "wayland/ClientResources.h"
#include "wayland/ServerGlobals.h"
#include "wayland/XdgPositioner.h"
#include "wayland/XdgSurface.h"

#include <algorithm>
#include <xdg-shell-server-protocol.h>

namespace {

constexpr int cVersion = 3;

} // namespace

XdgShell::XdgShell(ServerGlobals& globals)
{
    globals.announce(&xdg_wm_base_interface, cVersion, this, bind);
}

void XdgShell::bind(wl_client* client, void* data, uint32_t version, uint32_t id)
{
    static const struct xdg_wm_base_interface requests = {destroy, createPositioner, createSurface, handlePong};
    ClientResources::create(client, xdg_wm_base_interface, static_cast<int>(version), id, requests, data);
}

void XdgShell::destroy(wl_client* client, wl_resource* resource)
{
    const auto surfaces = ClientResources::of(client, xdg_surface_interface);
    const bool isUsed = std::any_of(surfaces.cbegin(), surfaces.cend(), [resource](wl_resource* surface) {
        return XdgSurface::of(surface)->shellObject() == resource;
    });
    if (isUsed) {
        wl_resource_post_error(resource, XDG_WM_BASE_ERROR_DEFUNCT_SURFACES,
                               "an xdg_surface must be destroyed before its xdg_wm_base");
        return;
    }
    wl_resource_destroy(resource);
}

void XdgShell::createPositioner(wl_client* client, wl_resource* resource, uint32_t id)
{
    XdgPositioner::create(client, resource, id);
}

void XdgShell::createSurface(wl_client*, wl_resource* resource, uint32_t id, wl_resource* surface)
{
    XdgSurface::create(*static_cast<XdgShell*>(wl_resource_get_user_data(resource)), resource, id, surface);
}

void XdgShell::handlePong(wl_client* client, wl_resource* resource, uint32_t serial)
{
    Q_EMIT static_cast<XdgShell*>(wl_resource_get_user_data(resource))->pong(client, serial);
}
