// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "wayland/Subsurface.h"

#include "wayland/ClientSurface.h"

#include <QPoint>
#include <QWaylandSurfaceRole>

#include <wayland-server-core.h>
#include <wayland-server-protocol.h>

namespace {

void destroyResource(wl_client*, wl_resource* resource)
{
    wl_resource_destroy(resource);
}

QWaylandSurface* surfaceOf(const wl_argument& argument)
{
    return QWaylandSurface::fromResource(reinterpret_cast<wl_resource*>(argument.o));
}

} // namespace

void Subsurface::handleGetSubsurface(wl_resource* subcompositor, const wl_argument* arguments)
{
    static const struct wl_subsurface_interface requests = {
        destroyResource, setPosition,   place<&ClientSurface::placeAbove>, place<&ClientSurface::placeBelow>,
        setMode<true>,   setMode<false>};
    static QWaylandSurfaceRole role("wl_subsurface");

    QWaylandSurface* const surface = surfaceOf(arguments[1]);
    ClientSurface* const parent = ClientSurface::of(surfaceOf(arguments[2]));
    ClientSurface* const child = ClientSurface::of(surface);
    if (child == nullptr || child->hasParent() || child->contains(parent)) {
        wl_resource_post_error(subcompositor, WL_SUBCOMPOSITOR_ERROR_BAD_SURFACE,
                               "the surface cannot become a subsurface");
        return;
    }
    if (!surface->setRole(&role, subcompositor, WL_SUBCOMPOSITOR_ERROR_BAD_SURFACE)) {
        return;
    }
    wl_client* const client = wl_resource_get_client(subcompositor);
    wl_resource* const resource = wl_resource_create(client, &wl_subsurface_interface, 1, arguments[0].n);
    if (resource == nullptr) {
        wl_client_post_no_memory(client);
        return;
    }
    wl_resource_set_implementation(resource, &requests, new Subsurface(surface), [](wl_resource* destroyed) {
        delete of(destroyed);
    });
    if (parent != nullptr) {
        parent->addChild(child);
    }
}

Subsurface::Subsurface(QWaylandSurface* surface)
    : mSurface(qobject_cast<ServerSurface*>(surface))
{
    mSurface->setSynchronized(true);
}

Subsurface::~Subsurface()
{
    if (ClientSurface* const surface = ClientSurface::of(mSurface)) {
        surface->leaveParent();
        mSurface->setSynchronized(false);
    }
}

Subsurface* Subsurface::of(wl_resource* resource)
{
    return static_cast<Subsurface*>(wl_resource_get_user_data(resource));
}

template <bool isSynchronized> void Subsurface::setMode(wl_client*, wl_resource* resource)
{
    if (ServerSurface* const surface = of(resource)->mSurface) {
        surface->setSynchronized(isSynchronized);
    }
}

void Subsurface::setPosition(wl_client*, wl_resource* resource, int32_t x, int32_t y)
{
    if (ClientSurface* const surface = ClientSurface::of(of(resource)->mSurface)) {
        surface->move(QPoint(x, y));
    }
}

template <Subsurface::Placement placement>
void Subsurface::place(wl_client*, wl_resource* resource, wl_resource* sibling)
{
    ClientSurface* const surface = ClientSurface::of(of(resource)->mSurface);
    if (surface != nullptr && !(surface->*placement)(ClientSurface::of(QWaylandSurface::fromResource(sibling)))) {
        wl_resource_post_error(resource, WL_SUBSURFACE_ERROR_BAD_SURFACE,
                               "the reference is neither the parent nor a sibling");
    }
}
