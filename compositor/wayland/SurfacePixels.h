// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QImage>
#include <QRectF>
#include <QRegion>
#include <QSize>
#include <QWaylandBufferRef>

#include <memory>
#include <wayland-server-protocol.h>

class QPainter;
class QPoint;
class ServerSurface;

/// The bytes that all SurfacePixels of one client hold. Limited, because a client can show a single wl_buffer on any
/// number of surfaces.
class PixelBudget
{
public:
    bool hasRoomFor(qint64 bytes) const;
    void add(qint64 bytes)
    {
        mBytes += bytes;
    }

private:
    qint64 mBytes = 0;
};

/// A copy of the pixels of a surface's current wl_buffer. Because it is a copy, a client that hangs, dies or truncates
/// its memory can neither disturb the painting nor leave a hole.
class SurfacePixels
{
public:
    explicit SurfacePixels(std::shared_ptr<PixelBudget> budget);
    ~SurfacePixels();
    SurfacePixels(const SurfacePixels&) = delete;
    SurfacePixels& operator=(const SurfacePixels&) = delete;

    /// Notes a wl_surface.commit; the buffer is copied by the next update().
    void commit(const QWaylandBufferRef& buffer, const QRegion& damage);
    /// Copies what was committed since the last call. Returns the changed region in surface coordinates. `surface` is
    /// null when the client has destroyed it.
    QRegion update(const ServerSurface* surface);

    /// In surface coordinates; empty while there is no content.
    QSize size() const
    {
        return mSize;
    }
    void paint(QPainter* painter, const QPoint& position) const;
    /// Returns the part in which paint() leaves nothing of what is below, in surface coordinates.
    QRect opaqueRect() const;

private:
    /// Whether each pixel of the surface is one of the image.
    bool isUnscaled() const;
    void setImage(const QImage& image);
    void copy(const QImage& source, const QRegion& damage, int scale);

    std::shared_ptr<PixelBudget> mBudget;
    QWaylandBufferRef mCommittedBuffer;
    QRegion mCommittedDamage;
    bool mHasCommit = false;

    QImage mImage;
    QSize mSize;
    wl_output_transform mTransform = WL_OUTPUT_TRANSFORM_NORMAL;
    /// The part of the upright image that is shown, by wp_viewport.
    QRectF mSource;
};
