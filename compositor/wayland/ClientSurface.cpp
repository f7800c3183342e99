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
{
    setSurface(surface);
    connect(surface, &QWaylandSurface::childAdded, this, &ClientSurface::addChild);
    connect(surface, &QWaylandSurface::redraw, this, &ClientSurface::handleCommit);
    connect(this, &QWaylandView::surfaceDestroyed, this, [this] {
        mPixels.commit(QWaylandBufferRef(), QRegion());
        deleteLater();
    });
}

ClientSurface* ClientSurface::of(const QWaylandSurface* surface)
{
    return surface == nullptr ? nullptr : qobject_cast<ClientSurface*>(surface->primaryView());
}

void ClientSurface::bufferCommitted(const QWaylandBufferRef& buffer, const QRegion& damage)
{
    mPixels.commit(buffer, damage);
}

QRect ClientSurface::bounds() const
{
    QRect bounds;
    if (surface() != nullptr && surface()->hasContent()) {
        bounds = QRect(QPoint(), ClientBounds::clamped(surface()->destinationSize()));
        for (const Children* children : {&mChildrenBelow, &mChildrenAbove}) {
            for (const Child& child : *children) {
                bounds |= child.surface->bounds().translated(child.position);
            }
        }
    }
    return ClientBounds::clamped(bounds);
}

QRegion ClientSurface::update()
{
    QRegion damage = std::exchange(mDamage, QRegion()) | mPixels.update(qobject_cast<ServerSurface*>(surface()));
    for (const Children* children : {&mChildrenBelow, &mChildrenAbove}) {
        for (const Child& child : *children) {
            damage |= child.surface->update().translated(child.position);
        }
    }
    return damage;
}

void ClientSurface::paint(QPainter* painter, const QPoint& position) const
{
    for (const Child& child : mChildrenBelow) {
        child.surface->paint(painter, position + child.position);
    }
    mPixels.paint(painter, position);
    for (const Child& child : mChildrenAbove) {
        child.surface->paint(painter, position + child.position);
    }
}

void ClientSurface::sendFrameCallbacks(const timespec& time)
{
    if (auto* const server = qobject_cast<ServerSurface*>(surface())) {
        server->feedback().present(time);
        surface()->frameStarted();
        surface()->sendFrameCallbacks();
    }
    for (const Children* children : {&mChildrenBelow, &mChildrenAbove}) {
        for (const Child& child : *children) {
            child.surface->sendFrameCallbacks(time);
        }
    }
}

bool ClientSurface::inhibitsIdle() const
{
    const auto childInhibits = [](const Child& child) {
        return child.surface->inhibitsIdle();
    };
    return (surface() != nullptr && surface()->inhibitsIdle())
        || std::any_of(mChildrenBelow.cbegin(), mChildrenBelow.cend(), childInhibits)
        || std::any_of(mChildrenAbove.cbegin(), mChildrenAbove.cend(), childInhibits);
}

ClientSurface* ClientSurface::surfaceAt(const QPointF& position, QPointF* localPosition)
{
    const auto childAt = [&](const Children& children) -> ClientSurface* {
        for (auto child = children.crbegin(); child != children.crend(); ++child) {
            if (ClientSurface* found = child->surface->surfaceAt(position - child->position, localPosition)) {
                return found;
            }
        }
        return nullptr;
    };
    if (ClientSurface* found = childAt(mChildrenAbove)) {
        return found;
    }
    if (surface() != nullptr && QRectF(QPointF(), size()).contains(position)
        && surface()->inputRegionContains(position)) {
        *localPosition = position;
        return this;
    }
    return childAt(mChildrenBelow);
}

void ClientSurface::addChild(QWaylandSurface* surface)
{
    ClientSurface* const child = of(surface);
    if (child == nullptr || child->contains(this) || ancestorCount() + child->height() >= cLargestTreeHeight) {
        return;
    }
    child->leaveParent();
    child->mParent = this;
    mChildrenAbove.append({child, QPoint(), QPoint()});
    connect(child, &ClientSurface::committed, this, &ClientSurface::committed);
    connect(child, &QObject::destroyed, this, [this, child] {
        removeChild(child);
    });
    connect(child, &QWaylandView::surfaceDestroyed, this, [this, child] {
        removeChild(child);
    });
    connect(surface, &QWaylandSurface::subsurfacePositionChanged, this, [this, child](const QPoint& position) {
        moveChild(child, position);
    });
    connect(surface, &QWaylandSurface::subsurfacePlaceAbove, this, [this, child](const QWaylandSurface* sibling) {
        restackChild(child, sibling, true);
    });
    connect(surface, &QWaylandSurface::subsurfacePlaceBelow, this, [this, child](const QWaylandSurface* sibling) {
        restackChild(child, sibling, false);
    });
    damageAll();
}

void ClientSurface::leaveParent()
{
    if (mParent != nullptr) {
        mParent->removeChild(this);
        disconnect(mParent);
        if (surface() != nullptr) {
            surface()->disconnect(mParent);
        }
        mParent = nullptr;
    }
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
    for (const Children* children : {&mChildrenBelow, &mChildrenAbove}) {
        for (const Child& child : *children) {
            tallest = std::max(tallest, child.surface->height());
        }
    }
    return tallest + 1;
}

void ClientSurface::removeChild(const ClientSurface* child)
{
    for (Children* children : {&mChildrenBelow, &mChildrenAbove}) {
        children->erase(std::remove_if(children->begin(), children->end(),
                                       [child](const Child& other) {
                                           return other.surface == child;
                                       }),
                        children->end());
    }
    damageAll();
}

void ClientSurface::moveChild(const ClientSurface* child, const QPoint& position)
{
    for (Children* children : {&mChildrenBelow, &mChildrenAbove}) {
        for (Child& other : *children) {
            if (other.surface == child) {
                other.nextPosition = ClientBounds::clamped(position);
            }
        }
    }
}

/// The state of the surface has been applied; that of its subsurfaces follows.
void ClientSurface::handleCommit()
{
    QVector<QPointer<QWaylandSurface>> subsurfaces;
    bool isMoved = false;
    for (Children* children : {&mChildrenBelow, &mChildrenAbove}) {
        for (Child& child : *children) {
            isMoved = isMoved || child.position != child.nextPosition;
            child.position = child.nextPosition;
            subsurfaces.append(child.surface->surface());
        }
    }
    for (const QPointer<QWaylandSurface>& subsurface : qAsConst(subsurfaces)) {
        if (auto* const server = qobject_cast<ServerSurface*>(subsurface)) {
            server->applyCachedState();
        }
    }
    if (isMoved) {
        damageAll();
    } else {
        Q_EMIT committed();
    }
}

void ClientSurface::restackChild(const ClientSurface* child, const QWaylandSurface* sibling, bool above)
{
    const auto indexIn = [](const Children& children, const ClientSurface* wanted) {
        const auto found = std::find_if(children.cbegin(), children.cend(), [wanted](const Child& other) {
            return other.surface == wanted;
        });
        return found == children.cend() ? -1 : static_cast<int>(found - children.cbegin());
    };

    Children* from = indexIn(mChildrenBelow, child) >= 0 ? &mChildrenBelow : &mChildrenAbove;
    const int oldIndex = indexIn(*from, child);
    if (oldIndex < 0) {
        return;
    }
    const Child moved = from->takeAt(oldIndex);

    if (sibling == surface()) {
        if (above) {
            mChildrenAbove.prepend(moved);
        } else {
            mChildrenBelow.append(moved);
        }
    } else {
        const ClientSurface* const reference = of(sibling);
        Children* to = indexIn(mChildrenBelow, reference) >= 0 ? &mChildrenBelow : &mChildrenAbove;
        const int index = indexIn(*to, reference);
        to->insert(index < 0 ? to->size() : (above ? index + 1 : index), moved);
    }
    damageAll();
}

/// Damages everything around the surface: the structure of a tree rarely changes.
void ClientSurface::damageAll()
{
    constexpr int reach = 4096;
    mDamage |= QRect(-reach, -reach, 2 * reach, 2 * reach);
    Q_EMIT committed();
}
