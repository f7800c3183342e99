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
    : mConnection(address, filter, this)
{
}

BusService::~BusService() = default;

GDBusConnection* BusService::connection() const
{
    return mConnection.get();
}

void BusService::send(GDBusMessage* message)
{
    mConnection.send(message);
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
    return mConnection.callBusDaemon("org.freedesktop.DBus", member, arguments);
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
