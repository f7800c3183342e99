// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "wayland/ResourceListener.h"

#include <QObject>
#include <QPointF>

#include <memory>
#include <vector>

class QWaylandSeat;
class QWaylandSurface;
class RequestGuard;
struct wl_client;
struct wl_resource;

/// One drag and drop. QWaylandDrag keeps raw pointers to objects of the clients; this calls it only while they exist
/// and the client under the pointer has a wl_data_device.
class ClientDrag : public QObject
{
    Q_OBJECT

public:
    ClientDrag(QWaylandSeat* seat, RequestGuard& guard);

    bool isActive() const
    {
        return mSource != nullptr;
    }
    void move(QWaylandSurface* target, const QPointF& position);
    void drop();

private:
    void begin(wl_resource* source);
    void leave();
    bool follow(wl_client* client);
    void setTarget(wl_client* client);

    QWaylandSeat* mSeat;
    wl_resource* mSource = nullptr;
    std::unique_ptr<ResourceListener> mSourceListener;
    /// The client under the pointer, if it has a wl_data_device.
    wl_client* mTarget = nullptr;
    std::vector<std::unique_ptr<ResourceListener>> mTargetListeners;
};
