// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

class QString;

/// What the device's manifest tells about the device.
class DeviceManifestManager
{
public:
    /// The string member "productCode" of the JSON object that the manifest (TELVARO_MANIFEST_PATH) holds. Empty where
    /// the code is unknown: no file, no JSON object, no such member, or one that is not a string. Reads the file anew
    /// on every call and logs nothing.
    static QString getProductCode();
};
