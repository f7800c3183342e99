// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "shell/WindowStack.h"
#include "wayland/ClientCursor.h"
#include "wayland/ClientDrag.h"
#include "wayland/ClientSurface.h"
#include "wayland/ClientWindow.h"

#include <QObject>
#include <QPoint>
#include <QPointF>
#include <QPointer>
#include <QSet>

class NotificationCards;
class QKeyEvent;
class QWaylandSeat;
class ScreenSaver;

/// Leads the input to where it belongs: first it ends the screen saver, then it is for the notification cards, then
/// for the current view. Positions are in the output's coordinates.
class SeatInput : public QObject
{
    Q_OBJECT

public:
    SeatInput(QWaylandSeat* seat, RequestGuard& guard, WindowStack& stack, NotificationCards& cards,
              ScreenSaver& screenSaver, QWindow& window);

    void pointerMotion(const QPointF& position);
    void pointerPress(const QPointF& position, Qt::MouseButton button);
    void pointerRelease(const QPointF& position, Qt::MouseButton button);
    void pointerLeft();
    void wheel(const QPointF& position, const QPoint& angleDelta);
    void key(QKeyEvent* event);
    /// To be called when the releases will not come any more.
    void releaseKeys();

private:
    /// True when the input has only ended the screen saver.
    bool wakesScreen();
    void updateKeyboardFocus();
    void updatePointerFocus();
    void setPointerFocus(const WindowStack::Hit& target);
    /// Whether a press or a turn of the wheel may be sent to what has the pointer.
    bool admitPointerEvent();
    bool hasPointer(wl_client* client) const;
    bool hasPressedButton(wl_client* client) const;

    QWaylandSeat* mSeat;
    WindowStack& mStack;
    NotificationCards& mCards;
    ScreenSaver& mScreenSaver;
    ClientCursor mCursor;
    ClientDrag mDrag;

    QPointF mPosition;
    bool mIsInside = false;
    /// The buttons that the client has been told of; while there are any, its surface keeps the pointer.
    Qt::MouseButtons mPressedButtons;
    /// Whose surface has the pointer.
    QPointer<ClientWindow> mPointerWindow;
    QPointer<ClientWindow> mGrabbingWindow;
    QPointer<ClientSurface> mGrabbingSurface;
    QPointF mGrabOrigin;
    /// The scan codes that the client has been told of.
    QSet<quint32> mPressedKeys;
};
