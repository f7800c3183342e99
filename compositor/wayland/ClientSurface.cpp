// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "wayland/ClientSurface.h"

#include "wayland/ClientBounds.h"
#include "wayland/Presentation.h"
#include "wayland/ServerSurface.h"

#include <QPainter>
#include <QWaylandSurface>

#include <algorithm>
#include <utility>

namespace {

/// The height of a subsurface tree; higher ones are a client's mistake, and painting is recursive.
constexpr int cLargestTreeHeight = 32;

} // namespace

ClientSurface::ClientSurface(QWaylandSurface* surface, std::shared_ptr<PixelBudget> budget, QObject* parent)
    : QWaylandView(nullptr, parent)
    , mPixels(std::move(budget))
    , mLayers{{this, QPoint()}}
    , mNextLayers(mLayers)
{
    setSurface(surface);
    connect(surface, &QWaylandSurface::redraw, this, &ClientSurface::handleCommit);
    connect(this, &QWaylandView::surfaceDestroyed, this, [this] {
        mPixels.commit(QWaylandBufferRef(), QRegion());
        leaveParent();
        deleteLater();
    });
}

ClientSurface::~ClientSurface()
{
    leaveParent();
}

ClientSurface* ClientSurface::of(const QWaylandSurface* surface)
{
    return surface == nullptr ? nullptr : qobject_cast<ClientSurface*>(surface->primaryView());
}

ClientSurface::Layers::iterator ClientSurface::find(Layers& layers, const ClientSurface* surface)
{
    return std::find_if(layers.begin(), layers.end(), [surface](const Layer& layer) {
        return layer.surface == surface;
    });
}

void ClientSurface::bufferCommitted(const QWaylandBufferRef& buffer, const QRegion& damage)
{
    mPixels.commit(buffer, damage);
}

QRect ClientSurface::bounds() const
{
    QRect bounds;
    const auto* const server = qobject_cast<ServerSurface*>(surface());
    if (server != nullptr && server->isContentAttached()) {
        bounds = QRect(QPoint(), ClientBounds::clamped(surface()->destinationSize()));
        for (const Layer& layer : mLayers) {
            if (layer.surface != this) {
                bounds |= layer.surface->bounds().translated(layer.position);
            }
        }
    }
    return ClientBounds::clamped(bounds);
}

QRegion ClientSurface::update()
{
    QRegion damage = std::exchange(mDamage, QRegion());
    for (const Layer& layer : qAsConst(mLayers)) {
        damage |= layer.surface == this ? mPixels.update(qobject_cast<ServerSurface*>(surface()))
                                        : layer.surface->update().translated(layer.position);
    }
    return damage;
}

void ClientSurface::paint(QPainter* painter, const QPoint& position) const
{
    for (const Layer& layer : mLayers) {
        if (layer.surface == this) {
            mPixels.paint(painter, position);
        } else {
            layer.surface->paint(painter, position + layer.position);
        }
    }
}

void ClientSurface::sendFrameCallbacks(const timespec& time)
{
    if (auto* const server = qobject_cast<ServerSurface*>(surface())) {
        server->feedback().present(time);
        surface()->frameStarted();
        surface()->sendFrameCallbacks();
    }
    for (const Layer& layer : qAsConst(mLayers)) {
        if (layer.surface != this) {
            layer.surface->sendFrameCallbacks(time);
        }
    }
}

bool ClientSurface::inhibitsIdle() const
{
    return std::any_of(mLayers.cbegin(), mLayers.cend(), [this](const Layer& layer) {
        return layer.surface == this ? surface() != nullptr && surface()->inhibitsIdle()
                                     : layer.surface->inhibitsIdle();
    });
}

ClientSurface* ClientSurface::surfaceAt(const QPointF& position, QPointF* localPosition)
{
    for (auto layer = mLayers.crbegin(); layer != mLayers.crend(); ++layer) {
        if (layer->surface != this) {
            if (ClientSurface* const found = layer->surface->surfaceAt(position - layer->position, localPosition)) {
                return found;
            }
        } else if (surface() != nullptr && QRectF(QPointF(), size()).contains(position)
                   && surface()->inputRegionContains(position)) {
            *localPosition = position;
            return this;
        }
    }
    return nullptr;
}

void ClientSurface::addChild(ClientSurface* child)
{
    if (ancestorCount() + child->height() >= cLargestTreeHeight) {
        return;
    }
    child->mParent = this;
    mNextLayers.append({child, QPoint()});
    connect(child, &ClientSurface::committed, this, &ClientSurface::committed);
}

void ClientSurface::leaveParent()
{
    if (mParent != nullptr) {
        mParent->removeChild(this);
        disconnect(mParent);
        mParent = nullptr;
    }
}

void ClientSurface::move(const QPoint& position)
{
    if (mParent != nullptr) {
        find(mParent->mNextLayers, this)->position = ClientBounds::clamped(position);
    }
}

bool ClientSurface::placeAbove(const ClientSurface* sibling)
{
    return mParent == nullptr || mParent->place(this, sibling, 1);
}

bool ClientSurface::placeBelow(const ClientSurface* sibling)
{
    return mParent == nullptr || mParent->place(this, sibling, 0);
}

bool ClientSurface::contains(const ClientSurface* other) const
{
    for (const ClientSurface* surface = other; surface != nullptr; surface = surface->mParent) {
        if (surface == this) {
            return true;
        }
    }
    return false;
}

int ClientSurface::ancestorCount() const
{
    return mParent == nullptr ? 0 : 1 + mParent->ancestorCount();
}

int ClientSurface::height() const
{
    int tallest = 0;
    for (const Layer& layer : mNextLayers) {
        if (layer.surface != this) {
            tallest = std::max(tallest, layer.surface->height());
        }
    }
    return tallest + 1;
}

void ClientSurface::removeChild(const ClientSurface* child)
{
    for (Layers* layers : {&mLayers, &mNextLayers}) {
        const auto found = find(*layers, child);
        if (found != layers->end()) {
            layers->erase(found);
        }
    }
    damageAll();
}

/// The state of the surface has been applied; that of its subsurfaces follows.
void ClientSurface::handleCommit()
{
    const bool isRearranged = mLayers != mNextLayers;
    mLayers = mNextLayers;
    QVector<QPointer<QWaylandSurface>> subsurfaces;
    for (const Layer& layer : qAsConst(mLayers)) {
        if (layer.surface != this) {
            subsurfaces.append(layer.surface->surface());
        }
    }
    for (const QPointer<QWaylandSurface>& subsurface : qAsConst(subsurfaces)) {
        if (auto* const server = qobject_cast<ServerSurface*>(subsurface)) {
            server->applyCachedState();
        }
    }
    if (isRearranged) {
        damageAll();
    } else {
        Q_EMIT committed();
    }
}

/// Moves the child to the place of `sibling` plus `offset`.
bool ClientSurface::place(const ClientSurface* child, const ClientSurface* sibling, int offset)
{
    if (sibling == child || find(mNextLayers, sibling) == mNextLayers.end()) {
        return false;
    }
    const auto old = find(mNextLayers, child);
    const Layer moved = *old;
    mNextLayers.erase(old);
    mNextLayers.insert(find(mNextLayers, sibling) + offset, moved);
    return true;
}

/// Damages everything around the surface: the structure of a tree rarely changes.
void ClientSurface::damageAll()
{
    constexpr int reach = ClientBounds::cFarthest;
    mDamage |= QRect(-reach, -reach, 2 * reach, 2 * reach);
    Q_EMIT committed();
}
