// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "shell/SeatInput.h"

#include "shell/DeskCommands.h"
#include "shell/InputLayer.h"
#include "shell/Menu.h"
#include "state/ScreenSaver.h"
#include "wayland/RequestGuard.h"

#include <QKeyEvent>
#include <QWaylandSeat>
#include <QWaylandSurface>

#include <algorithm>
#include <utility>

SeatInput::SeatInput(QWaylandSeat* seat, RequestGuard& guard, ClientDrag& drag, WindowStack& stack,
                     const Layers& layers, ScreenSaver& screenSaver, QWindow& window)
    : mSeat(seat)
    , mStack(stack)
    , mLayers(layers)
    , mScreenSaver(screenSaver)
    , mCursor(window)
    , mDrag(drag)
{
    guard.setCursorRule([this](wl_client* client) {
        return hasPointer(client);
    });
    drag.setRule([this](wl_client* client) {
        return hasPressedButton(client);
    });
    connect(&stack, &WindowStack::arrangementChanged, this, &SeatInput::updatePointerFocus);
    connect(&stack, &WindowStack::keyboardSurfaceChanged, this, &SeatInput::updateKeyboardFocus);
    connect(seat, &QWaylandSeat::cursorSurfaceRequest, this, [this](QWaylandSurface* surface, int x, int y) {
        mCursor.set(surface, QPoint(x, y));
    });
    connect(seat, &QWaylandSeat::mouseFocusChanged, this, [this](const QWaylandView* newFocus) {
        if (newFocus == nullptr) {
            mCursor.reset();
        }
    });
}

void SeatInput::noteRelease()
{
    // The release of the key that has blanked the screen does not wake it.
    if (!mScreenSaver.isActive()) {
        mScreenSaver.noteInput();
    }
}

bool SeatInput::wakesScreen()
{
    const bool wasAsleep = mScreenSaver.isActive();
    mScreenSaver.noteInput();
    return wasAsleep;
}

void SeatInput::pointerMotion(const QPointF& position)
{
    mPosition = position;
    mIsInside = true;
    Q_EMIT pointerMoved(position);
    if (!wakesScreen()) {
        updatePointerFocus();
    }
}

void SeatInput::pointerPress(const QPointF& position, Qt::MouseButton button)
{
    mPosition = position;
    mIsInside = true;
    Q_EMIT pressed();
    if (wakesScreen()) {
        return;
    }
    if (!mPressedButtons) {
        mPressedLayer = InputLayer::at(mLayers.pointer, position);
        if (mPressedLayer != nullptr) {
            if (!mPressedLayer->keepsPopups()) {
                mStack.dismissPopups({});
            }
            mPressedLayer->press(position.toPoint());
            return;
        }
    }
    updatePointerFocus();
    if (!mPressedButtons) {
        const WindowStack::Hit hit = mStack.surfaceAt(position);
        mStack.dismissPopups(hit);
        mGrabbingWindow = hit.window;
        mGrabbingSurface = hit.surface;
        mGrabOrigin = position - hit.position;
    }
    if (admitPointerEvent()) {
        mPressedButtons |= button;
        mSeat->sendMousePressEvent(button);
    }
}

void SeatInput::pointerRelease(const QPointF& position, Qt::MouseButton button)
{
    mPosition = position;
    noteRelease();
    if (InputLayer* const layer = std::exchange(mPressedLayer, nullptr)) {
        layer->release(position.toPoint());
    }
    if (!mPressedButtons.testFlag(button)) {
        return;
    }
    mPressedButtons.setFlag(button, false);
    if (mDrag.isActive()) {
        mDrag.drop();
    }
    mSeat->sendMouseReleaseEvent(button);
    updatePointerFocus();
}

void SeatInput::pointerLeft()
{
    mIsInside = false;
    if (!mPressedButtons) {
        setPointerFocus({});
    }
}

void SeatInput::cancelGrab()
{
    if (!mPressedButtons) {
        return;
    }
    // A drag is cancelled when it is dropped on nothing.
    mDrag.move(nullptr, {});
    mDrag.drop();
    mPressedButtons = Qt::NoButton;
    setPointerFocus({});
}

void SeatInput::wheel(const QPointF& position, const QPoint& angleDelta)
{
    const bool wasAsleep = mScreenSaver.isActive();
    pointerMotion(position);
    if (wasAsleep) {
        return;
    }
    if (mLayers.menu.isOpen()) {
        if (angleDelta.y() != 0) {
            mLayers.menu.moveSelection(angleDelta.y() > 0 ? -1 : 1);
        }
        return;
    }
    if (!admitPointerEvent()) {
        return;
    }
    if (angleDelta.x() != 0) {
        mSeat->sendMouseWheelEvent(Qt::Horizontal, angleDelta.x());
    }
    if (angleDelta.y() != 0) {
        mSeat->sendMouseWheelEvent(Qt::Vertical, angleDelta.y());
    }
}

void SeatInput::key(QKeyEvent* event)
{
    const quint32 code = event->nativeScanCode();
    if (event->type() == QEvent::KeyRelease) {
        noteRelease();
        if (!event->isAutoRepeat() && mPressedKeys.remove(code) && mSeat->keyboardFocus() != nullptr) {
            mSeat->sendFullKeyEvent(event);
        }
        // X11 calls Alt Meta while Shift is held.
        if (event->key() == Qt::Key_Alt || event->key() == Qt::Key_Meta) {
            mLayers.menu.finishSwitching();
        }
        return;
    }
    Q_EMIT pressed();
    ClientWindow* const window = mStack.current();
    if (wakesScreen() || takesKey(event) || event->isAutoRepeat() || window == nullptr
        || mSeat->keyboardFocus() == nullptr) {
        return;
    }
    if (code != 0 && window->admitEvent()) {
        mPressedKeys.insert(code);
        mSeat->sendFullKeyEvent(event);
    }
}

bool SeatInput::takesKey(QKeyEvent* event)
{
    int key = event->key();
    Qt::KeyboardModifiers modifiers =
        event->modifiers() & (Qt::ShiftModifier | Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier);
    if (key == Qt::Key_Backtab) {
        key = Qt::Key_Tab;
        modifiers |= Qt::ShiftModifier;
    }
    key |= static_cast<int>(modifiers);
    if (mLayers.menu.isOpen()) {
        mLayers.menu.pressKey(key);
        return true;
    }
    const DeskCommands::Command* const command = mLayers.commands.find(key);
    if (command != nullptr && !event->isAutoRepeat()) {
        command->execute();
    }
    return command != nullptr;
}

void SeatInput::releaseKeys()
{
    mLayers.menu.close();
    for (const quint32 code : std::exchange(mPressedKeys, {})) {
        if (mSeat->keyboardFocus() != nullptr) {
            mSeat->sendKeyReleaseEvent(code);
        }
    }
}

void SeatInput::updateKeyboardFocus()
{
    ClientWindow* const window = mStack.current();
    ClientSurface* const surface = mStack.keyboardSurface();
    mSeat->setKeyboardFocus(surface == nullptr ? nullptr : surface->surface());
    if (window != nullptr) {
        window->ping();
    }
}

void SeatInput::updatePointerFocus()
{
    if (!mIsInside) {
        return;
    }
    if (mDrag.isActive()) {
        const WindowStack::Hit hit = mStack.surfaceAt(mPosition);
        if (hit.window == nullptr || hit.window->admitEvent()) {
            mDrag.move(hit.surface == nullptr ? nullptr : hit.surface->surface(), hit.position);
        }
        return;
    }
    if (mPressedButtons) {
        if (mGrabbingWindow != nullptr && mGrabbingSurface != nullptr && mGrabbingSurface->surface() != nullptr) {
            setPointerFocus({mGrabbingWindow, mGrabbingSurface, mPosition - mGrabOrigin});
            return;
        }
        mPressedButtons = Qt::NoButton;
    }
    setPointerFocus(InputLayer::at(mLayers.pointer, mPosition) == nullptr ? mStack.surfaceAt(mPosition)
                                                                          : WindowStack::Hit());
}

void SeatInput::setPointerFocus(const WindowStack::Hit& target)
{
    const bool hasMoved = target.window != mPointerWindow;
    // While a client disconnects, its surfaces are destroyed one by one; QWaylandSeat crashes on an event for one that
    // is already being destroyed.
    const bool isThere =
        target.surface != nullptr && target.surface->surface() != nullptr && !target.surface->surface()->isDestroyed();
    const bool isAdmitted = isThere && target.window != nullptr && target.window->admitEvent();
    if (isAdmitted) {
        mPointerWindow = target.window;
        mSeat->sendMouseMoveEvent(target.surface, target.position, mPosition);
    } else if (hasMoved) {
        mPointerWindow = nullptr;
        mSeat->setMouseFocus(nullptr);
    }
}

bool SeatInput::admitPointerEvent()
{
    return mPointerWindow != nullptr && mSeat->mouseFocus() != nullptr && mPointerWindow->admitEvent();
}

bool SeatInput::hasPointer(wl_client* client) const
{
    const QWaylandView* const focus = mSeat->mouseFocus();
    return focus != nullptr && focus->surface() != nullptr && focus->surface()->waylandClient() == client;
}

bool SeatInput::hasPressedButton(wl_client* client) const
{
    return mPressedButtons && mGrabbingSurface != nullptr && mGrabbingSurface->surface() != nullptr
        && mGrabbingSurface->surface()->waylandClient() == client;
}
