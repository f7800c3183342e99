// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QObject>
#include <QPointF>
#include <QVector>

#include <optional>

class ClientTouch;
class InputLayer;
class ScreenSaver;
class SeatInput;
class WindowStack;

/// Routes fingers as SeatInput routes the pointer: to the compositor's own layers, or to the clients, where ClientTouch
/// follows them. The first finger is the pointer of a client without wl_touch.
class TouchInput : public QObject
{
    Q_OBJECT

public:
    struct Point
    {
        int id = 0;
        /// In the output's coordinates.
        QPointF position;
        Qt::TouchPointState state = Qt::TouchPointPressed;
    };

    /// `layers` are those that receive input before the clients, from the top to the bottom.
    TouchInput(ClientTouch& clients, SeatInput& pointer, WindowStack& stack, const QVector<InputLayer*>& layers,
               ScreenSaver& screenSaver);

    /// Handles the points that have changed at the same time.
    void touch(const QVector<Point>& points);
    /// Takes all fingers from the clients and layers that have them, without triggering anything.
    void cancel();

Q_SIGNALS:
    /// A finger has been put down.
    void pressed();

private:
    void press(const Point& point);
    void move(const Point& point);
    void release(const Point& point);

    ClientTouch& mClients;
    SeatInput& mPointer;
    WindowStack& mStack;
    const QVector<InputLayer*> mLayers;
    ScreenSaver& mScreenSaver;
    /// The one finger that ClientTouch does not follow: on a layer, or without one as the pointer.
    std::optional<int> mFinger;
    QPointF mFingerPosition;
    InputLayer* mPressedLayer = nullptr;
};
