// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "shell/SceneLayer.h"

#include <QObject>
#include <QPointF>
#include <QRect>
#include <QVector>

class ClientPopup;
class ClientSurface;
class ClientWindow;
class Output;
class Scene;
class ViewList;
class XdgSurface;
class XdgToplevel;

/// The clients' windows and popups: which of them are visible, where, and which surface is under the pointer. Visible
/// are the panel and the window of the current view, below it the parents of a dialog, and above it their popups.
class WindowStack : public QObject, public SceneLayer
{
    Q_OBJECT

public:
    struct Hit
    {
        ClientWindow* window = nullptr;
        ClientSurface* surface = nullptr;
        /// In the surface's coordinates.
        QPointF position;
    };

    WindowStack(Output& output, ViewList& views, Scene& scene, QObject* parent = nullptr);

    void addWindow(ClientWindow* window);
    void addPopup(ClientPopup* popup);

    /// Null when there is no view.
    ClientWindow* current() const;
    /// Returns the surface that receives keys: that of the topmost popup with a grab, or else that of the current
    /// window. Null when there is none.
    ClientSurface* keyboardSurface() const;
    /// Returns the geometry of the current view's window on the output; empty when it has none.
    QRect currentFrame() const;
    /// Returns false while the size of the current view's window is about to change.
    bool isSettled() const;
    /// See ClientLiveness::isBehind().
    bool isBehind() const;
    /// Returns the surface that receives input at `position`; all null where none does.
    Hit surfaceAt(const QPointF& position) const;
    /// Dismisses the popups of all clients but the one whose surface has been pressed, if any.
    void dismissPopups(const Hit& pressed);
    /// Returns whether the view has a window, which its client can be asked to close.
    bool canClose(const QString& uuid) const;
    /// Asks the client to close the window of the view, if it has one, or ends a client that does not respond.
    void close(const QString& uuid);
    /// Sends the frame callbacks of all visible surfaces.
    void sendFrameCallbacks();
    /// Whether a visible surface has a zwp_idle_inhibitor_v1.
    bool inhibitsIdle() const;

    QRegion update() override;
    void paint(QPainter* painter) const override;
    QRegion opaqueRegion() const override;

Q_SIGNALS:
    /// The surface under the pointer may have changed.
    void arrangementChanged();
    /// current() has changed, and all windows have been configured.
    void currentChanged();
    /// keyboardSurface() may have changed.
    void keyboardSurfaceChanged();

private:
    ClientWindow* windowOf(const XdgToplevel* toplevel) const;
    /// Null when the view has no window.
    ClientWindow* windowOfView(const QString& uuid) const;
    /// Null when there is none.
    ClientWindow* panel() const;
    /// Whether a window is the panel, or will be when it is mapped.
    bool isPanel(const ClientWindow* window) const;
    /// The windows of the current view, from the bottom to the top.
    QVector<ClientWindow*> stackedWindows() const;
    /// As above, with the panel.
    QVector<ClientWindow*> visibleWindows() const;
    /// The work area and the panel.
    QRegion visibleArea() const;
    QVector<ClientPopup*> visiblePopups() const;
    ClientWindow* windowOfPopup(const ClientPopup* popup) const;
    QPoint originOf(const XdgSurface* xdgSurface) const;
    QPoint surfacePosition(const XdgSurface* xdgSurface) const;
    /// Returns what a window may fill.
    QRect areaOf(const ClientWindow* window) const;
    /// Returns the place of a window that has the size `size`.
    QRect frameOf(const ClientWindow* window, const QSize& size) const;
    /// Returns the space for a popup, relative to its parent's window geometry.
    QRect boundsOf(const ClientPopup* popup) const;

    void configureAll();
    void replaceReactivePopups();
    void handleCurrentChanged();
    void handleCommit(const QObject* source);
    /// To be called when other surfaces are visible than before.
    void rearrange();

    Output& mOutput;
    ViewList& mViews;
    Scene& mScene;
    QVector<ClientWindow*> mWindows;
    /// In the order in which they were opened.
    QVector<ClientPopup*> mPopups;
    /// The rectangles of the visible surfaces in the last frame.
    QVector<QRect> mArrangement;
    bool mIsRearranged = false;
};
