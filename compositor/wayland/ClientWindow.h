// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "wayland/ClientSurface.h"
#include "wayland/XdgSurface.h"
#include "wayland/XdgToplevel.h"

#include <QElapsedTimer>
#include <QObject>
#include <QPointer>
#include <QRect>
#include <QSize>

class ClientLiveness;
class ViewList;

/// An xdg_toplevel. While it is mapped it is a view of the ViewList.
class ClientWindow : public QObject
{
    Q_OBJECT

public:
    ClientWindow(XdgToplevel* toplevel, ClientLiveness* liveness, ViewList& views, QObject* parent);
    ~ClientWindow() override;

    /// Empty while the window is not mapped.
    QString uuid() const
    {
        return mUuid;
    }
    bool isMapped() const
    {
        return !mUuid.isEmpty();
    }
    /// Null when the client has destroyed it.
    ClientSurface* surface() const
    {
        return mSurface;
    }
    const XdgSurface* xdgSurface() const
    {
        return mXdgSurface;
    }
    /// The process name of a client that sets none.
    QString appId() const;
    const XdgToplevel* parentToplevel() const;
    const XdgToplevel* toplevel() const
    {
        return mToplevel;
    }
    /// The part of the surface without the client's shadows.
    QRect windowGeometry() const;
    /// Whether the client has requested the state fullscreen.
    bool wantsFullScreen() const;
    /// Asks the client to close the window.
    void close();

    bool isResponding() const;
    /// See ClientLiveness::isBehind().
    bool isBehind() const;
    /// See ClientLiveness::ping().
    void ping();
    /// See ClientLiveness::admitEvent().
    bool admitEvent();

    /// Ends the client's process, which does not respond.
    void endProcess() const;
    /// Returns whether the client has drawn the window in the size that it was configured to, or has had the time for
    /// it.
    bool isSettled() const;

    /// Sends a configure event if the size or the states have changed. Nothing is sent before the client's initial
    /// commit. The event for a client that does not respond is delayed until it does: events that it does not read
    /// would fill its connection.
    void configure(const QSize& size, bool isFullScreen, bool isActivated);

Q_SIGNALS:
    void committed();
    /// See ClientLiveness::caughtUp().
    void caughtUp();
    /// The client has requested a state, or its parent window or its application has changed.
    void configureRequested();

private:
    void handleStateRequest();
    void handleMappedChanged();
    void handleCaughtUp();
    void map();
    void unmap();
    void sendConfigure();

    QPointer<XdgToplevel> mToplevel;
    QPointer<XdgSurface> mXdgSurface;
    QPointer<ClientSurface> mSurface;
    QPointer<ClientLiveness> mLiveness;
    ViewList& mViews;
    QString mUuid;
    QString mProcessName;
    QSize mSize;
    QVector<uint32_t> mStates;
    bool mConfigureIsDue = false;
    QElapsedTimer mSinceConfigure;
};
