// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "TelvaroDeviceDistinction.h"

#include "DeviceManifestManager.h"

#include <QString>

namespace {

const QString cCompositorProductCode = QStringLiteral("481936");

} // namespace

bool TelvaroDeviceDistinction::isCompositorDevice()
{
    static const QString cProductCode = DeviceManifestManager::getProductCode();
    return cProductCode == cCompositorProductCode;
}
