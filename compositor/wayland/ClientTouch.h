// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "wayland/ClientSurface.h"
#include "wayland/ClientWindow.h"

#include <QMap>
#include <QObject>
#include <QPointF>
#include <QPointer>
#include <QVector>
#include <QWaylandClient>

class QWaylandSeat;
struct wl_client;

/// Sends wl_touch events. Each finger is grabbed by the surface on which it is put down, until it is lifted. Unlike
/// QWaylandTouch, which creates the objects, it serves all wl_touch objects of a client and survives the destruction of
/// a surface under a finger.
///
/// A caller translates one QTouchEvent into calls of down(), move() and up(), and then calls sendFrame(). Fingers are
/// identified by the ids of their touch points, positions are in the output's coordinates.
class ClientTouch : public QObject
{
    Q_OBJECT

public:
    explicit ClientTouch(QWaylandSeat& seat);

    /// Puts a finger down on `surface`, which belongs to `window` and has `position` at `localPosition`. Returns false
    /// when the surface is destroyed or the client must not be sent events: the finger is not followed then.
    bool down(int finger, ClientWindow* window, ClientSurface* surface, const QPointF& position,
              const QPointF& localPosition);
    /// Does nothing for a finger that is not followed. The same holds for up().
    void move(int finger, const QPointF& position);
    void up(int finger);
    /// Ends the group of events since the last call.
    void sendFrame();
    /// Takes all fingers away from their clients, which must undo what the fingers have done.
    void cancel();

    bool isDown(int finger) const
    {
        return mGrabs.contains(finger);
    }
    /// Whether a finger is down on a surface of the client.
    bool isTouched(const wl_client* client) const;

private:
    struct Grab
    {
        int id;
        QPointer<QWaylandClient> client;
        QPointer<ClientWindow> window;
        QPointer<ClientSurface> surface;
        /// Where the surface was when the finger was put down.
        QPointF origin;
    };

    int freeId() const;
    /// Returns null for a surface that is destroyed.
    static QWaylandSurface* surfaceOf(const Grab& grab);
    void noteEvent(const QPointer<QWaylandClient>& client);

    QWaylandSeat& mSeat;
    QMap<int, Grab> mGrabs;
    /// The clients that have been sent events since the last frame.
    QVector<QPointer<QWaylandClient>> mUnframedClients;
};
