// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QBackingStore>
#include <QElapsedTimer>
#include <QTimer>
#include <QWindow>

class Output;
class Scene;
class SeatInput;

/// The window on the desktop that stands for the device's display. Paints the damage of the scene, at most sixty times
/// a second and not at all while nothing changes, and passes input on.
class OutputWindow : public QWindow
{
    Q_OBJECT

public:
    OutputWindow(Output& output, Scene& scene);

    void setInput(SeatInput* input)
    {
        mInput = input;
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
    bool event(QEvent* event) override;

private:
    void scheduleFrame();
    void paintFrame();

    Output& mOutput;
    Scene& mScene;
    SeatInput* mInput = nullptr;
    QBackingStore mBackingStore;
    QTimer mFrameTimer;
    QElapsedTimer mSinceFrame;
};
