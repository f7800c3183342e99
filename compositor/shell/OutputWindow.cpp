// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "shell/OutputWindow.h"

#include "shell/Scene.h"
#include "shell/SeatInput.h"
#include "state/Output.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QResizeEvent>
#include <QWheelEvent>

namespace {

constexpr int cFrameMilliseconds = 16;

} // namespace

OutputWindow::OutputWindow(Output& output, Scene& scene)
    : mOutput(output)
    , mScene(scene)
    , mBackingStore(this)
{
    setSurfaceType(QSurface::RasterSurface);
    setTitle(QStringLiteral("Telvaro"));
    resize(output.physicalSize());

    mFrameTimer.setSingleShot(true);
    mFrameTimer.setTimerType(Qt::PreciseTimer);
    connect(&mFrameTimer, &QTimer::timeout, this, &OutputWindow::paintFrame);
    connect(&scene, &Scene::frameRequested, this, &OutputWindow::scheduleFrame);
    mSinceFrame.start();
}

void OutputWindow::scheduleFrame()
{
    if (!mFrameTimer.isActive() && isExposed()) {
        mFrameTimer.start(
            static_cast<int>(qBound<qint64>(0, cFrameMilliseconds - mSinceFrame.elapsed(), cFrameMilliseconds)));
    }
}

void OutputWindow::paintFrame()
{
    if (!isExposed()) {
        return;
    }
    mSinceFrame.restart();
    const QRegion damage = mScene.update();
    if (!damage.isEmpty()) {
        mBackingStore.resize(size());
        mBackingStore.beginPaint(damage);
        {
            QPainter painter(mBackingStore.paintDevice());
            painter.setClipRegion(damage);
            mScene.paint(&painter);
        }
        mBackingStore.endPaint();
        mBackingStore.flush(damage);
    }
    Q_EMIT framePainted();
}

void OutputWindow::exposeEvent(QExposeEvent*)
{
    if (isExposed()) {
        mScene.repaint();
    }
}

void OutputWindow::resizeEvent(QResizeEvent* event)
{
    mOutput.setPhysicalSize(event->size());
}

void OutputWindow::focusOutEvent(QFocusEvent*)
{
    mInput->releaseKeys();
}

void OutputWindow::keyPressEvent(QKeyEvent* event)
{
    mInput->key(event);
}

void OutputWindow::keyReleaseEvent(QKeyEvent* event)
{
    mInput->key(event);
}

void OutputWindow::mousePressEvent(QMouseEvent* event)
{
    mInput->pointerPress(mOutput.fromWindow(event->localPos()), event->button());
}

void OutputWindow::mouseReleaseEvent(QMouseEvent* event)
{
    mInput->pointerRelease(mOutput.fromWindow(event->localPos()), event->button());
}

void OutputWindow::mouseMoveEvent(QMouseEvent* event)
{
    mInput->pointerMotion(mOutput.fromWindow(event->localPos()));
}

void OutputWindow::wheelEvent(QWheelEvent* event)
{
    mInput->wheel(mOutput.fromWindow(event->position()), event->angleDelta());
}

bool OutputWindow::event(QEvent* event)
{
    if (event->type() == QEvent::Leave && mInput != nullptr) {
        mInput->pointerLeft();
    }
    return QWindow::event(event);
}
