// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "wayland/ClientDrag.h"

#include <QObject>
#include <QPointer>
#include <QVector>
#include <QWaylandClient>

#include <cstdint>

class QWaylandSeat;
class QWaylandSurface;
class ServerGlobals;
struct wl_client;
struct wl_resource;

/// The wl_data_device_manager global at version 3, with the wl_data_device objects of all clients and the clipboard.
/// Replaces Qt's, which creates its objects at version 1, dereferences a null source and keeps pointers to destroyed
/// ones.
class DataDevices : public QObject
{
    Q_OBJECT

public:
    DataDevices(ServerGlobals& globals, QWaylandSeat& seat);

    ClientDrag& drag()
    {
        return mDrag;
    }

private:
    static void bind(wl_client* client, void* data, uint32_t version, uint32_t id);
    static void createSource(wl_client* client, wl_resource* manager, uint32_t id);
    static void createDevice(wl_client* client, wl_resource* manager, uint32_t id, wl_resource* seat);
    static void startDrag(wl_client* client, wl_resource* device, wl_resource* source, wl_resource* origin,
                          wl_resource* icon, uint32_t serial);
    static void setSelection(wl_client* client, wl_resource* device, wl_resource* source, uint32_t serial);

    /// Notes which client has got the keyboard focus, and offers it the clipboard.
    void handleFocusChange(const QWaylandSurface* surface);
    /// Whether a client has the keyboard focus, or has lost it last: its user may have copied just before.
    bool mayTakeClipboard(const wl_client* client) const;
    void setClipboard(DataSource* source);
    /// Offers the clipboard to the client of `surface`, which has the keyboard focus.
    void offerClipboard(const QWaylandSurface* surface);

    QWaylandSeat& mSeat;
    ClientDrag mDrag;
    QPointer<QWaylandClient> mFocusedClient;
    /// The one that had the focus before.
    QPointer<QWaylandClient> mLeftClient;
    QPointer<DataSource> mClipboard;
    QVector<QPointer<DataOffer>> mOffers;
};
