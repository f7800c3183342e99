// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QObject>
#include <QString>

/// Takes screenshots in a worker thread, because the connector blocks until the service has stored the picture.
///
/// Move it to the thread and use it only through signals.
class ScreenShotWorker : public QObject
{
    Q_OBJECT

public Q_SLOTS:
    void capture(const QString& directory);

Q_SIGNALS:
    void captured(const QString& path);
    void failed();
};
