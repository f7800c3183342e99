// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "shell/SceneLayer.h"
#include "wayland/ClientSurface.h"

#include <QObject>
#include <QPoint>
#include <QPointer>
#include <QRect>

class ClientDrag;
class Scene;

/// The image of what is dragged, which follows the pointer.
class DragImage : public QObject, public SceneLayer
{
    Q_OBJECT

public:
    explicit DragImage(Scene& scene, QObject* parent = nullptr);

    /// Follows this drag from now on.
    void follow(const ClientDrag& drag);
    /// In the output's coordinates.
    void setPointer(const QPoint& position);
    void sendFrameCallbacks();

    QRegion update() override;
    void paint(QPainter* painter) const override;

private:
    void setImage(ClientSurface* image);

    Scene& mScene;
    QPointer<ClientSurface> mImage;
    QPoint mPointer;
    /// Where the client's commits have moved the image.
    QPoint mOffset;
    /// What is painted.
    QRect mPainted;
};
