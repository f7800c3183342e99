// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "wayland/ClientPopup.h"

#include "wayland/PopupPlacement.h"

#include <QWaylandSurface>

ClientPopup::ClientPopup(QWaylandXdgPopup* popup, wl_resource* resource, QWaylandXdgSurface* xdgSurface,
                         QObject* parent)
    : QObject(parent)
    , mPopup(popup)
    , mXdgSurface(xdgSurface)
    , mParentXdgSurface(popup->parentXdgSurface())
    , mSurface(ClientSurface::of(xdgSurface->surface()))
    , mClient(xdgSurface->surface()->client())
    , mGeometry(popup->unconstrainedPosition(), popup->positionerSize())
    , mResourceListener(resource, [this] {
        delete mPopup;
    })
{
    connect(mSurface, &ClientSurface::committed, this, &ClientPopup::committed);
    connect(popup, &QObject::destroyed, this, &QObject::deleteLater);
    connect(xdgSurface, &QObject::destroyed, this, &QObject::deleteLater);
    connect(xdgSurface->surface(), &QWaylandSurface::surfaceDestroyed, this, &QObject::deleteLater);
}

void ClientPopup::place(const QRect& bounds)
{
    const QRect geometry = PopupPlacement::place(*mPopup, bounds);
    if (geometry != mGeometry) {
        mGeometry = geometry;
        mPopup->sendConfigure(geometry);
    }
}

void ClientPopup::dismiss()
{
    if (!mIsDismissed && mPopup != nullptr) {
        mIsDismissed = true;
        mPopup->sendPopupDone();
    }
}
