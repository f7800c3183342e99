// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "EnvironmentFile.h"

#include <QFile>
#include <QSaveFile>

EnvironmentFile::~EnvironmentFile()
{
    QFile file(mPath);
    if (!mContent.isEmpty() && file.open(QIODevice::ReadOnly) && file.readAll() == mContent) {
        file.remove();
    }
}

MaybeError EnvironmentFile::reserve(const QString& path)
{
    const QString lockPath = path + QStringLiteral(".lock");
    mPath = path;
    mLock.emplace(lockPath);
    // A lock is not stale because it is old, only because the session has died.
    mLock->setStaleLockTime(0);
    if (mLock->tryLock()) {
        return {};
    }
    return Error{mLock->error() == QLockFile::LockFailedError
                     ? QStringLiteral("%1 is in use by another session, as %2 says").arg(path, lockPath)
                     : QStringLiteral("cannot write %1").arg(lockPath)};
}

MaybeError EnvironmentFile::write(const QString& content)
{
    const QByteArray data = content.toLocal8Bit();
    QSaveFile file(mPath);
    if (!file.open(QIODevice::WriteOnly) || file.write(data) != data.size() || !file.commit()) {
        return Error{QStringLiteral("cannot write %1: %2").arg(mPath, file.errorString())};
    }
    mContent = data;
    return {};
}
