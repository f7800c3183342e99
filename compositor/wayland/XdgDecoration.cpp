// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "wayland/XdgDecoration.h"

#include "wayland/ClientResources.h"
#include "wayland/ServerGlobals.h"
#include "wayland/ServerSurface.h"
#include "wayland/XdgSurface.h"
#include "wayland/XdgToplevel.h"

#include <QPointer>

#include <xdg-decoration-unstable-v1-server-protocol.h>

namespace {

constexpr int cVersion = 1;

/// The window of a zxdg_toplevel_decoration_v1, which may be destroyed before it: some toolkits do that.
using Window = QPointer<XdgToplevel>;

Window& windowOf(wl_resource* decoration)
{
    return *static_cast<Window*>(wl_resource_get_user_data(decoration));
}

void setMode(wl_client*, wl_resource* decoration, uint32_t mode)
{
    const bool isKnown =
        mode == ZXDG_TOPLEVEL_DECORATION_V1_MODE_CLIENT_SIDE || mode == ZXDG_TOPLEVEL_DECORATION_V1_MODE_SERVER_SIDE;
    if (isKnown && windowOf(decoration) != nullptr) {
        windowOf(decoration)->setDecorationMode(mode);
    }
}

void unsetMode(wl_client* client, wl_resource* decoration)
{
    setMode(client, decoration, ZXDG_TOPLEVEL_DECORATION_V1_MODE_SERVER_SIDE);
}

void forget(wl_resource* decoration)
{
    if (windowOf(decoration) != nullptr) {
        windowOf(decoration)->setDecoration(nullptr);
    }
    ClientResources::deleteObject<Window>(decoration);
}

void createDecoration(wl_client* client, wl_resource* manager, uint32_t id, wl_resource* toplevelResource)
{
    static const struct zxdg_toplevel_decoration_v1_interface requests = {ClientResources::destroy, setMode, unsetMode};
    XdgToplevel* const toplevel = XdgToplevel::of(toplevelResource);
    auto* const window = new Window(toplevel);
    wl_resource* const decoration = ClientResources::create(
        client, zxdg_toplevel_decoration_v1_interface, wl_resource_get_version(manager), id, requests, window, forget);
    if (decoration == nullptr) {
        delete window;
        return;
    }
    if (toplevel->decoration() != nullptr) {
        wl_resource_post_error(decoration, ZXDG_TOPLEVEL_DECORATION_V1_ERROR_ALREADY_CONSTRUCTED,
                               "the window has a decoration already");
        window->clear();
    } else if (toplevel->xdgSurface()->surface() != nullptr && toplevel->xdgSurface()->surface()->hasBuffer()) {
        wl_resource_post_error(decoration, ZXDG_TOPLEVEL_DECORATION_V1_ERROR_UNCONFIGURED_BUFFER,
                               "the window has a buffer already");
        window->clear();
    } else {
        toplevel->setDecoration(decoration);
        unsetMode(client, decoration);
    }
}

void bind(wl_client* client, void*, uint32_t version, uint32_t id)
{
    static const struct zxdg_decoration_manager_v1_interface requests = {ClientResources::destroy, createDecoration};
    ClientResources::create(client, zxdg_decoration_manager_v1_interface, static_cast<int>(version), id, requests,
                            nullptr);
}

} // namespace

void XdgDecoration::announce(ServerGlobals& globals)
{
    globals.announce(&zxdg_decoration_manager_v1_interface, cVersion, nullptr, bind);
}
