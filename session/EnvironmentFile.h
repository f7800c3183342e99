// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "Result.h"

#include <QByteArray>
#include <QLockFile>
#include <QString>

#include <optional>

/// A file with the environment of a session, to be read by a shell, for as long as the session lives.
class EnvironmentFile
{
public:
    EnvironmentFile() = default;
    /// Removes the file, unless it has been replaced.
    ~EnvironmentFile();
    Q_DISABLE_COPY(EnvironmentFile)

    /// Keeps the path from all other sessions, by a lock file beside it. Returns why that failed.
    MaybeError reserve(const QString& path);

    /// Writes the file at the reserved path, where it appears with its whole content. Returns why that failed.
    MaybeError write(const QString& content);

private:
    std::optional<QLockFile> mLock;
    QString mPath;
    QByteArray mContent;
};
