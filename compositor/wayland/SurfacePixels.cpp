// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "wayland/SurfacePixels.h"

#include "state/Limits.h"
#include "wayland/BufferTransform.h"
#include "wayland/ClientBounds.h"
#include "wayland/ServerSurface.h"
#include "wayland/SharedMemoryImage.h"

#include <QPainter>

#include <wayland-server-core.h>

#include <utility>

namespace {

/// Two pictures of the largest output.
constexpr qint64 cMostBytesPerClient = 2 * qint64(Limits::cLargestEdge) * Limits::cLargestEdge * sizeof(QRgb);

/// Whether Qt paints the format without converting it.
bool isPlain(QImage::Format format)
{
    return format == QImage::Format_RGB32 || format == QImage::Format_ARGB32_Premultiplied;
}

} // namespace

bool PixelBudget::hasRoomFor(qint64 bytes) const
{
    return mBytes + bytes <= cMostBytesPerClient;
}

SurfacePixels::SurfacePixels(std::shared_ptr<PixelBudget> budget)
    : mBudget(std::move(budget))
{
}

SurfacePixels::~SurfacePixels()
{
    unshare();
    setCopy(QImage());
}

void SurfacePixels::commit(const QWaylandBufferRef& buffer, const QRegion& damage)
{
    unshare();
    mBuffer = buffer;
    mCommittedDamage |= damage;
    mHasCommit = true;
}

QRegion SurfacePixels::update(const ServerSurface* surface)
{
    if (!std::exchange(mHasCommit, false)) {
        return {};
    }
    QRegion damage = std::exchange(mCommittedDamage, QRegion());
    const QSize oldSize = mSize;
    const QRectF oldSource = mSource;
    wl_resource* const resource = surface != nullptr && mBuffer.hasContent() ? mBuffer.wl_buffer() : nullptr;
    wl_shm_buffer* const memory = resource == nullptr ? nullptr : wl_shm_buffer_get(resource);
    const bool isCopyKept = surface != nullptr && mBuffer.isDestroyed() && !mCopy.isNull();
    if (memory == nullptr && !isCopyKept) {
        // A null buffer hides the surface; so does one that is in a GPU's memory, or was destroyed before it was read.
        setCopy(QImage());
        mSize = QSize();
        mSource = QRectF();
    } else {
        const int scale = surface->bufferScale();
        mBufferSize = isCopyKept ? mCopy.size() : mBuffer.size();
        mSize = ClientBounds::clamped(surface->destinationSize());
        mSource = QRectF(surface->sourceGeometry().topLeft() * scale, surface->sourceGeometry().size() * scale);
        mTransform = surface->bufferTransform();
        const bool isWhole = mTransform == WL_OUTPUT_TRANSFORM_NORMAL && mSize * scale == mBufferSize;
        if (!isWhole) {
            damage = QRect(QPoint(), mSize);
        }
        if (!isCopyKept) {
            read(memory);
        }
    }

    if (mSize != oldSize || mSource != oldSource) {
        return QRegion(QRect(QPoint(), oldSize)) | QRect(QPoint(), mSize);
    }
    return damage;
}

void SurfacePixels::paint(QPainter* painter, const QPoint& position) const
{
    if (mShared != nullptr) {
        paintShared(painter, position);
        return;
    }
    if (mCopy.isNull() || mSize.isEmpty() || mSource.isEmpty()) {
        return;
    }
    if (isUnscaled()) {
        painter->drawImage(position, mCopy);
        return;
    }
    painter->save();
    painter->setRenderHint(QPainter::SmoothPixmapTransform, mSource.size() != QSizeF(mSize));
    if (mTransform == WL_OUTPUT_TRANSFORM_NORMAL) {
        painter->drawImage(QRectF(position, mSize), mCopy, mSource);
    } else {
        painter->setClipRect(QRect(position, mSize), Qt::IntersectClip);
        painter->translate(position);
        painter->scale(mSize.width() / mSource.width(), mSize.height() / mSource.height());
        painter->translate(-mSource.topLeft());
        const QSizeF upright = BufferTransform::applied(mTransform, QSizeF(mCopy.size()));
        painter->setTransform(BufferTransform::toBuffer(mTransform, upright).inverted(), true);
        painter->drawImage(QPoint(), mCopy);
    }
    painter->restore();
}

QRect SurfacePixels::opaqueRect() const
{
    const QImage::Format format = mShared != nullptr ? mSharedFormat : mCopy.format();
    return isUnscaled() && format == QImage::Format_RGB32 ? QRect(QPoint(), mSize) & QRect(QPoint(), mBufferSize)
                                                          : QRect();
}

bool SurfacePixels::isUnscaled() const
{
    return mTransform == WL_OUTPUT_TRANSFORM_NORMAL && mSource == QRectF(QPointF(), QSizeF(mSize));
}

void SurfacePixels::read(wl_shm_buffer* memory)
{
    const QImage image = SharedMemoryImage::of(memory);
    const auto address = reinterpret_cast<quintptr>(image.constBits());
    const bool isAligned = (address | static_cast<quintptr>(image.bytesPerLine())) % alignof(QRgb) == 0;
    setCopy(QImage());
    if (isUnscaled() && isPlain(image.format()) && isAligned) {
        share(memory, image.format());
    } else {
        copy(memory);
    }
}

void SurfacePixels::share(wl_shm_buffer* memory, QImage::Format format)
{
    mShared = memory;
    mSharedFormat = format;
    mDestroyListener = std::make_unique<ResourceListener>(mBuffer.wl_buffer(), [this] {
        copy(std::exchange(mShared, nullptr));
    });
}

void SurfacePixels::unshare()
{
    mShared = nullptr;
    mDestroyListener.reset();
}

void SurfacePixels::copy(wl_shm_buffer* memory)
{
    const QImage image = SharedMemoryImage::of(memory);
    if (!mBudget->hasRoomFor(qint64(image.width()) * image.height() * qint64(sizeof(QRgb)))) {
        return;
    }
    wl_shm_buffer_begin_access(memory);
    const QImage copy = image.copy();
    wl_shm_buffer_end_access(memory);
    setCopy(isPlain(image.format()) ? copy
                                    : copy.convertToFormat(image.hasAlphaChannel() ? QImage::Format_ARGB32_Premultiplied
                                                                                   : QImage::Format_RGB32));
}

void SurfacePixels::setCopy(const QImage& image)
{
    mBudget->add(image.sizeInBytes() - mCopy.sizeInBytes());
    mCopy = image;
}

/// Paints each rectangle by itself: only then Qt neither uses other threads nor reads what is not shown.
void SurfacePixels::paintShared(QPainter* painter, const QPoint& position) const
{
    const bool isUpright = painter->transform().type() <= QTransform::TxTranslate;
    QRegion visible = QRect(QPoint(), mSize) & QRect(QPoint(), mBufferSize);
    if (painter->hasClipping()) {
        visible &= painter->clipRegion().translated(-position);
    }
    painter->save();
    painter->setClipping(false);
    wl_shm_buffer_begin_access(mShared);
    const QImage image = SharedMemoryImage::of(mShared);
    for (const QRect& rect : visible) {
        if (isUpright) {
            painter->drawImage(position + rect.topLeft(), image, rect);
        } else {
            painter->drawImage(position + rect.topLeft(), image.copy(rect));
        }
    }
    wl_shm_buffer_end_access(mShared);
    painter->restore();
}
