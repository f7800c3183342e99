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
class QWaylandXdgSurface;
class QWaylandXdgToplevel;
class Scene;
class ViewList;

/// The clients' windows and popups: which of them are shown, where, and what lies under the pointer. Shown are the
/// window of the current view, beneath it the windows that it is a dialog of, and above it their popups.
class WindowStack : public QObject, public SceneLayer
{
    Q_OBJECT

public:
    struct Hit
    {
        ClientWindow* window = nullptr;
        ClientSurface* surface = nullptr;
        /// In the surface.
        QPointF position;
    };

    WindowStack(const Output& output, ViewList& views, Scene& scene, QObject* parent = nullptr);

    void addWindow(ClientWindow* window);
    void addPopup(ClientPopup* popup);

    /// Null when there is no view.
    ClientWindow* current() const;
    /// What takes input at `position`; all null when nothing does.
    Hit surfaceAt(const QPointF& position) const;
    void dismissPopups();
    /// Tells the clients that their contents have been shown.
    void sendFrameCallbacks();

    void paint(QPainter* painter) const override;

Q_SIGNALS:
    /// Another surface may lie under the pointer.
    void arrangementChanged();
    /// current() has changed, and all windows have been configured.
    void currentChanged();

private:
    ClientWindow* windowOf(const QWaylandXdgToplevel* toplevel) const;
    /// From the bottom to the top.
    QVector<ClientWindow*> visibleWindows() const;
    QVector<ClientPopup*> visiblePopups() const;
    ClientWindow* windowOfPopup(const ClientPopup* popup) const;
    QPoint originOf(const QWaylandXdgSurface* xdgSurface) const;
    QPoint surfacePosition(const QWaylandXdgSurface* xdgSurface) const;
    QRect frameOf(const ClientWindow* window) const;

    void configureAll();
    void handleCurrentChanged();
    void handleCommit(const QObject* source);
    void updateContents();

    const Output& mOutput;
    ViewList& mViews;
    Scene& mScene;
    QVector<ClientWindow*> mWindows;
    /// In the order of their opening.
    QVector<ClientPopup*> mPopups;
    /// Where everything was when it was painted last.
    QVector<QRect> mArrangement;
};
