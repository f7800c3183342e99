// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "wayland/ClientSurface.h"
#include "wayland/ResourceListener.h"

#include <QObject>
#include <QPointer>
#include <QRect>
#include <QWaylandXdgPopup>
#include <QWaylandXdgSurface>

/// An xdg_popup: a menu, a combo box's list or a tool tip, shown beside its parent.
class ClientPopup : public QObject
{
    Q_OBJECT

public:
    /// Deletes `popup` when its xdg_popup, `resource`, is destroyed, which Qt does not do.
    ClientPopup(QWaylandXdgPopup* popup, wl_resource* resource, QWaylandXdgSurface* xdgSurface, QObject* parent);

    QWaylandXdgSurface* xdgSurface() const
    {
        return mXdgSurface;
    }
    QWaylandXdgSurface* parentXdgSurface() const
    {
        return mParentXdgSurface;
    }
    /// Null when the client has destroyed it.
    ClientSurface* surface() const
    {
        return mSurface;
    }
    /// Whether neither the client has destroyed the popup nor the compositor has dismissed it.
    bool isOpen() const
    {
        return mSurface != nullptr && !mIsDismissed;
    }
    /// To be compared only: the client may have disconnected.
    const QWaylandClient* client() const
    {
        return mClient;
    }

    /// Places the popup within `bounds`, which are relative to the parent's window geometry.
    void place(const QRect& bounds);
    /// Relative to the parent's window geometry.
    QPoint position() const
    {
        return mGeometry.topLeft();
    }
    /// Dismisses the popup. Sends popup_done only once: the client may be one that does not read.
    void dismiss();

Q_SIGNALS:
    void committed();

private:
    QPointer<QWaylandXdgPopup> mPopup;
    QPointer<QWaylandXdgSurface> mXdgSurface;
    QPointer<QWaylandXdgSurface> mParentXdgSurface;
    QPointer<ClientSurface> mSurface;
    const QWaylandClient* mClient;
    QRect mGeometry;
    bool mIsDismissed = false;
    ResourceListener mResourceListener;
};
