// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QWaylandSurface>

#include <wayland-server-protocol.h>

class ServerSurfacePrivate;

/// A wl_surface at version 4. Adds to QWaylandSurface the requests that it ignores: damage_buffer and
/// set_buffer_transform.
class ServerSurface : public QWaylandSurface
{
    Q_OBJECT
    Q_DECLARE_PRIVATE(ServerSurface)

public:
    ServerSurface(QWaylandCompositor* compositor, QWaylandClient* client, uint id, int version);

    wl_output_transform bufferTransform() const;
};
