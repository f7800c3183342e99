// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

class QString;

/// The device's manifest, a JSON file (TELVARO_MANIFEST_PATH).
class DeviceManifestManager
{
public:
    /// Returns the string member "productCode" of the manifest's JSON object. Returns an empty string if the code is
    /// unknown: the file is missing or not a JSON object, or the member is missing or not a string. Reads the file on
    /// every call and logs nothing.
    static QString getProductCode();
};
