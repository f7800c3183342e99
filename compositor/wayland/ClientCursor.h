// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "state/FrameTimer.h"
#include "wayland/ClientSurface.h"

#include <QObject>
#include <QPoint>
#include <QPointer>

class QWaylandSurface;
class QWindow;

/// The cursor image that the client under the pointer has set.
class ClientCursor : public QObject
{
    Q_OBJECT

public:
    explicit ClientCursor(QWindow& window, QObject* parent = nullptr);

    /// Shows the image of `surface`; null hides the pointer.
    void set(QWaylandSurface* surface, const QPoint& hotSpot);
    void reset();

private:
    void showImage();

    QWindow& mWindow;
    QPointer<ClientSurface> mSurface;
    QPoint mHotSpot;
    /// Of the frame callbacks: the desktop shows the image, outside of the output's frames.
    FrameTimer mTimer;
};
