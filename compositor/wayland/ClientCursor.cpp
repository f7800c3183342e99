// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "wayland/ClientCursor.h"

#include "wayland/Presentation.h"

#include <QCursor>
#include <QPainter>
#include <QPixmap>
#include <QWindow>

namespace {

constexpr int cLargestEdge = 256;

} // namespace

ClientCursor::ClientCursor(QWindow& window, QObject* parent)
    : QObject(parent)
    , mWindow(window)
{
    connect(&mTimer, &FrameTimer::due, this, [this] {
        if (mSurface != nullptr) {
            mSurface->sendFrameCallbacks(Presentation::now());
        }
    });
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
    mTimer.request();
    const QSize size = mSurface->size();
    if (!size.isEmpty() && size.width() <= cLargestEdge && size.height() <= cLargestEdge) {
        QPixmap image(size);
        image.fill(Qt::transparent);
        QPainter painter(&image);
        mSurface->paint(&painter, QPoint());
        painter.end();
        mWindow.setCursor(QCursor(image, mHotSpot.x(), mHotSpot.y()));
    }
}
