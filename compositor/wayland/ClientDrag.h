// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "wayland/ClientSurface.h"
#include "wayland/DataOffer.h"
#include "wayland/ResourceListener.h"

#include <QObject>
#include <QPointF>
#include <QPointer>
#include <QWaylandSurface>

#include <functional>
#include <memory>
#include <vector>

class QWaylandSeat;
struct wl_client;
struct wl_resource;

/// One drag and drop at a time.
class ClientDrag : public QObject
{
    Q_OBJECT

public:
    explicit ClientDrag(QWaylandSeat& seat);

    /// Sets which clients may start a drag.
    void setRule(const std::function<bool(wl_client*)>& rule)
    {
        mMayStart = rule;
    }
    /// Starts a drag of a wl_data_source, or cancels it where the rule forbids it. `image` follows the pointer; may be
    /// null.
    void start(wl_client* client, wl_resource* source, ClientSurface* image);
    /// Null while there is no drag, or one without an image.
    ClientSurface* image() const
    {
        return mSource == nullptr ? nullptr : mImage.data();
    }
    bool isActive() const
    {
        return mSource != nullptr;
    }
    /// `target` is the surface under the pointer, or null.
    void move(QWaylandSurface* target, const QPointF& position);
    void drop();

Q_SIGNALS:
    /// A drag has started or ended.
    void activeChanged();

private:
    /// A wl_data_device of the client under the pointer.
    struct Target
    {
        wl_resource* device;
        QPointer<DataOffer> offer;
        std::unique_ptr<ResourceListener> listener;
    };

    void enter(QWaylandSurface* surface, const QPointF& position);
    void leave();

    QWaylandSeat& mSeat;
    std::function<bool(wl_client*)> mMayStart;
    QPointer<DataSource> mSource;
    QPointer<ClientSurface> mImage;
    QPointer<QWaylandSurface> mFocus;
    std::vector<Target> mTargets;
};
