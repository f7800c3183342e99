// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "wayland/Subsurface.h"

#include "wayland/ClientSurface.h"

#include <wayland-server-core.h>
#include <wayland-server-protocol.h>

namespace {
void destroyResource(wl_client*, wl_resource* resource)
{
    wl_resource_destroy(resource);
}

/// Every commit takes effect at once.
void ignoreMode(wl_client*, wl_resource*)
{
}
} // namespace

void Subsurface::create(wl_client* client, quint32 id, QWaylandSurface* surface, QWaylandSurface* parent)
{
    static const struct wl_subsurface_interface requests = {destroyResource, setPosition, placeAbove,
                                                            placeBelow,      ignoreMode,  ignoreMode};
    wl_resource* const resource = wl_resource_create(client, &wl_subsurface_interface, 1, id);
    if (resource == nullptr) {
        wl_client_post_no_memory(client);
        return;
    }
    wl_resource_set_implementation(resource, &requests, new Subsurface(surface), [](wl_resource* ended) {
        delete of(ended);
    });
    Q_EMIT parent->childAdded(surface);
}

Subsurface::Subsurface(QWaylandSurface* surface)
    : mSurface(surface)
{
}

Subsurface::~Subsurface()
{
    if (ClientSurface* const surface = ClientSurface::of(mSurface)) {
        surface->leaveParent();
    }
}

Subsurface* Subsurface::of(wl_resource* resource)
{
    return static_cast<Subsurface*>(wl_resource_get_user_data(resource));
}

void Subsurface::setPosition(wl_client*, wl_resource* resource, int32_t x, int32_t y)
{
    if (QWaylandSurface* const surface = of(resource)->mSurface) {
        Q_EMIT surface->subsurfacePositionChanged(QPoint(x, y));
    }
}

void Subsurface::placeAbove(wl_client*, wl_resource* resource, wl_resource* sibling)
{
    if (QWaylandSurface* const surface = of(resource)->mSurface) {
        Q_EMIT surface->subsurfacePlaceAbove(QWaylandSurface::fromResource(sibling));
    }
}

void Subsurface::placeBelow(wl_client*, wl_resource* resource, wl_resource* sibling)
{
    if (QWaylandSurface* const surface = of(resource)->mSurface) {
        Q_EMIT surface->subsurfacePlaceBelow(QWaylandSurface::fromResource(sibling));
    }
}
