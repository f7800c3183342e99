// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "wayland/ServerSurface.h"

#include "wayland/BufferTransform.h"
#include "wayland/ClientBounds.h"
#include "wayland/ClientSurface.h"
#include "wayland/Presentation.h"
#include "wayland/XdgSurface.h"

#include <QPointer>
#include <QRect>
#include <QRegion>

#include <QtWaylandCompositor/private/qwaylandsurface_p.h>
#include <optional>
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

    bool isContentAttached() const
    {
        return mIsContentAttached;
    }

    QPointer<XdgSurface> xdgSurface;
    FeedbackList pendingFeedback;
    FeedbackList feedback;
    /// Whether this is a subsurface in the synchronized mode.
    bool isSynchronized = false;

    void applyCachedState();

protected:
    void surface_destroy(Resource* resource) override;
    void surface_damage_buffer(Resource* resource, int32_t x, int32_t y, int32_t width, int32_t height) override;
    void surface_set_buffer_transform(Resource* resource, int32_t transform) override;
    void surface_commit(Resource* resource) override;

private:
    /// What the commits of a synchronized subsurface have set. Frame callbacks stay pending, as Qt keeps the only list.
    struct CachedState
    {
        decltype(QWaylandSurfacePrivate::pending) values;
        QRegion bufferDamage;
        wl_output_transform transform = WL_OUTPUT_TRANSFORM_NORMAL;
    };

    bool mustWait() const;
    void cacheState();
    void applyState();
    QRegion toSurface(const QRegion& region, const QSize& size) const;

    QRegion mPendingBufferDamage;
    wl_output_transform mPendingTransform = WL_OUTPUT_TRANSFORM_NORMAL;
    wl_output_transform mTransform = WL_OUTPUT_TRANSFORM_NORMAL;
    bool mIsContentAttached = false;
    std::optional<CachedState> mCachedState;
    FeedbackList mCachedFeedback;
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

void ServerSurfacePrivate::surface_commit(Resource*)
{
    if (xdgSurface != nullptr && !xdgSurface->admitCommit(pending.newlyAttached && pending.buffer.hasBuffer())) {
        return;
    }
    if (mustWait()) {
        cacheState();
    } else if (mCachedState) {
        cacheState();
        applyCachedState();
    } else {
        applyState();
    }
}

/// Whether the surface is a synchronized subsurface or a subsurface of one.
bool ServerSurfacePrivate::mustWait() const
{
    for (const ClientSurface* surface = ClientSurface::of(q_func()); surface != nullptr && surface->hasParent();
         surface = surface->parentSurface()) {
        const auto* const server = qobject_cast<const ServerSurface*>(surface->surface());
        if (server != nullptr && server->d_func()->isSynchronized) {
            return true;
        }
    }
    return false;
}

void ServerSurfacePrivate::cacheState()
{
    const CachedState state = mCachedState.value_or(CachedState());
    auto values = pending;
    values.damage |= state.values.damage;
    values.offset += state.values.offset;
    if (!pending.newlyAttached) {
        values.buffer = state.values.buffer;
        values.newlyAttached = state.values.newlyAttached;
    }
    mCachedState = {values, state.bufferDamage | std::exchange(mPendingBufferDamage, QRegion()), mPendingTransform};
    mCachedFeedback.discard();
    mCachedFeedback.take(pendingFeedback);
    // As Qt does after a commit.
    pending.buffer = QWaylandBufferRef();
    pending.newlyAttached = false;
    pending.offset = QPoint();
    pending.damage = QRegion();
}

void ServerSurfacePrivate::applyCachedState()
{
    if (!mCachedState) {
        return;
    }
    const CachedState state = *std::exchange(mCachedState, std::nullopt);
    const auto laterValues = std::exchange(pending, state.values);
    const QRegion laterDamage = std::exchange(mPendingBufferDamage, state.bufferDamage);
    const wl_output_transform laterTransform = std::exchange(mPendingTransform, state.transform);
    FeedbackList laterFeedback;
    laterFeedback.take(pendingFeedback);
    pendingFeedback.take(mCachedFeedback);
    applyState();
    pending = laterValues;
    mPendingBufferDamage = laterDamage;
    mPendingTransform = laterTransform;
    pendingFeedback.take(laterFeedback);
}

void ServerSurfacePrivate::applyState()
{
    feedback.discard();
    feedback.take(pendingFeedback);
    mTransform = mPendingTransform;
    if (pending.newlyAttached) {
        mIsContentAttached = pending.buffer.hasContent();
    }
    const QSize newSize = (pending.newlyAttached ? pending.buffer : bufferRef).size();
    pending.damage |= toSurface(std::exchange(mPendingBufferDamage, QRegion()), newSize);

    const bool isBufferGone = !pending.newlyAttached && bufferRef.isDestroyed();
    if (!isBufferGone && !BufferTransform::isTransposed(mTransform)) {
        QWaylandSurfacePrivate::surface_commit(resource());
        return;
    }
    // Qt derives the size of the surface from a buffer that is still there and is never transposed, and compares a
    // wp_viewport with that.
    const auto uncheckedViewport = std::exchange(viewport, nullptr);
    const QRectF source = pending.sourceGeometry;
    if (!source.isValid()) {
        pending.sourceGeometry =
            isBufferGone ? sourceGeometry : QRectF(QPointF(), newSize.transposed() / pending.bufferScale);
    }
    QWaylandSurfacePrivate::surface_commit(resource());
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

void ServerSurface::setSynchronized(bool isSynchronized)
{
    d_func()->isSynchronized = isSynchronized;
}

void ServerSurface::applyCachedState()
{
    d_func()->applyCachedState();
}

bool ServerSurface::hasBuffer() const
{
    return d_func()->hasBuffer();
}

bool ServerSurface::isContentAttached() const
{
    return d_func()->isContentAttached();
}

FeedbackList& ServerSurface::pendingFeedback()
{
    return d_func()->pendingFeedback;
}

FeedbackList& ServerSurface::feedback()
{
    return d_func()->feedback;
}

XdgSurface* ServerSurface::xdgSurface() const
{
    return d_func()->xdgSurface;
}

void ServerSurface::setXdgSurface(XdgSurface* xdgSurface)
{
    d_func()->xdgSurface = xdgSurface;
}
