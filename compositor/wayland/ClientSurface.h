// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QImage>
#include <QPointer>
#include <QRegion>
#include <QVector>
#include <QWaylandBufferRef>
#include <QWaylandView>

class QPainter;
class QWaylandSurface;

/// One surface of a client with its subsurfaces. Keeps its own copy of the pixels, so that a client that hangs, dies or
/// takes its memory away can neither disturb the painting nor leave a hole.
class ClientSurface : public QWaylandView
{
    Q_OBJECT

public:
    ClientSurface(QWaylandSurface* surface, QObject* parent);
    ~ClientSurface() override;

    /// Null when \a surface is null or already gone.
    static ClientSurface* of(const QWaylandSurface* surface);

    /// In the output's pixels; empty while there is no content.
    QSize size() const
    {
        return mSize;
    }
    QImage image() const
    {
        return mImage;
    }

    /// Takes over what was committed since the last call; answers the changed part in the surface's own coordinates.
    QRegion update();
    void paint(QPainter* painter, const QPoint& position) const;
    /// Tells the client that its content has been shown.
    void sendFrameCallbacks();
    /// The surface of this tree that takes input at \a position, and the place in it; null when there is none.
    ClientSurface* surfaceAt(const QPointF& position, QPointF* localPosition);

    /// Whether it is a part of another surface.
    bool hasParent() const
    {
        return mParent != nullptr;
    }
    /// Ends being one.
    void leaveParent();

    void bufferCommitted(const QWaylandBufferRef& buffer, const QRegion& damage) override;

Q_SIGNALS:
    /// Something of the tree has changed: there is a reason for a new frame.
    void committed();

private:
    struct Child
    {
        ClientSurface* surface;
        QPoint position;
    };
    using Children = QVector<Child>;

    void addChild(QWaylandSurface* surface);
    bool contains(const ClientSurface* other) const;
    int ancestorCount() const;
    int height() const;
    void removeChild(const ClientSurface* child);
    void moveChild(const ClientSurface* child, const QPoint& position);
    void restackChild(const ClientSurface* child, const QWaylandSurface* sibling, bool above);
    void damageAll();
    QRegion takeBuffer();
    /// Whether a copy of that size is within what one client may take.
    bool hasRoomFor(const QSize& size) const;
    void setImage(const QImage& image);
    void copyPixels(const QImage& source, const QRegion& damage, int scale);

    QWaylandBufferRef mCommittedBuffer;
    QRegion mCommittedDamage;
    bool mHasCommit = false;

    /// Only to tell the clients apart.
    const QWaylandClient* mClient;
    QImage mImage;
    QSize mSize;
    QRectF mSource;
    QRegion mDamage;
    QPointer<ClientSurface> mParent;
    /// From bottom to top.
    Children mChildrenBelow;
    Children mChildrenAbove;
};
