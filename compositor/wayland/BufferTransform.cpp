// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "wayland/BufferTransform.h"

bool BufferTransform::isTransposed(wl_output_transform transform)
{
    return transform == WL_OUTPUT_TRANSFORM_90 || transform == WL_OUTPUT_TRANSFORM_270
        || transform == WL_OUTPUT_TRANSFORM_FLIPPED_90 || transform == WL_OUTPUT_TRANSFORM_FLIPPED_270;
}

QTransform BufferTransform::toBuffer(wl_output_transform transform, const QSizeF& size)
{
    const qreal width = size.width();
    const qreal height = size.height();
    // QTransform(m11, m12, m21, m22, dx, dy): x' = m11 x + m21 y + dx, y' = m12 x + m22 y + dy. Angles are
    // anticlockwise.
    switch (transform) {
    case WL_OUTPUT_TRANSFORM_90:
        return {0, -1, 1, 0, 0, width};
    case WL_OUTPUT_TRANSFORM_180:
        return {-1, 0, 0, -1, width, height};
    case WL_OUTPUT_TRANSFORM_270:
        return {0, 1, -1, 0, height, 0};
    case WL_OUTPUT_TRANSFORM_FLIPPED:
        return {-1, 0, 0, 1, width, 0};
    case WL_OUTPUT_TRANSFORM_FLIPPED_90:
        return {0, 1, 1, 0, 0, 0};
    case WL_OUTPUT_TRANSFORM_FLIPPED_180:
        return {1, 0, 0, -1, 0, height};
    case WL_OUTPUT_TRANSFORM_FLIPPED_270:
        return {0, -1, -1, 0, height, width};
    default:
        return {};
    }
}
