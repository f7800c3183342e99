// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "shell/TouchInput.h"

#include "shell/InputLayer.h"
#include "shell/SeatInput.h"
#include "shell/WindowStack.h"
#include "state/ScreenSaver.h"
#include "wayland/ClientResources.h"

#include <QWaylandClient>
#include <QWaylandSeat>
#include <QWaylandSurface>

#include <algorithm>
#include <utility>
#include <wayland-server-protocol.h>

namespace {

/// Outside of everything that could be triggered.
constexpr QPoint cNowhere{-1, -1};

bool hasTouch(wl_client* client)
{
    bool isFound = false;
    ClientResources::forEach(client, wl_touch_interface, [&isFound](wl_resource*) {
        isFound = true;
    });
    return isFound;
}

/// Null when the surface is gone, or about to go.
QWaylandSurface* liveSurface(const QPointer<ClientSurface>& surface)
{
    QWaylandSurface* const result = surface == nullptr ? nullptr : surface->surface();
    return result == nullptr || result->isDestroyed() ? nullptr : result;
}

} // namespace

TouchInput::TouchInput(QWaylandSeat* seat, SeatInput& pointer, WindowStack& stack, const QVector<InputLayer*>& layers,
                       ScreenSaver& screenSaver)
    : mSeat(seat)
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
    for (QWaylandClient* client : std::exchange(mTouchedClients, {})) {
        mSeat->sendTouchFrameEvent(client);
    }
}

bool TouchInput::isFirst() const
{
    return std::none_of(mFingers.cbegin(), mFingers.cend(), [](const Finger& finger) {
        return finger.layer != nullptr || finger.isPointer;
    });
}

void TouchInput::press(const Point& point)
{
    const bool wasAsleep = mScreenSaver.isActive();
    mScreenSaver.noteInput();
    if (wasAsleep) {
        return;
    }
    Finger finger;
    if (InputLayer* const layer = InputLayer::at(mLayers, point.position)) {
        if (isFirst()) {
            finger.layer = layer;
            mFingers.insert(point.id, finger);
            mStack.dismissPopups();
            layer->press(point.position.toPoint());
        }
        return;
    }
    const WindowStack::Hit hit = mStack.surfaceAt(point.position);
    if (hit.surface == nullptr) {
        mStack.dismissPopups();
        return;
    }
    finger.surface = hit.surface;
    QWaylandSurface* const surface = liveSurface(finger.surface);
    if (surface == nullptr) {
        return;
    }
    if (!hasTouch(surface->waylandClient())) {
        if (isFirst()) {
            finger.isPointer = true;
            mFingers.insert(point.id, finger);
            mPointer.pointerPress(point.position, Qt::LeftButton);
        }
        return;
    }
    if (hit.window->admitEvent()) {
        finger.window = hit.window;
        finger.origin = point.position - hit.position;
        mFingers.insert(point.id, finger);
        send(finger, point);
    }
}

void TouchInput::move(const Point& point)
{
    const auto finger = mFingers.constFind(point.id);
    if (finger == mFingers.cend()) {
        return;
    }
    mScreenSaver.noteInput();
    if (finger->isPointer) {
        mPointer.pointerMotion(point.position);
    } else if (finger->window != nullptr && finger->window->admitEvent()) {
        send(*finger, point);
    }
}

void TouchInput::release(const Point& point)
{
    const Finger finger = mFingers.take(point.id);
    if (finger.layer != nullptr) {
        finger.layer->release(point.position.toPoint());
    } else if (finger.isPointer) {
        mPointer.pointerRelease(point.position, Qt::LeftButton);
        mPointer.pointerLeft();
    } else {
        send(finger, point);
    }
}

void TouchInput::cancel()
{
    const QMap<int, Finger> fingers = std::exchange(mFingers, {});
    mTouchedClients.clear();
    QSet<QWaylandClient*> clients;
    for (const Finger& finger : fingers) {
        QWaylandSurface* const surface = liveSurface(finger.surface);
        if (finger.layer != nullptr) {
            finger.layer->release(cNowhere);
        } else if (finger.isPointer) {
            mPointer.pointerRelease(cNowhere, Qt::LeftButton);
            mPointer.pointerLeft();
        } else if (surface != nullptr) {
            clients.insert(surface->client());
        }
    }
    for (QWaylandClient* client : qAsConst(clients)) {
        mSeat->sendTouchCancelEvent(client);
    }
}

void TouchInput::send(const Finger& finger, const Point& point)
{
    if (QWaylandSurface* const surface = liveSurface(finger.surface)) {
        mSeat->sendTouchPointEvent(surface, point.id, point.position - finger.origin, point.state);
        mTouchedClients.insert(surface->client());
    }
}
