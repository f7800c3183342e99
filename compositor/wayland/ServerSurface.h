// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QWaylandSurface>

#include <wayland-server-protocol.h>

class ServerSurfacePrivate;
class XdgSurface;

/// A wl_surface at version 4. Adds to QWaylandSurface the requests that it ignores, damage_buffer and
/// set_buffer_transform, and the rules of an xdg_surface.
class ServerSurface : public QWaylandSurface
{
    Q_OBJECT
    Q_DECLARE_PRIVATE(ServerSurface)

public:
    ServerSurface(QWaylandCompositor* compositor, QWaylandClient* client, uint id, int version);

    wl_output_transform bufferTransform() const;
    /// Whether a wl_buffer is attached, committed or not.
    bool hasBuffer() const;

    /// Null when there is none.
    XdgSurface* xdgSurface() const;
    void setXdgSurface(XdgSurface* xdgSurface);
};
