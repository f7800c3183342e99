// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "DeviceManifestManager.h"

#include <QFile>
#include <QIODevice>
#include <QJsonDocument>
#include <QJsonObject>
#include <QString>

QString DeviceManifestManager::getProductCode()
{
    QFile manifest(QStringLiteral(TELVARO_MANIFEST_PATH));
    if (!manifest.open(QIODevice::ReadOnly)) {
        return {};
    }
    // Qt returns an empty string for invalid JSON, a missing member and a member of another type.
    return QJsonDocument::fromJson(manifest.readAll()).object().value(QLatin1String("productCode")).toString();
}
