// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "wayland/ClientSurface.h"
#include "wayland/XdgPopup.h"
#include "wayland/XdgSurface.h"

#include <QObject>
#include <QPointer>
#include <QRect>

/// An xdg_popup: a menu, a combo box's list or a tool tip, shown beside its parent.
class ClientPopup : public QObject
{
    Q_OBJECT

public:
    ClientPopup(XdgPopup* popup, QObject* parent);

    const XdgSurface* xdgSurface() const
    {
        return mXdgSurface;
    }
    const XdgSurface* parentXdgSurface() const
    {
        return mPopup == nullptr ? nullptr : mPopup->parentXdgSurface();
    }
    /// Null when the client has destroyed it.
    ClientSurface* surface() const
    {
        return mSurface;
    }
    /// Whether the popup is mapped and has not been dismissed.
    bool isOpen() const
    {
        return mSurface != nullptr && mPopup != nullptr && !mPopup->isDismissed() && mXdgSurface->isMapped();
    }
    /// Whether it is open and has the keyboard focus while it is the topmost one.
    bool isGrabbing() const
    {
        return isOpen() && mPopup->isGrabbing();
    }
    /// Whether it is placed anew when its bounds change.
    bool isReactive() const
    {
        return isOpen() && mPopup->rules().isReactive && mPopup->isMovable();
    }
    /// Returns the size that the client expects the parent to have; empty for the one that it has.
    QSize parentSize() const
    {
        return mPopup == nullptr ? QSize() : mPopup->rules().parentSize;
    }
    /// To be compared only: the client may have disconnected.
    const QWaylandClient* client() const
    {
        return mClient;
    }

    /// Sends a configure event with the popup's place within `bounds`, which are relative to the parent's window
    /// geometry.
    void place(const QRect& bounds);
    /// As place(), but only if the place is another one than that of the last event.
    void replace(const QRect& bounds);
    /// Relative to the parent's window geometry.
    QPoint position() const
    {
        return mXdgSurface == nullptr ? QPoint() : mXdgSurface->popupGeometry().topLeft();
    }
    void dismiss();

Q_SIGNALS:
    void committed();
    /// The popup has been mapped or unmapped.
    void mappedChanged();
    /// The client expects place() to be called.
    void placementRequested();

private:
    QPointer<XdgPopup> mPopup;
    QPointer<XdgSurface> mXdgSurface;
    QPointer<ClientSurface> mSurface;
    const QWaylandClient* mClient;
    QRect mGeometry;
};
