// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "ManifestAdvice.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>

QString manifestAdvice()
{
    const QString advice = QStringLiteral(TELVARO_MANIFEST_PATH " does not hold {\"productCode\": \"%1\"}")
                               .arg(QStringLiteral(TELVARO_PRODUCT_CODE));
    const QString example = QDir::cleanPath(QCoreApplication::applicationDirPath()
                                            + QStringLiteral("/../share/telvaro/device-manifest.json"));
    return QFile::exists(example) ? QStringLiteral("%1; copy %2 there").arg(advice, example) : advice;
}
