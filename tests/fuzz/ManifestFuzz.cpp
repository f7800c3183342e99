// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "DeviceManifestManager.h"

#include <QFile>
#include <QString>
#include <QTemporaryDir>

#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>

// Parses any file as the device's manifest, which this target reads from its working directory.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const QTemporaryDir cDirectory;
    static const bool cIsInside = chdir(cDirectory.path().toLocal8Bit().constData()) == 0;
    QFile manifest(QStringLiteral(TELVARO_MANIFEST_PATH));
    if (!cIsInside || !manifest.open(QIODevice::WriteOnly)) {
        std::abort();
    }
    manifest.write(reinterpret_cast<const char*>(data), static_cast<qint64>(size));
    manifest.close();
    // The code must occur in the file, literally or escaped.
    const QString productCode = DeviceManifestManager::getProductCode();
    if (static_cast<std::size_t>(productCode.size()) > size) {
        std::abort();
    }
    return 0;
}
