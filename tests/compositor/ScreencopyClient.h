// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "WireClient.h"

#include <QImage>

/// A WireClient with zwlr_screencopy_frame_v1 objects.
class ScreencopyClient : public WireClient
{
public:
    enum Event : quint16
    {
        Buffer,
        Flags,
        Ready,
        Failed,
        Damage,
        LinuxDmabuf,
        BufferDone,
    };

    explicit ScreencopyClient(const QString& socketPath, quint32 version = 3);

    quint32 manager() const
    {
        return mManager;
    }
    /// A frame of the whole output, and one of a part of it.
    quint32 capture();
    quint32 capture(qint32 x, qint32 y, qint32 width, qint32 height);
    /// Creates a buffer as the frame's buffer event describes it, with all bytes 0.
    quint32 createFrameBuffer(quint32 frame);
    void copy(quint32 frame, quint32 buffer);
    void copyWithDamage(quint32 frame, quint32 buffer);

    /// The opcodes of the frame's events, after a round trip.
    QVector<quint16> opcodes(quint32 frame);
    /// Whether the frame is ready or has failed.
    bool hasEnded(quint32 frame);
    /// The rectangle of the frame's damage event.
    QRect damageOf(quint32 frame) const;
    /// The picture in the latest buffer, which was created for the frame.
    QImage picture(quint32 frame) const;

private:
    quint32 mManager;
    quint32 mOutput;
};
