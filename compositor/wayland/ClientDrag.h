// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QObject>
#include <QPointF>

class QWaylandSeat;
class QWaylandSurface;
class RequestGuard;
struct wl_client;
struct wl_resource;

/// What a client drags, from the begin to the drop. Qt's own keeps pointers to objects that the clients may end at any
/// time, and takes every client under the pointer for one that wants to know; here it is only asked to touch what is
/// there.
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

    QWaylandSeat* mSeat;
    RequestGuard& mGuard;
    wl_resource* mSource = nullptr;
    /// The client that the drag is over, if it takes part.
    wl_client* mTarget = nullptr;
};
