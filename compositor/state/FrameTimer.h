// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

/// Times frames: at most sixty a second, and none while nobody requests one.
class FrameTimer : public QObject
{
    Q_OBJECT

public:
    explicit FrameTimer(QObject* parent = nullptr);

    /// Emits due() once for all requests until then, never before it returns.
    void request();

Q_SIGNALS:
    void due();

private:
    QTimer mTimer;
    QElapsedTimer mSinceFrame;
};
