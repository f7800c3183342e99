// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QMap>
#include <QPointF>
#include <QUdpSocket>

/// Puts fingers on a program whose Qt has loaded the plugin `tuiotouch`, by TUIO 1.1 over UDP.
class TuioSender
{
public:
    explicit TuioSender(quint16 port);

    /// Sends a frame: the fingers that are down, by their ids, at positions from 0 to 1 of the window.
    void send(const QMap<int, QPointF>& fingers);

private:
    QUdpSocket mSocket;
    quint16 mPort;
    int mFrame = 0;
};
