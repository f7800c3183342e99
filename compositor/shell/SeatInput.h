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
#include <QVector>

class DeskCommands;
class InputLayer;
class Menu;
class QKeyEvent;
class QWaylandSeat;
class RequestGuard;
class ScreenSaver;

/// Routes input: it ends the screen saver first, then goes to the compositor's own layers and commands, then to the
/// current view. All positions are in the output's coordinates.
class SeatInput : public QObject
{
    Q_OBJECT

public:
    /// The compositor's own layers that receive input.
    struct Layers
    {
        /// From the top to the bottom.
        QVector<InputLayer*> pointer;
        Menu& menu;
        const DeskCommands& commands;
    };

    SeatInput(QWaylandSeat* seat, RequestGuard& guard, ClientDrag& drag, WindowStack& stack, const Layers& layers,
              ScreenSaver& screenSaver, QWindow& window);

    void pointerMotion(const QPointF& position);
    void pointerPress(const QPointF& position, Qt::MouseButton button);
    void pointerRelease(const QPointF& position, Qt::MouseButton button);
    void pointerLeft();
    /// Takes the pressed buttons, and with them the pointer, away from their client, without a release.
    void cancelGrab();
    void wheel(const QPointF& position, const QPoint& angleDelta);
    void key(QKeyEvent* event);
    /// Sends the releases of all pressed keys. To be called when the window loses the focus.
    void releaseKeys();

Q_SIGNALS:
    /// A button or a key has been pressed.
    void pressed();
    void pointerMoved(const QPointF& position);

private:
    /// Returns whether the input has ended the screen saver; it has no other effect then.
    bool wakesScreen();
    void noteRelease();
    /// Returns whether the key is for the menu or for a command.
    bool takesKey(QKeyEvent* event);
    void updateKeyboardFocus();
    void updatePointerFocus();
    void setPointerFocus(const WindowStack::Hit& target);
    /// Returns whether a button or wheel event may be sent to the surface with the pointer focus.
    bool admitPointerEvent();
    bool hasPointer(wl_client* client) const;
    bool hasPressedButton(wl_client* client) const;

    QWaylandSeat* mSeat;
    WindowStack& mStack;
    const Layers mLayers;
    ScreenSaver& mScreenSaver;
    ClientCursor mCursor;
    ClientDrag& mDrag;

    /// The layer that the pointer has pressed.
    InputLayer* mPressedLayer = nullptr;
    QPointF mPosition;
    bool mIsInside = false;
    /// The buttons whose press was sent to the client; its surface has an implicit grab while there are any.
    Qt::MouseButtons mPressedButtons;
    /// The window of the surface with the pointer focus.
    QPointer<ClientWindow> mPointerWindow;
    QPointer<ClientWindow> mGrabbingWindow;
    QPointer<ClientSurface> mGrabbingSurface;
    QPointF mGrabOrigin;
    /// The scan codes whose press was sent to the client.
    QSet<quint32> mPressedKeys;
};
