// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "shell/Keymap.h"

#include <optional>

/// The keyboard of the desktop on which the compositor is a window.
namespace DesktopKeyboard {

/// Returns the layout of an X server or of a Wayland compositor; the first one if the desktop has several. Empty on
/// other platforms, and when the layout is none that XKB knows by name. The application object must exist.
std::optional<Keymap::Layout> layout();

} // namespace DesktopKeyboard
