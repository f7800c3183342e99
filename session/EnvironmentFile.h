// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "Result.h"

#include <QByteArray>
#include <QString>

/// A file with the environment of a session, to be read by a shell, for as long as the session lives.
class EnvironmentFile
{
public:
    EnvironmentFile() = default;
    /// Removes the file, unless another session has replaced it.
    ~EnvironmentFile();
    Q_DISABLE_COPY(EnvironmentFile)

    /// Writes the file, which appears with its whole content. Returns why that failed.
    MaybeError write(const QString& path, const QString& content);

private:
    QString mPath;
    QByteArray mContent;
};
