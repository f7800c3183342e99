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

#include <cstddef>
#include <cstring>
#include <utility>

namespace {

/// Two pictures of the largest output.
constexpr qint64 cMostBytesPerClient = 2 * qint64(Limits::cLargestEdge) * Limits::cLargestEdge * sizeof(QRgb);

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
    setImage(QImage());
}

void SurfacePixels::commit(const QWaylandBufferRef& buffer, const QRegion& damage)
{
    mCommittedBuffer = buffer;
    mCommittedDamage |= damage;
    mHasCommit = true;
}

QRegion SurfacePixels::update(const ServerSurface* surface)
{
    if (!std::exchange(mHasCommit, false)) {
        return {};
    }
    const QWaylandBufferRef buffer = std::exchange(mCommittedBuffer, QWaylandBufferRef());
    QRegion damage = std::exchange(mCommittedDamage, QRegion());

    const QSize oldSize = mSize;
    const QRectF oldSource = mSource;
    wl_resource* const resource = surface != nullptr && buffer.hasContent() ? buffer.wl_buffer() : nullptr;
    wl_shm_buffer* const memory = resource == nullptr ? nullptr : wl_shm_buffer_get(resource);
    const qint64 bytes = qint64(buffer.size().width()) * buffer.size().height() * qint64(sizeof(QRgb));
    if (memory == nullptr || !mBudget->hasRoomFor(bytes - mImage.sizeInBytes())) {
        // A null buffer hides the surface; so does one that is already destroyed or is in a GPU's memory.
        setImage(QImage());
        mSize = QSize();
        mSource = QRectF();
    } else {
        const int scale = surface->bufferScale();
        mSize = ClientBounds::clamped(surface->destinationSize());
        mSource = QRectF(surface->sourceGeometry().topLeft() * scale, surface->sourceGeometry().size() * scale);
        mTransform = surface->bufferTransform();
        const bool isPlain = mTransform == WL_OUTPUT_TRANSFORM_NORMAL && QSizeF(mSize) * scale == QSizeF(buffer.size());
        // The client may have truncated the file behind the memory: libwayland catches the SIGBUS between these calls.
        wl_shm_buffer_begin_access(memory);
        copy(SharedMemoryImage::of(memory), isPlain ? damage : QRegion(), scale);
        wl_shm_buffer_end_access(memory);
        if (!isPlain) {
            damage = QRect(QPoint(), mSize);
        }
    }

    if (mSize != oldSize || mSource != oldSource) {
        return QRegion(QRect(QPoint(), oldSize)) | QRect(QPoint(), mSize);
    }
    return damage;
}

void SurfacePixels::paint(QPainter* painter, const QPoint& position) const
{
    if (mImage.isNull() || mSize.isEmpty() || mSource.isEmpty()) {
        return;
    }
    if (isUnscaled()) {
        painter->drawImage(position, mImage);
        return;
    }
    painter->save();
    painter->setRenderHint(QPainter::SmoothPixmapTransform, mSource.size() != QSizeF(mSize));
    if (mTransform == WL_OUTPUT_TRANSFORM_NORMAL) {
        painter->drawImage(QRectF(position, mSize), mImage, mSource);
    } else {
        painter->setClipRect(QRect(position, mSize), Qt::IntersectClip);
        painter->translate(position);
        painter->scale(mSize.width() / mSource.width(), mSize.height() / mSource.height());
        painter->translate(-mSource.topLeft());
        const QSizeF upright = BufferTransform::applied(mTransform, QSizeF(mImage.size()));
        painter->setTransform(BufferTransform::toBuffer(mTransform, upright).inverted(), true);
        painter->drawImage(QPoint(), mImage);
    }
    painter->restore();
}

QRect SurfacePixels::opaqueRect() const
{
    return isUnscaled() && mImage.format() == QImage::Format_RGB32 ? QRect(QPoint(), mSize) & mImage.rect() : QRect();
}

bool SurfacePixels::isUnscaled() const
{
    return mTransform == WL_OUTPUT_TRANSFORM_NORMAL && mSource == QRectF(QPointF(), QSizeF(mSize));
}

void SurfacePixels::setImage(const QImage& image)
{
    mBudget->add(image.sizeInBytes() - mImage.sizeInBytes());
    mImage = image;
}

/// Copies the damaged part, or everything when the size or the format has changed.
void SurfacePixels::copy(const QImage& source, const QRegion& damage, int scale)
{
    const bool isPlain =
        source.format() == QImage::Format_RGB32 || source.format() == QImage::Format_ARGB32_Premultiplied;
    if (!isPlain) {
        // Qt converts in other threads, in which libwayland does not catch the SIGBUS: copy first.
        setImage(source.copy().convertToFormat(source.hasAlphaChannel() ? QImage::Format_ARGB32_Premultiplied
                                                                        : QImage::Format_RGB32));
        return;
    }
    if (damage.isEmpty() || mImage.size() != source.size() || mImage.format() != source.format()) {
        setImage(source.copy());
        return;
    }
    uchar* const target = mImage.bits();
    for (const QRect& rect : damage) {
        const QRect pixels = QRect(rect.topLeft() * scale, rect.size() * scale) & source.rect();
        const auto offset = static_cast<std::size_t>(pixels.left()) * sizeof(QRgb);
        const auto length = static_cast<std::size_t>(pixels.width()) * sizeof(QRgb);
        for (int y = pixels.top(); y <= pixels.bottom(); ++y) {
            std::memcpy(target + static_cast<std::ptrdiff_t>(y) * mImage.bytesPerLine() + offset,
                        source.constScanLine(y) + offset, length);
        }
    }
}
