// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "wayland/ResourceListener.h"

#include <QElapsedTimer>
#include <QObject>
#include <QPointer>
#include <QTimer>
#include <QWaylandClient>

#include <memory>

class XdgShell;

/// Whether a client responds to xdg_wm_base.ping, and how many events may be sent to it that it has not read. A client
/// with a mapped window is pinged once a second, others only on occasions.
class ClientLiveness : public QObject
{
    Q_OBJECT

public:
    ClientLiveness(const XdgShell& shell, QWaylandClient* client, QObject* parent);

    /// Sets the xdg_wm_base to ping: a client may bind several and serve only the one that it has created its window
    /// with.
    void setShellObject(wl_resource* object);

    bool isResponding() const
    {
        return mResponding;
    }

    /// To be called when a window of the client is mapped and when it is unmapped.
    void addWindow();
    void removeWindow();

    /// Sends a ping, unless a pong is already due.
    void ping();
    /// Must be asked before an input or configure event. Returns false when the client does not respond or has left
    /// too many events unread: libwayland disconnects a client whose connection is full.
    bool admitEvent();

    /// Returns whether the client responds but has left so many events unread that admitEvent() will soon return false.
    bool isBehind() const;

Q_SIGNALS:
    void respondingChanged();
    /// The client has responded after admitEvent() had returned false.
    void caughtUp();

private:
    void handlePong(uint serial);
    void handleSecond();
    void setResponding(bool responding);

    QPointer<QWaylandClient> mClient;
    /// Null when the client has destroyed it.
    wl_resource* mShellObject = nullptr;
    std::unique_ptr<ResourceListener> mShellListener;
    bool mWaiting = false;
    bool mResponding = true;
    uint mSerial = 0;
    /// Events that no pong has confirmed as read, and those of them sent after the last ping.
    int mUnconfirmed = 0;
    int mSincePingCount = 0;
    bool mHeldBack = false;
    QElapsedTimer mSincePing;
    int mWindows = 0;
    /// Runs while a pong is due or a window is mapped, and no longer when the client does not respond.
    QTimer mSeconds;
    /// Since the ping. Counted rather than measured: while the compositor is blocked, no client can respond.
    int mPassedSeconds = 0;
};
