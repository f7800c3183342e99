// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "BusService.h"

#include <cerrno>
#include <exception>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>

namespace {

std::runtime_error failure(const std::string& action, GError* error)
{
    const std::string reason = error->message;
    g_error_free(error);
    return std::runtime_error(action + ": " + reason);
}

void expectResult(const GVariantPointer& reply, guint32 expected)
{
    guint32 result = 0;
    g_variant_get(reply.get(), "(u)", &result);
    if (result != expected) {
        throw std::runtime_error("the bus daemon answered " + std::to_string(result));
    }
}

} // namespace

struct BusService::Event
{
    BusService* service;
    GObjectPointer<GDBusMessage> call;
};

BusService::BusService(const QString& address)
{
    GError* error = nullptr;
    mConnection.reset(g_dbus_connection_new_for_address_sync(
        address.toUtf8().constData(),
        static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT
                                          | G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
        nullptr, nullptr, &error));
    if (!mConnection) {
        throw failure("no connection to the bus", error);
    }
    mFilter = g_dbus_connection_add_filter(mConnection.get(), filter, this, nullptr);
}

BusService::~BusService()
{
    g_dbus_connection_remove_filter(mConnection.get(), mFilter);
}

GDBusConnection* BusService::connection() const
{
    return mConnection.get();
}

void BusService::send(GDBusMessage* message)
{
    GError* error = nullptr;
    if (g_dbus_connection_send_message(mConnection.get(), message, G_DBUS_SEND_MESSAGE_FLAGS_NONE, nullptr, &error)
        == FALSE) {
        throw failure("cannot send", error);
    }
}

void BusService::requestName(const QString& name)
{
    const guint32 doNotQueue = 4;
    const guint32 primaryOwner = 1;
    expectResult(callBusDaemon("RequestName", g_variant_new("(su)", name.toUtf8().constData(), doNotQueue)),
                 primaryOwner);
}

void BusService::releaseName(const QString& name)
{
    const guint32 released = 1;
    expectResult(callBusDaemon("ReleaseName", g_variant_new("(s)", name.toUtf8().constData())), released);
}

GVariantPointer BusService::callBusDaemon(const char* member, GVariant* arguments)
{
    GError* error = nullptr;
    GVariantPointer reply(g_dbus_connection_call_sync(mConnection.get(), "org.freedesktop.DBus",
                                                      "/org/freedesktop/DBus", "org.freedesktop.DBus", member,
                                                      arguments, nullptr, G_DBUS_CALL_FLAGS_NONE, -1, nullptr, &error));
    if (!reply) {
        throw failure(member, error);
    }
    return reply;
}

// Runs in GDBus's own thread; everything else runs in the main loop's.
GDBusMessage* BusService::filter(GDBusConnection*, GDBusMessage* message, gboolean incoming, gpointer service)
{
    if (incoming == FALSE || g_dbus_message_get_message_type(message) != G_DBUS_MESSAGE_TYPE_METHOD_CALL) {
        return message;
    }
    auto event = std::make_unique<Event>();
    event->service = static_cast<BusService*>(service);
    event->call.reset(message);
    g_idle_add_full(G_PRIORITY_DEFAULT, onCall, event.release(), nullptr);
    return nullptr;
}

gboolean BusService::onCall(gpointer event)
{
    const std::unique_ptr<Event> owned(static_cast<Event*>(event));
    // GLib's frames are C, through which no exception may pass.
    try {
        owned->service->receive(owned->call.get());
    } catch (const std::exception& error) {
        std::cerr << program_invocation_short_name << ": " << error.what() << '\n';
    }
    return G_SOURCE_REMOVE;
}
