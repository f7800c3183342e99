// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "BusMonitor.h"

#include "CommandChannel.h"
#include "DBusMessageText.h"

namespace {

const char cMarkerInterface[] = "org.example.Marker";

} // namespace

BusMonitor::BusMonitor(const QString& address)
    // Calls are dropped: the bus disconnects a monitor that replies.
    : mConnection(address, {G_DBUS_MESSAGE_TYPE_METHOD_CALL, G_DBUS_MESSAGE_TYPE_SIGNAL},
                  [this](GDBusMessage* message) {
                      receive(DBusMessageText::describe(message));
                  })
{
    mConnection.callBusDaemon("BecomeMonitor", g_variant_new("(asu)", nullptr, 0), "org.freedesktop.DBus.Monitoring");
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
