// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "BusConnection.h"

#include <stdexcept>
#include <string>

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

BusConnection::BusConnection(const QString& address, GDBusMessageFilterFunction filter, gpointer owner)
    : mConnection(connectTo(address))
    , mFilter(g_dbus_connection_add_filter(mConnection.get(), filter, owner, nullptr))
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

GVariantPointer BusConnection::callBusDaemon(const char* interface, const char* member, GVariant* arguments)
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
