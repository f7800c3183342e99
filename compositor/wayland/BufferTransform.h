// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QSizeF>
#include <QTransform>

#include <wayland-server-protocol.h>

/// wl_surface.set_buffer_transform: how a client has turned or mirrored the content of a wl_buffer.
namespace BufferTransform {

bool isTransposed(wl_output_transform transform);

/// Returns `size`, transposed if the transform exchanges width and height.
template <typename Size> Size applied(wl_output_transform transform, const Size& size)
{
    return isTransposed(transform) ? size.transposed() : size;
}

/// Maps positions in the upright content to positions in the buffer. `size` is the size of the upright content.
QTransform toBuffer(wl_output_transform transform, const QSizeF& size);

} // namespace BufferTransform
