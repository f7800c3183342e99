// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "TelvaroExport.h"

/// The kind of device that the process runs on.
class TELVARO_EXPORT TelvaroDeviceDistinction
{
public:
    /// Returns whether this is a compositor device: whether the product code in the device's manifest is exactly
    /// "481936". Returns false if the code is unknown.
    ///
    /// Reads the manifest (TELVARO_MANIFEST_PATH) on the first call in the process only; a later change of the file has
    /// no effect. Sends nothing on the bus and logs nothing. Thread-safe: concurrent first callers block until the file
    /// has been read.
    ///
    /// isInterfaceValid() of every connector checks this first, so on any other device it returns false silently and
    /// nothing is written. getViews() and the operations built only on it skip that check and still read, and every
    /// operation still logs its own warnings.
    static bool isCompositorDevice();
};
