// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

class QString;

/// The device's manifest, as the libraries read it; here to show it.
namespace Manifest {

/// Returns the path that the libraries were built with.
QString path();
/// Returns an empty string if the product code is unknown.
QString productCode();
/// Returns whether the manifest makes this machine a compositor device.
bool isOfCompositorDevice();
/// Returns what is wrong with the manifest, what it must hold, and a file with that content to copy, if it is installed
/// with this program. Needs the application object.
QString advice();

} // namespace Manifest
