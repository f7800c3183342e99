// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "wayland/ClientSurface.h"

#include <QObject>
#include <QPoint>
#include <QPointer>

class QWaylandSurface;
class QWindow;

/// The pointer's shape, as the client under the pointer wants it.
class ClientCursor : public QObject
{
    Q_OBJECT

public:
    explicit ClientCursor(QWindow& window, QObject* parent = nullptr);

    /// A null \a surface hides the pointer.
    void set(QWaylandSurface* surface, const QPoint& hotSpot);
    void reset();

private:
    void showImage();

    QWindow& mWindow;
    QPointer<ClientSurface> mSurface;
    QPoint mHotSpot;
};
