// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

class ServerGlobals;

/// The zxdg_decoration_manager_v1 global. Windows have no frame here: clients are asked not to draw one, and may decide
/// otherwise. QWaylandXdgDecorationManagerV1 works only with QWaylandXdgShell.
namespace XdgDecoration {

void announce(ServerGlobals& globals);

} // namespace XdgDecoration
