// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QImage>

struct wl_display;
struct wl_shm_buffer;

/// The wl_shm formats. Replaces Qt's table, which takes RGB888 for its opposite and has no BGR888.
namespace SharedMemoryImage {

/// Announces the formats that Qt does not.
void announceFormats(wl_display* display);
/// Returns an image upon the buffer's memory, to be used between wl_shm_buffer_begin_access() and
/// wl_shm_buffer_end_access(). Null for a format that is not announced.
QImage of(wl_shm_buffer* buffer);

} // namespace SharedMemoryImage
