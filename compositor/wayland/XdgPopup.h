// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "wayland/XdgPositioner.h"

#include <QObject>
#include <QPointer>

#include <cstdint>
#include <optional>

class XdgSurface;

/// An xdg_popup. Deleted with its wl_resource.
class XdgPopup : public QObject
{
    Q_OBJECT

public:
    ~XdgPopup() override;

    /// Returns null when there is no memory.
    static XdgPopup* create(XdgSurface& xdgSurface, uint32_t id, XdgSurface& parent, const PopupRules& rules);

    /// Null when the client disconnects.
    XdgSurface* xdgSurface() const
    {
        return mXdgSurface;
    }
    /// Null when the client has destroyed it.
    XdgSurface* parentXdgSurface() const
    {
        return mParent;
    }
    const PopupRules& rules() const
    {
        return mRules;
    }
    /// Whether it has the keyboard focus while it is the topmost one.
    bool isGrabbing() const
    {
        return mIsGrabbing;
    }
    bool isDismissed() const
    {
        return mIsDismissed;
    }
    /// Whether it may be sent more than one configure event.
    bool isMovable() const;

    void sendConfigure(const QRect& geometry);
    /// Sends popup_done, but only once: the client may be one that does not read.
    void dismiss();

Q_SIGNALS:
    /// The client expects a configure event with a new rectangle.
    void placementRequested();

private:
    XdgPopup(XdgSurface& xdgSurface, XdgSurface& parent, const PopupRules& rules);

    static void destroy(wl_client* client, wl_resource* resource);
    static void grab(wl_client* client, wl_resource* resource, wl_resource* seat, uint32_t serial);
    static void reposition(wl_client* client, wl_resource* resource, wl_resource* positioner, uint32_t token);

    wl_resource* mResource = nullptr;
    QPointer<XdgSurface> mXdgSurface;
    QPointer<XdgSurface> mParent;
    PopupRules mRules;
    /// Of the last xdg_popup.reposition that no configure event has responded to.
    std::optional<uint32_t> mToken;
    bool mIsGrabbing = false;
    bool mIsDismissed = false;
};
