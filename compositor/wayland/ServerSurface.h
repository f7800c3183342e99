// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QWaylandSurface>

#include <wayland-server-protocol.h>

class FeedbackList;
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
    /// Sets the mode of a subsurface. In the synchronized mode commits wait for applyCachedState().
    void setSynchronized(bool isSynchronized);
    /// Applies the commits that have waited: the parent's state has been applied.
    void applyCachedState();

    /// Whether a wl_buffer is attached, committed or not.
    bool hasBuffer() const;
    /// Whether a wl_buffer is committed. hasContent() ends with the wl_buffer, but only a commit without one hides the
    /// surface.
    bool isContentAttached() const;

    /// The feedback that has been requested for the next commit, and for the committed content that was not yet shown.
    FeedbackList& pendingFeedback();
    FeedbackList& feedback();

    /// Null when there is none.
    XdgSurface* xdgSurface() const;
    void setXdgSurface(XdgSurface* xdgSurface);
};
