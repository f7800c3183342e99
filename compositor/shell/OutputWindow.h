// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "state/FrameTimer.h"

#include <QBackingStore>
#include <QWindow>

class Output;
class Scene;
class SeatInput;
class TouchInput;

/// The window on the desktop that stands for the device's display. Paints the damage of the scene, at most sixty times
/// a second and not at all while nothing changes, and passes input on.
class OutputWindow : public QWindow
{
    Q_OBJECT

public:
    OutputWindow(Output& output, Scene& scene);

    void setInput(SeatInput* input, TouchInput* touchInput)
    {
        mInput = input;
        mTouchInput = touchInput;
    }
    /// Makes the left button of the mouse a finger, and with Ctrl held a pair of fingers, opposite each other.
    void useMouseAsFinger()
    {
        mMouseIsFinger = true;
    }

Q_SIGNALS:
    /// All that was requested before is on the screen now.
    void framePainted();

protected:
    void exposeEvent(QExposeEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void touchEvent(QTouchEvent* event) override;
    bool event(QEvent* event) override;

private:
    void scheduleFrame();
    void paintFrame();
    /// Returns whether the event was a finger's.
    bool touchByMouse(const QMouseEvent* event, Qt::TouchPointState state);

    Output& mOutput;
    Scene& mScene;
    SeatInput* mInput = nullptr;
    TouchInput* mTouchInput = nullptr;
    bool mMouseIsFinger = false;
    /// While the mouse is a finger that is down.
    int mMouseFingers = 0;
    QBackingStore mBackingStore;
    FrameTimer mFrameTimer;
};
