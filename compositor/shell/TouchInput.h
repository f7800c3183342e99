// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "wayland/ClientSurface.h"
#include "wayland/ClientWindow.h"

#include <QMap>
#include <QObject>
#include <QPointF>
#include <QPointer>
#include <QSet>
#include <QVector>

class InputLayer;
class QWaylandClient;
class QWaylandSeat;
class ScreenSaver;
class SeatInput;
class WindowStack;

/// Routes fingers as SeatInput routes the pointer. Each finger has a grab of its own: the surface or layer on which it
/// is put down keeps it until it is lifted. The first finger is the pointer of a client without wl_touch.
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
    TouchInput(QWaylandSeat* seat, SeatInput& pointer, WindowStack& stack, const QVector<InputLayer*>& layers,
               ScreenSaver& screenSaver);

    /// Handles the points that have changed at the same time.
    void touch(const QVector<Point>& points);
    /// Takes all fingers from the clients and layers that have them, without triggering anything.
    void cancel();

private:
    struct Finger
    {
        /// One of these three has it.
        InputLayer* layer = nullptr;
        bool isPointer = false;
        QPointer<ClientSurface> surface;

        QPointer<ClientWindow> window;
        /// Of the surface, on the output.
        QPointF origin;
    };

    void press(const Point& point);
    void move(const Point& point);
    void release(const Point& point);
    /// Whether no finger has pressed a layer or acts as the pointer.
    bool isFirst() const;
    void send(const Finger& finger, const Point& point);

    QWaylandSeat* mSeat;
    SeatInput& mPointer;
    WindowStack& mStack;
    const QVector<InputLayer*> mLayers;
    ScreenSaver& mScreenSaver;
    QMap<int, Finger> mFingers;
    /// The clients to which events of the present frame were sent.
    QSet<QWaylandClient*> mTouchedClients;
};
