// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "shell/TouchInput.h"

#include "shell/InputLayer.h"
#include "shell/SeatInput.h"
#include "shell/WindowStack.h"
#include "state/ScreenSaver.h"
#include "wayland/ClientResources.h"
#include "wayland/ClientSurface.h"
#include "wayland/ClientTouch.h"

#include <QWaylandSurface>

#include <utility>
#include <wayland-server-protocol.h>

namespace {

/// Outside of everything that could be triggered.
constexpr QPoint cNowhere{-1, -1};

bool hasTouch(const ClientSurface& surface)
{
    return surface.surface() != nullptr
        && !ClientResources::of(surface.surface()->waylandClient(), wl_touch_interface).empty();
}

} // namespace

TouchInput::TouchInput(ClientTouch& clients, SeatInput& pointer, WindowStack& stack, const QVector<InputLayer*>& layers,
                       ScreenSaver& screenSaver)
    : mClients(clients)
    , mPointer(pointer)
    , mStack(stack)
    , mLayers(layers)
    , mScreenSaver(screenSaver)
{
    connect(&stack, &WindowStack::currentChanged, this, &TouchInput::cancel);
    connect(&screenSaver, &ScreenSaver::activeChanged, this, &TouchInput::cancel);
}

void TouchInput::touch(const QVector<Point>& points)
{
    for (const Point& point : points) {
        switch (point.state) {
        case Qt::TouchPointPressed:
            press(point);
            Q_EMIT pressed();
            break;
        case Qt::TouchPointMoved:
            move(point);
            break;
        case Qt::TouchPointReleased:
            release(point);
            break;
        default:
            break;
        }
    }
    mClients.sendFrame();
}

void TouchInput::press(const Point& point)
{
    const bool wasAsleep = mScreenSaver.isActive();
    mScreenSaver.noteInput();
    if (wasAsleep) {
        return;
    }
    InputLayer* const layer = InputLayer::at(mLayers, point.position);
    const WindowStack::Hit hit = mStack.surfaceAt(point.position);
    if (layer == nullptr && hit.surface != nullptr && hasTouch(*hit.surface)) {
        mStack.dismissPopups(hit);
        mClients.down(point.id, hit.window, hit.surface, point.position, hit.position);
        return;
    }
    if (mFinger && layer != nullptr && layer == mPressedLayer) {
        // Two thumbs type faster than one is lifted.
        release({*mFinger, mFingerPosition, Qt::TouchPointReleased});
    }
    if (mFinger) {
        return;
    }
    if (layer == nullptr || !layer->keepsPopups()) {
        mStack.dismissPopups(layer == nullptr ? hit : WindowStack::Hit());
    }
    mFingerPosition = point.position;
    if (layer != nullptr) {
        mFinger = point.id;
        mPressedLayer = layer;
        layer->press(point.position.toPoint());
    } else if (hit.surface != nullptr) {
        mFinger = point.id;
        mPointer.pointerPress(point.position, Qt::LeftButton);
    }
}

void TouchInput::move(const Point& point)
{
    if (point.id == mFinger) {
        mFingerPosition = point.position;
    }
    if (point.id == mFinger && mPressedLayer == nullptr) {
        mPointer.pointerMotion(point.position);
    } else if (point.id == mFinger || mClients.isDown(point.id)) {
        mScreenSaver.noteInput();
        mClients.move(point.id, point.position);
    }
}

void TouchInput::release(const Point& point)
{
    if (point.id != mFinger) {
        mClients.up(point.id);
        return;
    }
    mFinger.reset();
    if (InputLayer* const layer = std::exchange(mPressedLayer, nullptr)) {
        layer->release(point.position.toPoint());
    } else {
        mPointer.pointerRelease(point.position, Qt::LeftButton);
        mPointer.pointerLeft();
    }
}

void TouchInput::cancel()
{
    mClients.cancel();
    if (mFinger && mPressedLayer == nullptr) {
        mFinger.reset();
        mPointer.cancelGrab();
        mPointer.pointerLeft();
    } else if (mFinger) {
        release({*mFinger, cNowhere, Qt::TouchPointReleased});
    }
}
