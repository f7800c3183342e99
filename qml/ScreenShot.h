// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <TelvaroLiveObject.h>

#include <QString>
#include <QVariantMap>

/// Takes screenshots.
class ScreenShot : public TelvaroLiveObject
{
    Q_OBJECT
    Q_PROPERTY(bool available READ isAvailable NOTIFY statusChanged)

public:
    explicit ScreenShot(QObject* parent = nullptr);

    bool isAvailable() const;

    /// Has the service store a screenshot in the directory, an absolute path or a file URL.
    Q_INVOKABLE void capture(const QString& directory);

Q_SIGNALS:
    /// The service's answer, the path of the new file.
    void captured(const QString& path);
    void requestFailed(const QVariantMap& error, const QString& directory);
};
