// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "ServiceObject.h"

#include <TelvaroScreenShotDBusConnector.h>

#include <QString>

/// Takes screenshots.
class ScreenShot : public ServiceObject
{
    Q_OBJECT

public:
    explicit ScreenShot(QObject* parent = nullptr);

    /// Has the service store a screenshot in the directory, an absolute path or a file URL. Blocks until it has
    /// answered; returns what it answered, the path of the new file, or an empty string on failure.
    Q_INVOKABLE QString capture(const QString& directory);

Q_SIGNALS:
    void captured(const QString& path);
    /// The reason is in the log.
    void failed(const QString& directory);

private:
    TelvaroScreenShotDBusConnector mConnector;
};
