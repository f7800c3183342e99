// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "Result.h"

#include <QFile>
#include <QJsonObject>
#include <QString>
#include <QVector>

#include <memory>

/// Writes a script step by step. A file is a whole script after every step; standard output and
/// pipes are one at the end.
class ScriptWriter
{
public:
    /// `fileName` is "-" for standard output. An existing file is an error unless it `isReplaced`.
    static Result<std::unique_ptr<ScriptWriter>> open(const QString& fileName, bool isReplaced);

    /// Appends steps that are taken at `milliseconds` after the start. Returns false if they, or earlier ones, cannot
    /// be written.
    bool append(const QVector<QJsonObject>& steps, qint64 milliseconds);
    /// To be called once, at the end. Returns the number of steps, or why not all could be written.
    Result<int> finish();

private:
    ScriptWriter() = default;
    bool write(const QByteArray& bytes);

    QFile mFile;
    bool mIsStream = false;
    /// Where the closing bracket of the list stands.
    qint64 mEnd = 0;
    int mCount = 0;
    MaybeError mError;
};
