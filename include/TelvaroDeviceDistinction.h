// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "TelvaroExport.h"

/// Tells on which kind of device the process runs.
class TELVARO_EXPORT TelvaroDeviceDistinction
{
public:
    /// Whether this is the device with the compositor service: whether the product code in the device's manifest is
    /// exactly "481936".
    ///
    /// The manifest (TELVARO_MANIFEST_PATH) is read on the first call in the process only; a later change of it is not
    /// seen. An unknown code is false. Sends nothing on the bus and logs nothing. May be called from any thread;
    /// concurrent first callers wait for the one that reads. A connector's isInterfaceValid() asks this first, so that
    /// on any other device it is false without a word and nothing is written; getViews(), which does not ask it, and
    /// what builds on that still read, and an operation still logs what it logs of a failure itself.
    static bool isCompositorDevice();
};
