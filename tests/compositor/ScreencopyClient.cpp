// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "ScreencopyClient.h"

#include <stdexcept>
#include <unistd.h>
#include <wlr-screencopy-unstable-v1-client-protocol.h>

ScreencopyClient::ScreencopyClient(const QString& socketPath, quint32 version)
    : WireClient(socketPath)
    , mManager(bind("zwlr_screencopy_manager_v1", version))
    , mOutput(bind("wl_output"))
{
}

quint32 ScreencopyClient::capture()
{
    const quint32 frame = newId();
    send(WireMessage(mManager, ZWLR_SCREENCOPY_MANAGER_V1_CAPTURE_OUTPUT).number(frame).number(0U).number(mOutput));
    return frame;
}

quint32 ScreencopyClient::capture(qint32 x, qint32 y, qint32 width, qint32 height)
{
    const quint32 frame = newId();
    send(WireMessage(mManager, ZWLR_SCREENCOPY_MANAGER_V1_CAPTURE_OUTPUT_REGION)
             .number(frame)
             .number(1U)
             .number(mOutput)
             .number(x)
             .number(y)
             .number(width)
             .number(height));
    return frame;
}

quint32 ScreencopyClient::createFrameBuffer(quint32 frame)
{
    synchronise();
    const QVector<WireClient::Event> offers = events(frame, Buffer);
    if (offers.size() != 1) {
        throw std::runtime_error("the frame has no buffer event");
    }
    const auto number = [&offers](int index) {
        return static_cast<qint32>(offers.first().number(index));
    };
    const qint32 bytes = number(2) * number(3);
    return createBuffer(createPool(bytes, bytes), number(1), number(2), number(3), offers.first().number(0));
}

void ScreencopyClient::copy(quint32 frame, quint32 buffer)
{
    send(WireMessage(frame, ZWLR_SCREENCOPY_FRAME_V1_COPY).number(buffer));
}

void ScreencopyClient::copyWithDamage(quint32 frame, quint32 buffer)
{
    send(WireMessage(frame, ZWLR_SCREENCOPY_FRAME_V1_COPY_WITH_DAMAGE).number(buffer));
}

QVector<quint16> ScreencopyClient::opcodes(quint32 frame)
{
    synchronise();
    return WireClient::opcodes(frame);
}

bool ScreencopyClient::hasEnded(quint32 frame)
{
    const QVector<quint16> events = opcodes(frame);
    return events.contains(Ready) || events.contains(Failed);
}

QRect ScreencopyClient::damageOf(quint32 frame) const
{
    const WireClient::Event event = events(frame, Damage).value(0);
    const auto number = [&event](int index) {
        return static_cast<int>(event.number(index));
    };
    return {number(0), number(1), number(2), number(3)};
}

QImage ScreencopyClient::picture(quint32 frame) const
{
    const WireClient::Event offer = events(frame, Buffer).value(0);
    QImage image(static_cast<int>(offer.number(1)), static_cast<int>(offer.number(2)), QImage::Format_RGB32);
    if (pread(memory(), image.bits(), static_cast<std::size_t>(image.sizeInBytes()), 0) != image.sizeInBytes()) {
        throw std::runtime_error("no picture in the buffer");
    }
    return image;
}
