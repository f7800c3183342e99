// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QImage>
#include <QTcpSocket>

/// A person at a remote frame buffer (RFB 3.3).
class RemoteDesktop
{
public:
    explicit RemoteDesktop(quint16 port);

    /// The numbers are X11's keysyms.
    void key(quint32 keysym, bool isDown);
    void type(quint32 keysym);
    void click(int x, int y);
    QImage picture();

private:
    void send(const QByteArray& message);
    QByteArray read(int size);

    QTcpSocket mSocket;
    QSize mSize;
};
