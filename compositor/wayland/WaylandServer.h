// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "wayland/RequestGuard.h"

#include <QHash>
#include <QWaylandCompositor>
#include <QWaylandOutput>
#include <QWaylandViewporter>

#include <QWaylandXdgDecorationManagerV1>
#include <QWaylandXdgShell>
#include <memory>

class ClientLiveness;
class XdgOutput;
class Output;
class ViewList;
class WindowStack;

/// The Wayland side: speaks the protocols and turns the clients' surfaces into windows and popups of the stack.
class WaylandServer : public QWaylandCompositor
{
    Q_OBJECT

public:
    WaylandServer(const Output& output, QWindow& window, ViewList& views, WindowStack& stack);
    ~WaylandServer() override;

    /// Opens the socket.
    void start(const QByteArray& socketName);
    RequestGuard& guard()
    {
        return mGuard;
    }

protected:
    QWaylandSeat* createSeat() override;

private:
    void addWindow(QWaylandXdgToplevel* toplevel, QWaylandXdgSurface* xdgSurface);
    void addPopup(QWaylandXdgPopup* popup, QWaylandXdgSurface* xdgSurface);
    ClientLiveness* watchOf(QWaylandClient* client);
    void describeOutput();
    void focusCurrent();

    const Output& mGeometry;
    ViewList& mViews;
    WindowStack& mStack;
    QWaylandOutput mOutput;
    QWaylandXdgShell mShell;
    RequestGuard mGuard;
    QWaylandXdgDecorationManagerV1 mDecorations;
    QWaylandViewporter mViewporter;
    std::unique_ptr<XdgOutput> mXdgOutput;
    QHash<QWaylandClient*, ClientLiveness*> mWatches;
};
