// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "wayland/ClientPopup.h"

#include "wayland/PopupPlacement.h"

ClientPopup::ClientPopup(XdgPopup* popup, QObject* parent)
    : QObject(parent)
    , mPopup(popup)
    , mXdgSurface(popup->xdgSurface())
    , mSurface(ClientSurface::of(mXdgSurface->surface()))
    , mClient(mXdgSurface->surface()->client())
{
    connect(mSurface, &ClientSurface::committed, this, &ClientPopup::committed);
    connect(mXdgSurface, &XdgSurface::initialCommit, this, &ClientPopup::placementRequested);
    connect(mXdgSurface, &XdgSurface::mappedChanged, this, &ClientPopup::mappedChanged);
    connect(popup, &XdgPopup::placementRequested, this, &ClientPopup::placementRequested);
    connect(popup, &QObject::destroyed, this, &QObject::deleteLater);
}

void ClientPopup::place(const QRect& bounds)
{
    mGeometry = PopupPlacement::place(mPopup->rules(), bounds);
    mPopup->sendConfigure(mGeometry);
}

void ClientPopup::replace(const QRect& bounds)
{
    if (PopupPlacement::place(mPopup->rules(), bounds) != mGeometry) {
        place(bounds);
    }
}

void ClientPopup::dismiss()
{
    if (mPopup != nullptr) {
        mPopup->dismiss();
    }
}
