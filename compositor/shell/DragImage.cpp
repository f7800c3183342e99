// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "shell/DragImage.h"

#include "shell/Scene.h"
#include "wayland/ClientBounds.h"
#include "wayland/ClientDrag.h"
#include "wayland/Presentation.h"

#include <QWaylandSurface>

#include <utility>

DragImage::DragImage(Scene& scene, QObject* parent)
    : QObject(parent)
    , mScene(scene)
{
}

void DragImage::follow(const ClientDrag& drag)
{
    connect(&drag, &ClientDrag::activeChanged, this, [this, &drag] {
        setImage(drag.image());
    });
}

void DragImage::setImage(ClientSurface* image)
{
    if (mImage != nullptr) {
        mImage->disconnect(this);
        if (mImage->surface() != nullptr) {
            mImage->surface()->disconnect(this);
        }
    }
    mImage = image;
    mOffset = QPoint();
    if (image != nullptr) {
        connect(image, &ClientSurface::committed, &mScene, &Scene::requestFrame);
        connect(image->surface(), &QWaylandSurface::offsetForNextFrame, this, [this](const QPoint& offset) {
            mOffset = ClientBounds::clamped(mOffset + ClientBounds::clamped(offset));
        });
    }
    mScene.requestFrame();
}

void DragImage::setPointer(const QPoint& position)
{
    mPointer = position;
    if (mImage != nullptr) {
        mScene.requestFrame();
    }
}

void DragImage::sendFrameCallbacks()
{
    if (mImage != nullptr) {
        mImage->sendFrameCallbacks(Presentation::now());
    }
}

QRegion DragImage::update()
{
    QRegion damage;
    QRect rect;
    if (mImage != nullptr) {
        damage = mImage->update().translated(mPointer + mOffset);
        rect = QRect(mPointer + mOffset, mImage->size());
    }
    if (rect != mPainted) {
        damage |= QRegion(rect) | std::exchange(mPainted, rect);
    }
    return damage;
}

void DragImage::paint(QPainter* painter) const
{
    if (mImage != nullptr) {
        mImage->paint(painter, mPainted.topLeft());
    }
}
