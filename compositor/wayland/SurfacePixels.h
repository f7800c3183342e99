// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "wayland/ResourceListener.h"

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
struct wl_shm_buffer;

/// The bytes that all SurfacePixels of one client have copied. Limited, because a client can show a single wl_buffer on
/// any number of surfaces.
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

/// The pixels of a surface's current wl_buffer. They stay in the client's memory, where libwayland catches the SIGBUS
/// of a client that truncates it. A picture that Qt has to convert or scale is copied first, since Qt does that in
/// other threads, in which no SIGBUS is caught; so is the picture of a wl_buffer that is destroyed while it is shown.
class SurfacePixels
{
public:
    explicit SurfacePixels(std::shared_ptr<PixelBudget> budget);
    ~SurfacePixels();
    SurfacePixels(const SurfacePixels&) = delete;
    SurfacePixels& operator=(const SurfacePixels&) = delete;

    /// Takes a wl_surface.commit, and leaves the buffer that was current. Nothing is to be painted before update().
    void commit(const QWaylandBufferRef& buffer, const QRegion& damage);
    /// Reads what was committed since the last call. Returns the changed region in surface coordinates. `surface` is
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
    void read(wl_shm_buffer* memory);
    void share(wl_shm_buffer* memory, QImage::Format format);
    void unshare();
    void copy(wl_shm_buffer* memory);
    void setCopy(const QImage& image);
    void paintShared(QPainter* painter, const QPoint& position) const;

    std::shared_ptr<PixelBudget> mBudget;
    QWaylandBufferRef mBuffer;
    QRegion mCommittedDamage;
    bool mHasCommit = false;

    /// The client's memory, or null where there is a copy or nothing.
    wl_shm_buffer* mShared = nullptr;
    QImage::Format mSharedFormat = QImage::Format_Invalid;
    std::unique_ptr<ResourceListener> mDestroyListener;
    QImage mCopy;
    QSize mBufferSize;
    QSize mSize;
    wl_output_transform mTransform = WL_OUTPUT_TRANSFORM_NORMAL;
    /// The part of the upright image that is shown, by wp_viewport.
    QRectF mSource;
};
