// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "wayland/ClientSurface.h"

#include <QObject>
#include <QPointer>
#include <QRect>
#include <QWaylandXdgPopup>
#include <QWaylandXdgSurface>

/// A menu, a list of choices or a tool tip of a client: shown at its place beside its parent.
class ClientPopup : public QObject
{
    Q_OBJECT

public:
    ClientPopup(QWaylandXdgPopup* popup, QWaylandXdgSurface* xdgSurface, QObject* parent);

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
    /// As long as neither side has ended it.
    bool isOpen() const
    {
        return mSurface != nullptr && !mIsDismissed;
    }
    /// For a comparison only: the client may be gone.
    const QWaylandClient* client() const
    {
        return mClient;
    }

    /// Chooses the place within \a bounds, which are relative to the parent's window geometry.
    void place(const QRect& bounds);
    /// Relative to the parent's window geometry.
    QPoint position() const
    {
        return mGeometry.topLeft();
    }
    /// Ends it from this side. The client is told once: it may be one that does not read.
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
};
