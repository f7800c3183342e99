// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "wayland/ClientSurface.h"

#include <QObject>
#include <QPointer>
#include <QRect>
#include <QSize>
#include <QWaylandXdgSurface>
#include <QWaylandXdgToplevel>

class ClientLiveness;
class ViewList;

/// One window of a client. While it is mapped it is a view of the list.
class ClientWindow : public QObject
{
    Q_OBJECT

public:
    ClientWindow(QWaylandXdgToplevel* toplevel, QWaylandXdgSurface* xdgSurface, ClientLiveness* watch, ViewList& views,
                 QObject* parent);
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
    QWaylandXdgSurface* xdgSurface() const
    {
        return mXdgSurface;
    }
    QWaylandXdgToplevel* parentToplevel() const;
    QWaylandXdgToplevel* toplevel() const
    {
        return mToplevel;
    }
    /// The part of the surface that is the window itself, without shadows.
    QRect windowGeometry() const;

    bool isResponding() const;
    /// To be called when there is an occasion to ask the client whether it is still there.
    void ping();
    /// As ClientLiveness::admitEvent().
    bool admitEvent();

    /// Tells the client its size and states, if they are new to it. A client that does not respond is told later: what
    /// it does not read would fill its connection.
    void configure(const QSize& size, bool isFullScreen, bool isActivated);

Q_SIGNALS:
    void committed();
    /// The client has read again after events were held back from it.
    void caughtUp();
    /// The client has asked for another state or has got another parent.
    void configureRequested();

private:
    void handleContentChanged();
    void handleCommit();
    void handleCaughtUp();
    void map();
    void unmap();
    QString appId() const;
    void sendConfigure();

    QPointer<QWaylandXdgToplevel> mToplevel;
    QPointer<QWaylandXdgSurface> mXdgSurface;
    QPointer<ClientSurface> mSurface;
    QPointer<ClientLiveness> mWatch;
    ViewList& mViews;
    QString mUuid;
    QString mProcessName;
    QSize mSize;
    QVector<QWaylandXdgToplevel::State> mStates;
    bool mConfigureIsDue = false;
};
