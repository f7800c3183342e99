// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "wayland/ServerSurface.h"

#include "wayland/BufferTransform.h"
#include "wayland/ClientBounds.h"
#include "wayland/XdgSurface.h"

#include <QPointer>
#include <QRect>
#include <QRegion>

#include <QtWaylandCompositor/private/qwaylandsurface_p.h>
#include <utility>

class ServerSurfacePrivate : public QWaylandSurfacePrivate
{
    Q_DECLARE_PUBLIC(ServerSurface)

public:
    wl_output_transform bufferTransform() const
    {
        return mTransform;
    }
    bool hasBuffer() const
    {
        return (pending.newlyAttached ? pending.buffer : bufferRef).hasBuffer();
    }

    QPointer<XdgSurface> xdgSurface;

protected:
    void surface_destroy(Resource* resource) override;
    void surface_damage_buffer(Resource* resource, int32_t x, int32_t y, int32_t width, int32_t height) override;
    void surface_set_buffer_transform(Resource* resource, int32_t transform) override;
    void surface_commit(Resource* resource) override;

private:
    QRegion toSurface(const QRegion& region, const QSize& size) const;

    QRegion mPendingBufferDamage;
    wl_output_transform mPendingTransform = WL_OUTPUT_TRANSFORM_NORMAL;
    wl_output_transform mTransform = WL_OUTPUT_TRANSFORM_NORMAL;
};

void ServerSurfacePrivate::surface_destroy(Resource* resource)
{
    if (xdgSurface != nullptr) {
        xdgSurface->rejectSurfaceDestruction();
        return;
    }
    QWaylandSurfacePrivate::surface_destroy(resource);
}

void ServerSurfacePrivate::surface_damage_buffer(Resource*, int32_t x, int32_t y, int32_t width, int32_t height)
{
    using ClientBounds::clamped;
    mPendingBufferDamage |= QRect(clamped(x), clamped(y), clamped(width), clamped(height));
}

void ServerSurfacePrivate::surface_set_buffer_transform(Resource*, int32_t transform)
{
    mPendingTransform = static_cast<wl_output_transform>(transform);
}

void ServerSurfacePrivate::surface_commit(Resource* resource)
{
    if (xdgSurface != nullptr && !xdgSurface->admitCommit(pending.newlyAttached && pending.buffer.hasBuffer())) {
        return;
    }
    mTransform = mPendingTransform;
    const QSize newSize = (pending.newlyAttached ? pending.buffer : bufferRef).size();
    pending.damage |= toSurface(std::exchange(mPendingBufferDamage, QRegion()), newSize);

    if (!BufferTransform::isTransposed(mTransform)) {
        QWaylandSurfacePrivate::surface_commit(resource);
        return;
    }
    // Qt derives the size of the surface from a buffer that is never transposed, and compares a wp_viewport with that.
    const auto uncheckedViewport = std::exchange(viewport, nullptr);
    const QRectF source = pending.sourceGeometry;
    if (!source.isValid()) {
        pending.sourceGeometry = QRectF(QPointF(), newSize.transposed() / pending.bufferScale);
    }
    QWaylandSurfacePrivate::surface_commit(resource);
    pending.sourceGeometry = source;
    viewport = uncheckedViewport;
}

QRegion ServerSurfacePrivate::toSurface(const QRegion& region, const QSize& size) const
{
    if (region.isEmpty()) {
        return {};
    }
    if (pending.sourceGeometry.isValid() || !pending.destinationSize.isEmpty()) {
        // With a wp_viewport everything is damaged; Qt clips the region to the surface.
        return QRect(0, 0, ClientBounds::cFarthest, ClientBounds::cFarthest);
    }
    const QSizeF upright = BufferTransform::applied(mTransform, QSizeF(size));
    const QTransform toContent = BufferTransform::toBuffer(mTransform, upright).inverted();
    const QRegion inside = region & QRect(QPoint(), size);
    QRegion result;
    for (const QRect& rect : inside) {
        const QRectF content = toContent.mapRect(QRectF(rect));
        result |= QRectF(content.topLeft() / pending.bufferScale, content.size() / pending.bufferScale).toAlignedRect();
    }
    return result;
}

ServerSurface::ServerSurface(QWaylandCompositor* compositor, QWaylandClient* client, uint id, int version)
    : QWaylandSurface(*new ServerSurfacePrivate)
{
    initialize(compositor, client, id, version);
}

wl_output_transform ServerSurface::bufferTransform() const
{
    return d_func()->bufferTransform();
}

bool ServerSurface::hasBuffer() const
{
    return d_func()->hasBuffer();
}

XdgSurface* ServerSurface::xdgSurface() const
{
    return d_func()->xdgSurface;
}

void ServerSurface::setXdgSurface(XdgSurface* xdgSurface)
{
    d_func()->xdgSurface = xdgSurface;
}
