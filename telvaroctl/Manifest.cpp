// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "Manifest.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QIODevice>
#include <QJsonDocument>
#include <QJsonObject>
#include <QString>

namespace {

/// Returns the manifest of a compositor device that is installed with the compositor, or an empty string.
QString exampleManifest()
{
    const QString example = QDir::cleanPath(QCoreApplication::applicationDirPath()
                                            + QStringLiteral("/../share/telvaro/device-manifest.json"));
    return QFile::exists(example) ? example : QString();
}

} // namespace

QString Manifest::path()
{
    return QStringLiteral(TELVARO_MANIFEST_PATH);
}

QString Manifest::productCode()
{
    QFile manifest(path());
    if (!manifest.open(QIODevice::ReadOnly)) {
        return {};
    }
    return QJsonDocument::fromJson(manifest.readAll()).object().value(QLatin1String("productCode")).toString();
}

QString Manifest::whyNoCompositorDevice()
{
    const QString code = productCode();
    const QString cause = !QFile::exists(path()) ? QStringLiteral("does not exist")
        : code.isEmpty()                         ? QStringLiteral("has no product code")
                         : QStringLiteral("has the product code \"%1\", which is another device's").arg(code);
    const QString example = exampleManifest();
    const QString remedy = example.isEmpty() ? QString() : QStringLiteral("; copy %1 there").arg(example);
    return QStringLiteral("this is not a compositor device: its manifest %1 %2%3").arg(path(), cause, remedy);
}
