// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "wayland/ClientPointer.h"

#include "wayland/ClientResources.h"

#include <QWaylandCompositor>
#include <QWaylandSeat>
#include <QWaylandSurface>
#include <QWaylandView>

#include <wayland-server-protocol.h>

namespace {

/// One notch of a mouse wheel, in eighths of a degree.
constexpr int cNotch = 120;
/// The length of an axis event for one notch, in surface coordinates, that clients expect.
constexpr int cNotchLength = 10;

wl_client* clientOf(const QWaylandView* view)
{
    return view == nullptr || view->surface() == nullptr ? nullptr : view->surface()->waylandClient();
}

void sendFrame(wl_client* client)
{
    for (wl_resource* pointer : ClientResources::of(client, wl_pointer_interface)) {
        if (wl_resource_get_version(pointer) >= WL_POINTER_FRAME_SINCE_VERSION) {
            wl_pointer_send_frame(pointer);
        }
    }
}

} // namespace

ClientPointer::ClientPointer(QWaylandSeat* seat)
    : QWaylandPointer(seat)
{
    // QWaylandPointer, connected earlier, has sent wl_pointer.leave.
    connect(seat, &QWaylandSeat::mouseFocusChanged, this, [](const QWaylandView*, const QWaylandView* oldFocus) {
        sendFrame(clientOf(oldFocus));
    });
}

uint ClientPointer::sendMousePressEvent(Qt::MouseButton button)
{
    const uint serial = QWaylandPointer::sendMousePressEvent(button);
    sendFrame(focusedClient());
    return serial;
}

uint ClientPointer::sendMouseReleaseEvent(Qt::MouseButton button)
{
    const uint serial = QWaylandPointer::sendMouseReleaseEvent(button);
    sendFrame(focusedClient());
    return serial;
}

void ClientPointer::sendMouseMoveEvent(QWaylandView* view, const QPointF& localPosition, const QPointF& outputPosition)
{
    QWaylandPointer::sendMouseMoveEvent(view, localPosition, outputPosition);
    sendFrame(focusedClient());
}

void ClientPointer::sendMouseWheelEvent(Qt::Orientation orientation, int delta)
{
    const uint32_t axis =
        orientation == Qt::Horizontal ? WL_POINTER_AXIS_HORIZONTAL_SCROLL : WL_POINTER_AXIS_VERTICAL_SCROLL;
    const bool isWheel = delta % cNotch == 0;
    const uint32_t time = compositor()->currentTimeMsecs();
    for (wl_resource* pointer : ClientResources::of(focusedClient(), wl_pointer_interface)) {
        const bool hasFrames = wl_resource_get_version(pointer) >= WL_POINTER_FRAME_SINCE_VERSION;
        if (hasFrames) {
            wl_pointer_send_axis_source(pointer,
                                        isWheel ? WL_POINTER_AXIS_SOURCE_WHEEL : WL_POINTER_AXIS_SOURCE_CONTINUOUS);
        }
        if (hasFrames && isWheel) {
            wl_pointer_send_axis_discrete(pointer, axis, -delta / cNotch);
        }
        wl_pointer_send_axis(pointer, time, axis, wl_fixed_from_double(-double(delta) * cNotchLength / cNotch));
        if (hasFrames) {
            wl_pointer_send_frame(pointer);
        }
    }
}

wl_client* ClientPointer::focusedClient() const
{
    return clientOf(mouseFocus());
}
