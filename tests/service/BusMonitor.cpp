// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "BusMonitor.h"

#include "CommandChannel.h"
#include "DBusMessageText.h"

#include <memory>

namespace {

const char cMarkerInterface[] = "org.example.Marker";

} // namespace

struct BusMonitor::Event
{
    BusMonitor* monitor;
    GObjectPointer<GDBusMessage> message;
};

BusMonitor::BusMonitor(const QString& address)
    : mConnection(address, filter, this)
{
    mConnection.callBusDaemon("org.freedesktop.DBus.Monitoring", "BecomeMonitor", g_variant_new("(asu)", nullptr, 0));
}

QJsonObject BusMonitor::handle(const QJsonObject& command)
{
    mAwaitedMarker = command.value(QLatin1String("marker")).toString();
    if (mAwaitedMarker != mLastMarker) {
        return {};
    }
    const QJsonObject answer{{QStringLiteral("calls"), mCalls}};
    mCalls = {};
    mAwaitedMarker.clear();
    return answer;
}

// Runs in GDBus's own thread. Calls end here: a monitor that answers one is thrown off the bus.
GDBusMessage* BusMonitor::filter(GDBusConnection*, GDBusMessage* message, gboolean incoming, gpointer monitor)
{
    const GDBusMessageType type = g_dbus_message_get_message_type(message);
    if (incoming == FALSE || (type != G_DBUS_MESSAGE_TYPE_METHOD_CALL && type != G_DBUS_MESSAGE_TYPE_SIGNAL)) {
        return message;
    }
    auto event = std::make_unique<Event>();
    event->monitor = static_cast<BusMonitor*>(monitor);
    event->message.reset(message);
    g_idle_add_full(G_PRIORITY_DEFAULT, onMessage, event.release(), nullptr);
    return nullptr;
}

gboolean BusMonitor::onMessage(gpointer event)
{
    const std::unique_ptr<Event> owned(static_cast<Event*>(event));
    owned->monitor->receive(DBusMessageText::describe(owned->message.get()));
    return G_SOURCE_REMOVE;
}

void BusMonitor::receive(const QJsonObject& message)
{
    if (message.value(QLatin1String("type")) == QLatin1String("call")) {
        mCalls.append(message);
        return;
    }
    if (message.value(QLatin1String("interface")) != QLatin1String(cMarkerInterface)) {
        return;
    }
    mLastMarker = message.value(QLatin1String("member")).toString();
    if (mLastMarker == mAwaitedMarker) {
        CommandChannel::answer(handle({{QStringLiteral("marker"), mLastMarker}}));
    }
}
