// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QObject>
#include <QString>

/// Takes screenshots in a thread of its own: until the picture is stored, a call of the connector does not return.
///
/// Move it to the thread and reach it by signals only.
class ScreenShotWorker : public QObject
{
    Q_OBJECT

public Q_SLOTS:
    void capture(const QString& directory);

Q_SIGNALS:
    void captured(const QString& path);
    void failed();
};
