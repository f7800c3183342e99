// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "ScreenShot.h"

#include <QUrl>

#include <optional>

ScreenShot::ScreenShot(QObject* parent)
    : ServiceObject(parent)
{
}

QString ScreenShot::capture(const QString& directory)
{
    const QUrl url(directory);
    const std::optional<QString> path = mConnector.captureScreenShot(url.isLocalFile() ? url.toLocalFile() : directory);
    if (!path) {
        Q_EMIT failed(directory);
        return {};
    }
    Q_EMIT captured(*path);
    return *path;
}
