// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "RemoteDesktop.h"

#include "ChildProcess.h"

#include <QDataStream>

#include <stdexcept>

RemoteDesktop::RemoteDesktop(quint16 port)
{
    mSocket.connectToHost(QStringLiteral("127.0.0.1"), port);
    // Each side names the version; then the server offers its security, and after the client's init its geometry.
    read(12);
    send("RFB 003.003\n");
    read(4);
    send(QByteArray("\1", 1));
    const QByteArray init = read(24);
    QDataStream geometry(init);
    quint16 width = 0;
    quint16 height = 0;
    quint32 nameSize = 0;
    geometry >> width >> height;
    geometry.skipRawData(16);
    geometry >> nameSize;
    read(static_cast<int>(nameSize));
    mSize = QSize(width, height);
    // The server's own format of pixels, without which Qt's server crashes, and one encoding: raw.
    send(QByteArray(4, '\0') + init.mid(4, 16));
    send(QByteArray("\2\0\0\1\0\0\0\0", 8));
}

void RemoteDesktop::send(const QByteArray& message)
{
    mSocket.write(message);
    mSocket.flush();
}

QByteArray RemoteDesktop::read(int size)
{
    while (mSocket.bytesAvailable() < size) {
        if (!mSocket.waitForReadyRead(ChildProcess::cDeadline)) {
            throw std::runtime_error("no answer from the remote frame buffer");
        }
    }
    return mSocket.read(size);
}

void RemoteDesktop::key(quint32 keysym, bool isDown)
{
    QByteArray message;
    QDataStream(&message, QIODevice::WriteOnly) << quint8(4) << quint8(isDown ? 1 : 0) << quint16(0) << keysym;
    send(message);
}

void RemoteDesktop::type(quint32 keysym)
{
    key(keysym, true);
    key(keysym, false);
}

void RemoteDesktop::click(int x, int y)
{
    for (const bool isPressed : {false, true, false}) {
        QByteArray message;
        QDataStream(&message, QIODevice::WriteOnly)
            << quint8(5) << quint8(isPressed ? 1 : 0) << quint16(x) << quint16(y);
        send(message);
    }
}

QImage RemoteDesktop::picture()
{
    QByteArray request;
    QDataStream(&request, QIODevice::WriteOnly)
        << quint8(3) << quint8(0) << quint16(0) << quint16(0) << quint16(mSize.width()) << quint16(mSize.height());
    send(request);
    QImage image(mSize, QImage::Format_RGB32);
    QDataStream header(read(4));
    quint16 count = 0;
    header.skipRawData(2);
    header >> count;
    for (int i = 0; i < count; ++i) {
        QDataStream rect(read(12));
        quint16 x = 0;
        quint16 y = 0;
        quint16 width = 0;
        quint16 height = 0;
        rect >> x >> y >> width >> height;
        // Raw: 32 bits for each pixel, in the bytes' order of this machine.
        for (int row = 0; row < height; ++row) {
            const QByteArray line = read(width * 4);
            memcpy(image.scanLine(y + row) + x * 4, line.constData(), static_cast<std::size_t>(line.size()));
        }
    }
    return image;
}
