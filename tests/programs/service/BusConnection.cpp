// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "BusConnection.h"

#include <cerrno>
#include <exception>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>

namespace {

std::runtime_error failure(const std::string& action, GError* error)
{
    const std::string reason = error->message;
    g_error_free(error);
    return std::runtime_error(action + ": " + reason);
}

GDBusConnection* connectTo(const QString& address)
{
    GError* error = nullptr;
    GDBusConnection* connection = g_dbus_connection_new_for_address_sync(
        address.toUtf8().constData(),
        static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT
                                          | G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
        nullptr, nullptr, &error);
    if (!connection) {
        throw failure("no connection to the bus", error);
    }
    return connection;
}

} // namespace

struct BusConnection::Event
{
    BusConnection* self;
    GObjectPointer<GDBusMessage> message;
};

BusConnection::BusConnection(const QString& address, const std::set<GDBusMessageType>& types, Receiver receiver)
    : mTypes(types)
    , mReceiver(std::move(receiver))
    , mConnection(connectTo(address))
    , mFilter(g_dbus_connection_add_filter(mConnection.get(), filter, this, nullptr))
{
}

BusConnection::~BusConnection()
{
    g_dbus_connection_remove_filter(mConnection.get(), mFilter);
}

GDBusConnection* BusConnection::get() const
{
    return mConnection.get();
}

void BusConnection::send(GDBusMessage* message)
{
    GError* error = nullptr;
    if (g_dbus_connection_send_message(mConnection.get(), message, G_DBUS_SEND_MESSAGE_FLAGS_NONE, nullptr, &error)
        == FALSE) {
        throw failure("cannot send", error);
    }
}

GVariantPointer BusConnection::callBusDaemon(const char* member, GVariant* arguments, const char* interface)
{
    GError* error = nullptr;
    GVariantPointer reply(g_dbus_connection_call_sync(mConnection.get(), "org.freedesktop.DBus",
                                                      "/org/freedesktop/DBus", interface, member, arguments, nullptr,
                                                      G_DBUS_CALL_FLAGS_NONE, -1, nullptr, &error));
    if (!reply) {
        throw failure(member, error);
    }
    return reply;
}

// Runs in GDBus's own thread; everything else runs in the main loop's.
GDBusMessage* BusConnection::filter(GDBusConnection*, GDBusMessage* message, gboolean incoming, gpointer self)
{
    auto* const connection = static_cast<BusConnection*>(self);
    if (incoming == FALSE || connection->mTypes.count(g_dbus_message_get_message_type(message)) == 0) {
        return message;
    }
    auto event = std::make_unique<Event>();
    event->self = connection;
    event->message.reset(message);
    g_idle_add_full(G_PRIORITY_DEFAULT, onMessage, event.release(), nullptr);
    return nullptr;
}

gboolean BusConnection::onMessage(gpointer event)
{
    const std::unique_ptr<Event> owned(static_cast<Event*>(event));
    // GLib's frames are C, through which no exception may pass.
    try {
        owned->self->mReceiver(owned->message.get());
    } catch (const std::exception& error) {
        std::cerr << program_invocation_short_name << ": " << error.what() << '\n';
    }
    return G_SOURCE_REMOVE;
}
