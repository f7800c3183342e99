// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "wayland/ServerSurface.h"

#include <QPointer>

#include <cstdint>

class ClientSurface;
struct wl_client;
struct wl_resource;
union wl_argument;

/// A wl_subsurface. Replaces Qt's, which leaks, is used after its surface has been destroyed, and applies everything at
/// once.
class Subsurface
{
public:
    /// Handles wl_subcompositor.get_subsurface. The object lives as long as its resource.
    static void handleGetSubsurface(wl_resource* subcompositor, const wl_argument* arguments);

    Subsurface(const Subsurface&) = delete;
    Subsurface& operator=(const Subsurface&) = delete;

private:
    explicit Subsurface(QWaylandSurface* surface);
    ~Subsurface();

    static Subsurface* of(wl_resource* resource);
    static void setPosition(wl_client* client, wl_resource* resource, int32_t x, int32_t y);
    using Placement = bool (ClientSurface::*)(const ClientSurface* sibling);
    template <Placement placement> static void place(wl_client* client, wl_resource* resource, wl_resource* sibling);
    template <bool isSynchronized> static void setMode(wl_client* client, wl_resource* resource);

    QPointer<ServerSurface> mSurface;
};
