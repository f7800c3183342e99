// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QObject>
#include <QPointer>
#include <QSize>
#include <QString>
#include <QVector>

#include <cstdint>

class XdgSurface;
struct wl_client;
struct wl_resource;

/// An xdg_toplevel with its zxdg_toplevel_decoration_v1, if the client has created one. Deleted with its wl_resource.
class XdgToplevel : public QObject
{
    Q_OBJECT

public:
    ~XdgToplevel() override;

    /// Returns null when there is no memory.
    static XdgToplevel* create(XdgSurface& xdgSurface, uint32_t id);
    static XdgToplevel* of(wl_resource* resource);

    /// Null when the client disconnects.
    XdgSurface* xdgSurface() const
    {
        return mXdgSurface;
    }
    QString title() const
    {
        return mTitle;
    }
    QString appId() const
    {
        return mAppId;
    }
    XdgToplevel* parentToplevel() const
    {
        return mParent;
    }
    bool wantsFullScreen() const
    {
        return mWantsFullScreen;
    }

    /// `states` are of the enum xdg_toplevel.state.
    void sendConfigure(const QSize& size, const QVector<uint32_t>& states);
    void sendClose();
    /// See XdgSurface::admitCommit().
    bool admitCommit();

    wl_resource* decoration() const
    {
        return mDecoration;
    }
    /// Null when there is none any more.
    void setDecoration(wl_resource* decoration);
    /// Sets the mode that the client prefers, of the enum zxdg_toplevel_decoration_v1.mode.
    void setDecorationMode(uint32_t mode);

Q_SIGNALS:
    void titleChanged();
    void appIdChanged();
    void parentChanged();
    /// The client has requested a state or a decoration, and expects a configure event.
    void stateRequested();
    /// Emitted before the state of the window is discarded.
    void unmapped();

private:
    explicit XdgToplevel(XdgSurface& xdgSurface);

    static void setParent(wl_client* client, wl_resource* resource, wl_resource* parent);
    static void setTitle(wl_client* client, wl_resource* resource, const char* title);
    static void setAppId(wl_client* client, wl_resource* resource, const char* appId);
    static void showWindowMenu(wl_client* client, wl_resource* resource, wl_resource* seat, uint32_t serial, int32_t x,
                               int32_t y);
    static void move(wl_client* client, wl_resource* resource, wl_resource* seat, uint32_t serial);
    static void resize(wl_client* client, wl_resource* resource, wl_resource* seat, uint32_t serial, uint32_t edges);
    static void setMaxSize(wl_client* client, wl_resource* resource, int32_t width, int32_t height);
    static void setMinSize(wl_client* client, wl_resource* resource, int32_t width, int32_t height);
    static void requestConfigure(wl_client* client, wl_resource* resource);
    static void setFullScreen(wl_client* client, wl_resource* resource, wl_resource* output);
    static void unsetFullScreen(wl_client* client, wl_resource* resource);
    static void setMinimized(wl_client* client, wl_resource* resource);

    void assignParent(XdgToplevel* parent);
    void setSizeLimit(QSize& limit, const QSize& size);
    void handleMappedChanged();

    QPointer<XdgSurface> mXdgSurface;
    wl_resource* mResource = nullptr;
    wl_resource* mDecoration = nullptr;
    uint32_t mDecorationMode = 0;
    uint32_t mSentDecorationMode = 0;
    QString mTitle;
    QString mAppId;
    QPointer<XdgToplevel> mParent;
    bool mWantsFullScreen = false;
    /// 0 where there is no limit. Only checked: windows fill the screen.
    QSize mMinSize{0, 0};
    QSize mMaxSize{0, 0};
};
