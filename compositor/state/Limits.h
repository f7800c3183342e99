// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

/// Limits and sizes on which more than one wing relies.
namespace Limits {

/// The largest width or height, in pixels, of the output, of a client's buffer and of a picture in a notification.
constexpr int cLargestEdge = 8192;

/// The shortest time between two frames of the output.
constexpr int cFrameMilliseconds = 16;

/// The width and height, in pixels, to which icons are scaled when a notification arrives and at which cards paint
/// them.
constexpr int cNotificationIconSize = 40;
constexpr int cActionIconSize = 20;

} // namespace Limits
