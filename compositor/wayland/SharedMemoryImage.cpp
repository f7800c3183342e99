// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "wayland/SharedMemoryImage.h"

#include <wayland-server-core.h>
#include <wayland-server-protocol.h>

namespace {

/// wl_shm names the components of a little-endian number from the highest to the lowest, QImage's formats of bytes in
/// the order of memory.
QImage::Format imageFormatOf(uint32_t format)
{
    switch (format) {
    case WL_SHM_FORMAT_ARGB8888:
        return QImage::Format_ARGB32_Premultiplied;
    case WL_SHM_FORMAT_XRGB8888:
        return QImage::Format_RGB32;
    case WL_SHM_FORMAT_ABGR8888:
        return QImage::Format_RGBA8888_Premultiplied;
    case WL_SHM_FORMAT_XBGR8888:
        return QImage::Format_RGBX8888;
    case WL_SHM_FORMAT_RGB888:
        return QImage::Format_BGR888;
    case WL_SHM_FORMAT_BGR888:
        return QImage::Format_RGB888;
    case WL_SHM_FORMAT_RGB565:
        return QImage::Format_RGB16;
    case WL_SHM_FORMAT_XRGB1555:
        return QImage::Format_RGB555;
    case WL_SHM_FORMAT_ARGB4444:
        return QImage::Format_ARGB4444_Premultiplied;
    case WL_SHM_FORMAT_XRGB4444:
        return QImage::Format_RGB444;
    case WL_SHM_FORMAT_ARGB2101010:
        return QImage::Format_A2RGB30_Premultiplied;
    case WL_SHM_FORMAT_XRGB2101010:
        return QImage::Format_RGB30;
    case WL_SHM_FORMAT_ABGR2101010:
        return QImage::Format_A2BGR30_Premultiplied;
    case WL_SHM_FORMAT_XBGR2101010:
        return QImage::Format_BGR30;
    case WL_SHM_FORMAT_C8:
        // Qt announces it, and there is no palette.
        return QImage::Format_Grayscale8;
    default:
        return QImage::Format_Invalid;
    }
}

} // namespace

void SharedMemoryImage::announceFormats(wl_display* display)
{
    wl_display_add_shm_format(display, WL_SHM_FORMAT_BGR888);
}

QImage SharedMemoryImage::of(wl_shm_buffer* buffer)
{
    return {static_cast<const uchar*>(wl_shm_buffer_get_data(buffer)), wl_shm_buffer_get_width(buffer),
            wl_shm_buffer_get_height(buffer), wl_shm_buffer_get_stride(buffer),
            imageFormatOf(wl_shm_buffer_get_format(buffer))};
}
