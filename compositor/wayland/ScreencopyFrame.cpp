// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "wayland/ScreencopyFrame.h"

#include "state/Output.h"
#include "wayland/ClientResources.h"
#include "wayland/Presentation.h"
#include "wayland/Screencopy.h"

#include <QImage>

#include <cstddef>
#include <cstring>
#include <wayland-server-protocol.h>
#include <wlr-screencopy-unstable-v1-server-protocol.h>

namespace {

/// Its pixels are those of QImage::Format_RGB32.
constexpr uint32_t cFormat = WL_SHM_FORMAT_XRGB8888;

int strideOf(const QRect& rect)
{
    return rect.width() * static_cast<int>(sizeof(QRgb));
}

} // namespace

void ScreencopyFrame::create(wl_resource* manager, uint32_t id, Screencopy& screencopy, const Output& output,
                             const QRect& rect, const std::shared_ptr<QRegion>& damage)
{
    static const struct zwlr_screencopy_frame_v1_interface requests = {copy<false>, ClientResources::destroy,
                                                                       copy<true>};
    wl_resource* const resource = wl_resource_create(
        wl_resource_get_client(manager), &zwlr_screencopy_frame_v1_interface, wl_resource_get_version(manager), id);
    if (resource == nullptr) {
        wl_resource_post_no_memory(manager);
        return;
    }
    auto* const frame = new ScreencopyFrame(resource, screencopy, output, rect, damage);
    wl_resource_set_implementation(resource, &requests, frame, ClientResources::deleteObject<ScreencopyFrame>);
}

ScreencopyFrame::ScreencopyFrame(wl_resource* resource, Screencopy& screencopy, const Output& output, const QRect& rect,
                                 const std::shared_ptr<QRegion>& damage)
    : mResource(resource)
    , mScreencopy(screencopy)
    , mOutput(output)
    , mDisplaySize(output.physicalSize())
    , mRotation(output.rotation())
    , mRect(output.toDisplay().mapRect(rect))
    , mDamage(damage)
{
    if (mRect.isEmpty()) {
        fail();
        return;
    }
    zwlr_screencopy_frame_v1_send_buffer(resource, cFormat, static_cast<uint32_t>(mRect.width()),
                                         static_cast<uint32_t>(mRect.height()), static_cast<uint32_t>(strideOf(mRect)));
    if (wl_resource_get_version(resource) >= ZWLR_SCREENCOPY_FRAME_V1_BUFFER_DONE_SINCE_VERSION) {
        zwlr_screencopy_frame_v1_send_buffer_done(resource);
    }
}

ScreencopyFrame::~ScreencopyFrame()
{
    mScreencopy.remove(this);
}

template <bool waitsForDamage> void ScreencopyFrame::copy(wl_client*, wl_resource* resource, wl_resource* buffer)
{
    static_cast<ScreencopyFrame*>(wl_resource_get_user_data(resource))->copy(buffer, waitsForDamage);
}

void ScreencopyFrame::copy(wl_resource* buffer, bool waitsForDamage)
{
    if (mRect.isEmpty()) {
        // The client may not have received the event yet that it has failed.
        return;
    }
    if (mIsUsed) {
        wl_resource_post_error(mResource, ZWLR_SCREENCOPY_FRAME_V1_ERROR_ALREADY_USED, "the frame is already used");
        return;
    }
    mMemory = wl_shm_buffer_get(buffer);
    if (!isFitting(mMemory)) {
        wl_resource_post_error(mResource, ZWLR_SCREENCOPY_FRAME_V1_ERROR_INVALID_BUFFER,
                               "the buffer must be of wl_shm, with the format, size and stride of the buffer event");
        return;
    }
    mIsUsed = true;
    mWaitsForDamage = waitsForDamage;
    mBufferListener.emplace(buffer, [this] {
        mScreencopy.remove(this);
        fail();
    });
    mScreencopy.add(this);
}

bool ScreencopyFrame::isFitting(wl_shm_buffer* memory) const
{
    return memory != nullptr && wl_shm_buffer_get_format(memory) == cFormat
        && wl_shm_buffer_get_width(memory) == mRect.width() && wl_shm_buffer_get_height(memory) == mRect.height()
        && wl_shm_buffer_get_stride(memory) == strideOf(mRect);
}

bool ScreencopyFrame::isOutdated() const
{
    return mOutput.physicalSize() != mDisplaySize || mOutput.rotation() != mRotation;
}

bool ScreencopyFrame::isDue() const
{
    return !mWaitsForDamage || isOutdated() || mDamage->intersects(mRect);
}

void ScreencopyFrame::finish(const QImage& display)
{
    mBufferListener.reset();
    if (isOutdated()) {
        fail();
        return;
    }
    write(display);
    zwlr_screencopy_frame_v1_send_flags(mResource, 0);
    if (mWaitsForDamage) {
        const QRect damage = (*mDamage & mRect).boundingRect().translated(-mRect.topLeft());
        zwlr_screencopy_frame_v1_send_damage(mResource, static_cast<uint32_t>(damage.x()),
                                             static_cast<uint32_t>(damage.y()), static_cast<uint32_t>(damage.width()),
                                             static_cast<uint32_t>(damage.height()));
    }
    *mDamage -= mRect;
    const Presentation::WireTime time(Presentation::now());
    zwlr_screencopy_frame_v1_send_ready(mResource, time.highSeconds, time.lowSeconds, time.nanoseconds);
}

void ScreencopyFrame::write(const QImage& display)
{
    // The client may have truncated the file behind the memory: libwayland catches the SIGBUS between these calls, of
    // writing too, and disconnects the client.
    wl_shm_buffer_begin_access(mMemory);
    auto* const target = static_cast<uchar*>(wl_shm_buffer_get_data(mMemory));
    const auto stride = static_cast<std::size_t>(strideOf(mRect));
    for (int y = 0; y < mRect.height(); ++y) {
        std::memcpy(target + static_cast<std::size_t>(y) * stride,
                    display.constScanLine(mRect.top() + y) + static_cast<std::size_t>(mRect.left()) * sizeof(QRgb),
                    stride);
    }
    wl_shm_buffer_end_access(mMemory);
}

void ScreencopyFrame::fail()
{
    zwlr_screencopy_frame_v1_send_failed(mResource);
}
