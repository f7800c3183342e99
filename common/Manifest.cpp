// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "Manifest.h"

#include "DeviceManifestManager.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QString>

QString Manifest::path()
{
    return QStringLiteral(TELVARO_MANIFEST_PATH);
}

QString Manifest::productCode()
{
    return DeviceManifestManager::getProductCode();
}

bool Manifest::isOfCompositorDevice()
{
    return productCode() == QLatin1String(TELVARO_PRODUCT_CODE);
}

QString Manifest::advice()
{
    const QString code = productCode();
    const QString cause = !QFile::exists(path()) ? QStringLiteral("does not exist")
        : code.isEmpty()                         ? QStringLiteral("has no product code")
                         : QStringLiteral("has the product code \"%1\", which is another device's").arg(code);
    QString advice = QStringLiteral("its manifest %1 %2").arg(path(), cause);
    if (isOfCompositorDevice()) {
        return advice;
    }
    advice += QStringLiteral("; it must hold {\"productCode\": \"" TELVARO_PRODUCT_CODE "\"}");
    const QString example = QDir::cleanPath(QCoreApplication::applicationDirPath()
                                            + QStringLiteral("/../share/telvaro/device-manifest.json"));
    return QFile::exists(example) ? QStringLiteral("%1; copy %2 there").arg(advice, example) : advice;
}
