// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "TuioSender.h"

#include <QDataStream>

namespace {

/// A string of Open Sound Control: terminated, and padded to four bytes.
QByteArray oscText(const QByteArray& text)
{
    return text + QByteArray(4 - text.size() % 4, '\0');
}

/// A message of the profile for cursors. The arguments that follow `command` are in `values`.
QByteArray oscMessage(const QByteArray& command, const QByteArray& types, const QByteArray& values)
{
    const QByteArray message = oscText("/tuio/2Dcur") + oscText(",s" + types) + oscText(command) + values;
    QByteArray size;
    QDataStream(&size, QIODevice::WriteOnly) << qint32(message.size());
    return size + message;
}

} // namespace

TuioSender::TuioSender(quint16 port)
    : mPort(port)
{
}

void TuioSender::send(const QMap<int, QPointF>& fingers)
{
    QByteArray alive;
    QDataStream aliveStream(&alive, QIODevice::WriteOnly);
    QByteArray positions;
    for (auto finger = fingers.cbegin(); finger != fingers.cend(); ++finger) {
        aliveStream << qint32(finger.key());
        QByteArray values;
        QDataStream stream(&values, QIODevice::WriteOnly);
        stream.setFloatingPointPrecision(QDataStream::SinglePrecision);
        stream << qint32(finger.key()) << float(finger->x()) << float(finger->y()) << 0.0F << 0.0F << 0.0F;
        positions += oscMessage("set", "ifffff", values);
    }
    QByteArray frame;
    QDataStream(&frame, QIODevice::WriteOnly) << qint32(++mFrame);
    // The time tag 1 is "immediately".
    const QByteArray timeTag("\0\0\0\0\0\0\0\1", 8);
    mSocket.writeDatagram(oscText("#bundle") + timeTag + oscMessage("alive", QByteArray(fingers.size(), 'i'), alive)
                              + positions + oscMessage("fseq", "i", frame),
                          QHostAddress::LocalHost, mPort);
}
