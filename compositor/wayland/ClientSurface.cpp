// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "wayland/ClientSurface.h"

#include "wayland/ClientBounds.h"

#include <QHash>
#include <QPainter>
#include <QWaylandSurface>

#include <wayland-server-core.h>
#include <wayland-server-protocol.h>

#include <algorithm>
#include <cstring>

namespace {
/// Deeper trees are a client's mistake, and painting them is recursive.
constexpr int cLargestTreeHeight = 32;
/// Two pictures of the largest output. A client can show a single buffer on any number of surfaces.
constexpr qint64 cMostBytesPerClient = 2 * 8192LL * 8192 * sizeof(QRgb);

QHash<const QWaylandClient*, qint64>& bytesByClient()
{
    static QHash<const QWaylandClient*, qint64> bytes;
    return bytes;
}
} // namespace

ClientSurface::ClientSurface(QWaylandSurface* surface, QObject* parent)
    : QWaylandView(nullptr, parent)
    , mClient(surface->client())
{
    setSurface(surface);
    connect(surface, &QWaylandSurface::childAdded, this, &ClientSurface::addChild);
    connect(surface, &QWaylandSurface::redraw, this, &ClientSurface::committed);
    connect(this, &QWaylandView::surfaceDestroyed, this, &QObject::deleteLater);
}

ClientSurface::~ClientSurface()
{
    setImage(QImage());
}

bool ClientSurface::hasRoomFor(const QSize& size) const
{
    const qint64 bytes = qint64(size.width()) * size.height() * static_cast<qint64>(sizeof(QRgb));
    return bytesByClient().value(mClient) - mImage.sizeInBytes() + bytes <= cMostBytesPerClient;
}

void ClientSurface::setImage(const QImage& image)
{
    qint64& bytes = bytesByClient()[mClient];
    bytes += image.sizeInBytes() - mImage.sizeInBytes();
    mImage = image;
    if (bytes == 0) {
        bytesByClient().remove(mClient);
    }
}

ClientSurface* ClientSurface::of(const QWaylandSurface* surface)
{
    return surface == nullptr ? nullptr : qobject_cast<ClientSurface*>(surface->primaryView());
}

void ClientSurface::bufferCommitted(const QWaylandBufferRef& buffer, const QRegion& damage)
{
    mCommittedBuffer = buffer;
    mCommittedDamage |= damage;
    mHasCommit = true;
}

QRegion ClientSurface::update()
{
    QRegion damage = std::exchange(mDamage, QRegion());
    if (mHasCommit) {
        damage |= takeBuffer();
    }
    for (const Children* children : {&mChildrenBelow, &mChildrenAbove}) {
        for (const Child& child : *children) {
            damage |= child.surface->update().translated(child.position);
        }
    }
    return damage;
}

QRegion ClientSurface::takeBuffer()
{
    const QWaylandBufferRef buffer = std::exchange(mCommittedBuffer, QWaylandBufferRef());
    QRegion damage = std::exchange(mCommittedDamage, QRegion());
    mHasCommit = false;

    const QSize oldSize = mSize;
    const QRectF oldSource = mSource;
    wl_resource* const resource = surface() != nullptr && buffer.hasContent() ? buffer.wl_buffer() : nullptr;
    wl_shm_buffer* const memory = resource == nullptr ? nullptr : wl_shm_buffer_get(resource);
    if (memory == nullptr || !hasRoomFor(buffer.size())) {
        // A null buffer hides the surface; so does one that is already destroyed or lives where only a GPU reads.
        setImage(QImage());
        mSize = QSize();
        mSource = QRectF();
    } else {
        const int scale = surface()->bufferScale();
        mSize = ClientBounds::bounded(surface()->destinationSize());
        mSource = QRectF(surface()->sourceGeometry().topLeft() * scale, surface()->sourceGeometry().size() * scale);
        const bool isScaled = QSizeF(mSize) * scale != QSizeF(buffer.size());
        // The client may have shortened the memory's file: libwayland catches the fault between these two calls.
        wl_shm_buffer_begin_access(memory);
        copyPixels(buffer.image(), isScaled ? QRegion() : damage, scale);
        wl_shm_buffer_end_access(memory);
        if (isScaled) {
            damage = QRect(QPoint(), mSize);
        }
    }

    if (mSize != oldSize || mSource != oldSource) {
        return QRegion(QRect(QPoint(), oldSize)) | QRect(QPoint(), mSize);
    }
    return damage;
}

/// Copies the damaged part, or everything when that is not enough.
void ClientSurface::copyPixels(const QImage& source, const QRegion& damage, int scale)
{
    const bool isPlain =
        source.format() == QImage::Format_RGB32 || source.format() == QImage::Format_ARGB32_Premultiplied;
    if (!isPlain) {
        // Qt converts in other threads, where libwayland does not catch the fault.
        setImage(source.copy().convertToFormat(source.hasAlphaChannel() ? QImage::Format_ARGB32_Premultiplied
                                                                        : QImage::Format_RGB32));
        return;
    }
    if (damage.isEmpty() || mImage.size() != source.size() || mImage.format() != source.format()) {
        setImage(source.copy());
        return;
    }
    for (const QRect& rect : damage) {
        const QRect pixels = QRect(rect.topLeft() * scale, rect.size() * scale) & source.rect();
        const auto offset = static_cast<std::size_t>(pixels.left()) * sizeof(QRgb);
        const auto length = static_cast<std::size_t>(pixels.width()) * sizeof(QRgb);
        for (int y = pixels.top(); y <= pixels.bottom(); ++y) {
            std::memcpy(mImage.scanLine(y) + offset, source.constScanLine(y) + offset, length);
        }
    }
}

void ClientSurface::paint(QPainter* painter, const QPoint& position) const
{
    for (const Child& child : mChildrenBelow) {
        child.surface->paint(painter, position + child.position);
    }
    if (!mImage.isNull()) {
        if (mSource == QRectF(QPointF(), QSizeF(mSize))) {
            painter->drawImage(position, mImage);
        } else {
            painter->setRenderHint(QPainter::SmoothPixmapTransform);
            painter->drawImage(QRectF(position, mSize), mImage, mSource);
        }
    }
    for (const Child& child : mChildrenAbove) {
        child.surface->paint(painter, position + child.position);
    }
}

void ClientSurface::sendFrameCallbacks()
{
    if (surface() != nullptr) {
        surface()->frameStarted();
        surface()->sendFrameCallbacks();
    }
    for (const Children* children : {&mChildrenBelow, &mChildrenAbove}) {
        for (const Child& child : *children) {
            child.surface->sendFrameCallbacks();
        }
    }
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
    if (surface() != nullptr && QRectF(QPointF(), mSize).contains(position)
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
    mChildrenAbove.append({child, QPoint()});
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
                other.position = ClientBounds::bounded(position);
            }
        }
    }
    damageAll();
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

/// A change of the tree's structure is rare: everything around the surface is painted again.
void ClientSurface::damageAll()
{
    constexpr int reach = 4096;
    mDamage |= QRect(-reach, -reach, 2 * reach, 2 * reach);
    Q_EMIT committed();
}
