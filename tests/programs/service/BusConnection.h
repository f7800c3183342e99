// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "GObjectPointer.h"

#include <QString>

#include <functional>
#include <set>

/// A GDBusConnection with a message filter. All failures throw std::runtime_error.
class BusConnection
{
public:
    using Receiver = std::function<void(GDBusMessage* message)>;

    /// Filters out incoming messages of these types and passes them to the receiver in the main loop's thread.
    /// Exceptions of the receiver are printed to standard error.
    BusConnection(const QString& address, const std::set<GDBusMessageType>& types, Receiver receiver);
    ~BusConnection();
    BusConnection(const BusConnection&) = delete;
    BusConnection& operator=(const BusConnection&) = delete;

    GDBusConnection* get() const;
    void send(GDBusMessage* message);
    GVariantPointer callBusDaemon(const char* member, GVariant* arguments,
                                  const char* interface = "org.freedesktop.DBus");

private:
    struct Event;

    static GDBusMessage* filter(GDBusConnection* connection, GDBusMessage* message, gboolean incoming, gpointer self);
    static gboolean onMessage(gpointer event);

    const std::set<GDBusMessageType> mTypes;
    const Receiver mReceiver;
    GObjectPointer<GDBusConnection> mConnection;
    guint mFilter;
};
