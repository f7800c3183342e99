// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

class QString;

/// The device's manifest, as the libraries read it; here to show it.
namespace Manifest {

QString path();
/// Returns an empty string if the product code is unknown.
QString productCode();
/// Returns why this is not a compositor device, and the remedy.
QString whyNoCompositorDevice();

} // namespace Manifest
