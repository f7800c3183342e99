// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "wayland/ServerSurface.h"

#include <QObject>
#include <QPointer>
#include <QRect>
#include <QVector>

#include <cstdint>
#include <optional>

class XdgPopup;
class XdgShell;
class XdgToplevel;

/// An xdg_surface, which becomes a window or a popup by the xdg_toplevel or xdg_popup that is created for it. Deleted
/// with its wl_resource.
class XdgSurface : public QObject
{
    Q_OBJECT

public:
    ~XdgSurface() override;

    /// Handles xdg_wm_base.get_xdg_surface.
    static void create(XdgShell& shell, wl_resource* shellObject, uint32_t id, wl_resource* surface);
    static XdgSurface* of(wl_resource* resource);

    /// Returns the xdg_wm_base that has created it.
    wl_resource* shellObject() const
    {
        return mShellObject;
    }
    wl_resource* resource() const
    {
        return mResource;
    }
    /// Null when the client has destroyed it.
    ServerSurface* surface() const
    {
        return mSurface;
    }
    /// Null when it is a popup or has no role yet, or the client has destroyed the window.
    XdgToplevel* toplevel() const;
    /// Null when it is a window or has no role yet, or the client has destroyed the popup.
    XdgPopup* popup() const;

    /// The popups that have this as their parent.
    QVector<XdgPopup*>& popups()
    {
        return mPopups;
    }

    /// Whether the client has made the initial commit, to which a configure event is the response.
    bool isInitialized() const
    {
        return mIsInitialized;
    }
    bool isMapped() const
    {
        return mIsMapped;
    }
    /// The part of the surface without the client's shadows.
    QRect windowGeometry() const;
    /// Returns the rectangle of the configure event to which the last commit responds.
    QRect popupGeometry() const
    {
        return mPopupGeometry;
    }

    /// Called by the xdg_toplevel or xdg_popup when it is destroyed.
    void removeRoleObject();
    /// Ends a configure sequence; `popupGeometry` is what it contains if this is a popup.
    void sendConfigure(const QRect& popupGeometry = QRect());
    /// Called before a wl_surface.commit takes effect. Returns false, and disconnects the client, when it may not.
    bool admitCommit(bool attachesBuffer);
    /// Called when the client destroys the wl_surface before this object.
    void rejectSurfaceDestruction();

Q_SIGNALS:
    void initialCommit();
    /// Emitted after each further commit.
    void committed();
    void mappedChanged();

private:
    struct Configure
    {
        uint32_t serial;
        QRect popupGeometry;
    };

    XdgSurface(XdgShell& shell, wl_resource* shellObject, ServerSurface* surface);

    static void destroy(wl_client* client, wl_resource* resource);
    static void getToplevel(wl_client* client, wl_resource* resource, uint32_t id);
    static void getPopup(wl_client* client, wl_resource* resource, uint32_t id, wl_resource* parent,
                         wl_resource* positioner);
    static void setWindowGeometry(wl_client* client, wl_resource* resource, int32_t x, int32_t y, int32_t width,
                                  int32_t height);
    static void ackConfigure(wl_client* client, wl_resource* resource, uint32_t serial);

    /// Returns whether the surface may be given `role`, and disconnects the client otherwise.
    bool takeRole(QWaylandSurfaceRole* role);
    void setRoleObject(QObject* object);
    /// Returns whether the request may be handled: its client is disconnected if the surface has never had a role, and
    /// the surface is inert when the window or popup is gone.
    bool isConstructed();
    void handleCommit();
    void setMapped(bool isMapped);
    void reset();

    XdgShell& mShell;
    wl_resource* const mShellObject;
    wl_resource* mResource = nullptr;
    QPointer<ServerSurface> mSurface;
    QPointer<QObject> mRoleObject;
    QVector<XdgPopup*> mPopups;
    bool mHasHadRole = false;
    bool mIsInitialized = false;
    bool mIsConfigured = false;
    bool mIsMapped = false;
    /// Not yet acknowledged, from the oldest to the latest.
    QVector<Configure> mConfigures;
    /// Of mConfigures, those that were sent before the surface was unmapped.
    int mStaleCount = 0;
    QRect mAcknowledgedGeometry;
    QRect mPopupGeometry;
    std::optional<QRect> mPendingGeometry;
    std::optional<QRect> mGeometry;
};
