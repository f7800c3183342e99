// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "EnvironmentFile.h"

#include <QFile>
#include <QSaveFile>

EnvironmentFile::~EnvironmentFile()
{
    QFile file(mPath);
    if (!mPath.isEmpty() && file.open(QIODevice::ReadOnly) && file.readAll() == mContent) {
        file.remove();
    }
}

MaybeError EnvironmentFile::write(const QString& path, const QString& content)
{
    const QByteArray data = content.toLocal8Bit();
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(data) != data.size() || !file.commit()) {
        return Error{QStringLiteral("cannot write %1: %2").arg(path, file.errorString())};
    }
    mPath = path;
    mContent = data;
    return {};
}
