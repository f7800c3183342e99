// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "wayland/DataSource.h"

#include <QObject>
#include <QPointer>

#include <cstdint>

struct wl_client;
struct wl_resource;

/// A wl_data_offer: a source as another client sees it, with what the two have negotiated. Lives as long as its
/// resource.
class DataOffer : public QObject
{
    Q_OBJECT

public:
    enum class Purpose
    {
        Clipboard,
        Drag
    };

    /// Sends the offer to a wl_data_device. Returns null when there is no memory.
    static DataOffer* create(wl_resource* device, DataSource* source, Purpose purpose);

    wl_resource* resource() const
    {
        return mResource;
    }
    /// Whether a drop would be accepted: the client has accepted a type, and there is an action for both sides. Before
    /// version 3 clients cannot refuse.
    bool takesDrop() const;
    void drop();
    /// Ends the negotiation: the drag has left, or the clipboard has another content.
    void revoke();

private:
    DataOffer(wl_resource* resource, DataSource* source, Purpose purpose);
    ~DataOffer() override;

    static DataOffer* of(wl_resource* resource);
    static void accept(wl_client* client, wl_resource* resource, uint32_t serial, const char* type);
    static void receive(wl_client* client, wl_resource* resource, const char* type, int32_t descriptor);
    static void finish(wl_client* client, wl_resource* resource);
    static void setActions(wl_client* client, wl_resource* resource, uint32_t actions, uint32_t preferred);
    bool knowsActions() const;
    void chooseAction();

    wl_resource* mResource;
    QPointer<DataSource> mSource;
    Purpose mPurpose;
    bool mHasType = false;
    quint32 mActions;
    quint32 mPreferredAction;
    quint32 mAction;
    bool mIsDropped = false;
};
