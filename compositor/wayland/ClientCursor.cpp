// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "wayland/ClientCursor.h"

#include <QCursor>
#include <QPixmap>
#include <QWindow>

namespace {

constexpr int cLargestEdge = 256;

} // namespace

ClientCursor::ClientCursor(QWindow& window, QObject* parent)
    : QObject(parent)
    , mWindow(window)
{
}

void ClientCursor::set(QWaylandSurface* surface, const QPoint& hotSpot)
{
    if (mSurface != nullptr) {
        mSurface->disconnect(this);
    }
    mSurface = ClientSurface::of(surface);
    mHotSpot = hotSpot;
    if (mSurface == nullptr) {
        mWindow.setCursor(Qt::BlankCursor);
        return;
    }
    connect(mSurface, &ClientSurface::committed, this, &ClientCursor::showImage);
    showImage();
}

void ClientCursor::reset()
{
    if (mSurface != nullptr) {
        mSurface->disconnect(this);
        mSurface = nullptr;
    }
    mWindow.unsetCursor();
}

void ClientCursor::showImage()
{
    mSurface->update();
    const QSize size = mSurface->size();
    if (!mSurface->image().isNull() && size.width() <= cLargestEdge && size.height() <= cLargestEdge) {
        const QImage image = mSurface->image().scaled(size);
        mWindow.setCursor(QCursor(QPixmap::fromImage(image), mHotSpot.x(), mHotSpot.y()));
    }
}
