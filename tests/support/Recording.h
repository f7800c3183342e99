// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "ChildProcess.h"

#include <QByteArrayList>
#include <QJsonArray>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

/// A running `telvaroctl record`.
class Recording
{
public:
    /// Returns once it records; throws std::runtime_error if it does not.
    explicit Recording(const QString& telvaroctl, const QStringList& options = {});

    QString fileName() const
    {
        return mDirectory.filePath(QStringLiteral("script.json"));
    }
    QByteArray content() const;
    /// The steps so far. Throws std::runtime_error if the file is no script.
    QJsonArray steps() const;
    /// Waits until the file contains the text that often; throws std::runtime_error on a timeout.
    void waitFor(const QByteArray& text, int times = 1) const;

    /// Interrupts the program and returns the steps. Throws std::runtime_error if it does not end well.
    QJsonArray finish();

    ChildProcess& process()
    {
        return mProcess;
    }
    /// The lines on standard error before it has recorded.
    QByteArrayList warnings() const
    {
        return mWarnings;
    }
    /// What it has printed to standard error since.
    QString errors();

private:
    QTemporaryDir mDirectory;
    ChildProcess mProcess;
    QByteArrayList mWarnings;
};
