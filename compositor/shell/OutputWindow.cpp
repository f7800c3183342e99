// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "shell/OutputWindow.h"

#include "shell/Scene.h"
#include "shell/SeatInput.h"
#include "shell/TouchInput.h"
#include "state/Output.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QResizeEvent>
#include <QTouchEvent>
#include <QWheelEvent>

OutputWindow::OutputWindow(Output& output, Scene& scene)
    : mOutput(output)
    , mScene(scene)
    , mBackingStore(this)
{
    setSurfaceType(QSurface::RasterSurface);
    setTitle(QStringLiteral("Telvaro"));
    resize(output.windowSize());

    connect(&mFrameTimer, &FrameTimer::due, this, &OutputWindow::paintFrame);
    connect(&scene, &Scene::frameRequested, this, &OutputWindow::scheduleFrame);
    connect(&output, &Output::geometryChanged, this, [this] {
        if (size() != mOutput.windowSize()) {
            resize(mOutput.windowSize());
        }
    });
}

void OutputWindow::scheduleFrame()
{
    if (isExposed()) {
        mFrameTimer.request();
    }
}

void OutputWindow::paintFrame()
{
    if (!isExposed()) {
        return;
    }
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
    mOutput.setWindowSize(event->size());
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
    if (touchByMouse(event, Qt::TouchPointPressed)) {
        return;
    }
    mInput->pointerPress(mOutput.fromWindow(event->localPos()), event->button());
}

void OutputWindow::mouseReleaseEvent(QMouseEvent* event)
{
    if (touchByMouse(event, Qt::TouchPointReleased)) {
        return;
    }
    mInput->pointerRelease(mOutput.fromWindow(event->localPos()), event->button());
}

void OutputWindow::mouseMoveEvent(QMouseEvent* event)
{
    if (touchByMouse(event, Qt::TouchPointMoved)) {
        return;
    }
    mInput->pointerMotion(mOutput.fromWindow(event->localPos()));
}

void OutputWindow::wheelEvent(QWheelEvent* event)
{
    mInput->wheel(mOutput.fromWindow(event->position()), event->angleDelta());
}

void OutputWindow::touchEvent(QTouchEvent* event)
{
    // An event that is not accepted would come again as one of the mouse.
    event->accept();
    if (event->type() == QEvent::TouchCancel) {
        mTouchInput->cancel();
        return;
    }
    QVector<TouchInput::Point> points;
    for (const QTouchEvent::TouchPoint& point : event->touchPoints()) {
        points.append({point.id(), mOutput.fromWindow(point.pos()), point.state()});
    }
    mTouchInput->touch(points);
}

bool OutputWindow::touchByMouse(const QMouseEvent* event, Qt::TouchPointState state)
{
    if (!mMouseIsFinger) {
        return false;
    }
    if (state != Qt::TouchPointMoved && event->button() != Qt::LeftButton) {
        return true;
    }
    if (state == Qt::TouchPointPressed) {
        mMouseFingers = event->modifiers().testFlag(Qt::ControlModifier) ? 2 : 1;
    }
    const QPointF opposite = QPointF(width(), height()) - event->localPos();
    QVector<TouchInput::Point> points;
    for (int i = 0; i < mMouseFingers; ++i) {
        points.append({i, mOutput.fromWindow(i == 0 ? event->localPos() : opposite), state});
    }
    if (state == Qt::TouchPointReleased) {
        mMouseFingers = 0;
    }
    mTouchInput->touch(points);
    return true;
}

bool OutputWindow::event(QEvent* event)
{
    if (event->type() == QEvent::Leave && mInput != nullptr) {
        mInput->pointerLeft();
    }
    return QWindow::event(event);
}
