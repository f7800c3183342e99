// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "wayland/SurfacePixels.h"

#include <QPointer>
#include <QRegion>
#include <QVector>
#include <QWaylandBufferRef>
#include <QWaylandView>

#include <ctime>
#include <memory>

class QPainter;
class QWaylandSurface;

/// A wl_surface with its tree of subsurfaces.
class ClientSurface : public QWaylandView
{
    Q_OBJECT

public:
    ClientSurface(QWaylandSurface* surface, std::shared_ptr<PixelBudget> budget, QObject* parent);
    ~ClientSurface() override;

    /// Returns null when `surface` is null or destroyed.
    static ClientSurface* of(const QWaylandSurface* surface);

    /// In surface coordinates; empty while there is no content.
    QSize size() const
    {
        return mPixels.size();
    }

    /// Returns the rectangle around this surface and its subsurfaces, as committed and in surface coordinates.
    QRect bounds() const;

    /// Reads what was committed since the last call, in the whole tree. Returns the changed region in surface
    /// coordinates.
    QRegion update();
    void paint(QPainter* painter, const QPoint& position) const;
    /// Returns the part in which paint() leaves nothing of what is below, in surface coordinates.
    QRect opaqueRect() const
    {
        return mPixels.opaqueRect();
    }
    /// Sends wl_surface.frame callbacks and presentation feedback: the content of the tree has been shown at `time`.
    void sendFrameCallbacks(const timespec& time);
    /// Whether a surface of this tree has a zwp_idle_inhibitor_v1.
    bool inhibitsIdle() const;
    /// Returns the surface of this tree that takes input at `position`, which is mapped to `localPosition`, or null.
    ClientSurface* surfaceAt(const QPointF& position, QPointF* localPosition);

    /// Whether this is a subsurface.
    bool hasParent() const
    {
        return mParent != nullptr;
    }
    const ClientSurface* parentSurface() const
    {
        return mParent;
    }
    /// Whether `other` is this surface or below it in its tree.
    bool contains(const ClientSurface* other) const;
    /// Makes a tree that does not contain this surface one of its subsurfaces, above all others. What would make the
    /// whole tree too high is not shown.
    void addChild(ClientSurface* child);
    /// Detaches a subsurface from its parent, at once.
    void leaveParent();
    /// Moves a subsurface within its parent.
    void move(const QPoint& position);
    /// Moves a subsurface directly above or below `sibling`. Returns false if that is neither the parent nor a child
    /// of it.
    bool placeAbove(const ClientSurface* sibling);
    bool placeBelow(const ClientSurface* sibling);

    void bufferCommitted(const QWaylandBufferRef& buffer, const QRegion& damage) override;

Q_SIGNALS:
    /// A surface of the tree was committed or the tree has changed.
    void committed();

private:
    struct Layer
    {
        ClientSurface* surface;
        QPoint position;

        bool operator==(const Layer& other) const
        {
            return surface == other.surface && position == other.position;
        }
    };
    using Layers = QVector<Layer>;

    static Layers::iterator find(Layers& layers, const ClientSurface* surface);
    int ancestorCount() const;
    int height() const;
    void removeChild(const ClientSurface* child);
    bool place(const ClientSurface* child, const ClientSurface* sibling, int offset);
    void damageAll();
    void handleCommit();

    SurfacePixels mPixels;
    QRegion mDamage;
    QPointer<ClientSurface> mParent;
    /// The subsurfaces and, between those below and those above, the surface itself; from bottom to top.
    Layers mLayers;
    /// Become the layers with the next commit of this surface.
    Layers mNextLayers;
};
