// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "wayland/ResourceListener.h"

#include <QRect>
#include <QRegion>
#include <QSize>

#include <memory>
#include <optional>

class Output;
class QImage;
class Screencopy;
struct wl_shm_buffer;

/// A zwlr_screencopy_frame_v1: one picture of the display or of a part of it, which the client gets in a wl_shm buffer
/// of its own. Lives as long as its resource.
class ScreencopyFrame
{
public:
    /// Creates the object with `id` for the client of `manager`. `rect` is the part, in the output's coordinates; when
    /// it is empty, the frame fails. `damage` is what has changed since the manager's last copy, in the display's
    /// coordinates.
    static void create(wl_resource* manager, uint32_t id, Screencopy& screencopy, const Output& output,
                       const QRect& rect, const std::shared_ptr<QRegion>& damage);
    ~ScreencopyFrame();
    ScreencopyFrame(const ScreencopyFrame&) = delete;
    ScreencopyFrame& operator=(const ScreencopyFrame&) = delete;

    wl_client* client() const
    {
        return wl_resource_get_client(mResource);
    }
    /// Returns false while the frame waits for damage.
    bool isDue() const;
    /// Copies from the picture of the display into the client's buffer, and sends the events.
    void finish(const QImage& display);

private:
    ScreencopyFrame(wl_resource* resource, Screencopy& screencopy, const Output& output, const QRect& rect,
                    const std::shared_ptr<QRegion>& damage);

    template <bool waitsForDamage> static void copy(wl_client* client, wl_resource* resource, wl_resource* buffer);
    void copy(wl_resource* buffer, bool waitsForDamage);
    /// Whether the picture of the display is another one than the client was sent the size of.
    bool isOutdated() const;
    bool isFitting(wl_shm_buffer* memory) const;
    void write(const QImage& display);
    void fail();

    wl_resource* mResource;
    Screencopy& mScreencopy;
    const Output& mOutput;
    const QSize mDisplaySize;
    const int mRotation;
    /// In the display's coordinates.
    const QRect mRect;
    const std::shared_ptr<QRegion> mDamage;
    bool mIsUsed = false;
    bool mWaitsForDamage = false;
    wl_shm_buffer* mMemory = nullptr;
    std::optional<ResourceListener> mBufferListener;
};
