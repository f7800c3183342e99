// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "GObjectPointer.h"

#include <QString>

/// A connection to the bus with one filter, which sees each message before any object model does. Whatever fails here
/// throws std::runtime_error.
class BusConnection
{
public:
    /// The filter gets the owner and runs in GDBus's own thread.
    BusConnection(const QString& address, GDBusMessageFilterFunction filter, gpointer owner);
    ~BusConnection();
    BusConnection(const BusConnection&) = delete;
    BusConnection& operator=(const BusConnection&) = delete;

    GDBusConnection* get() const;
    void send(GDBusMessage* message);
    GVariantPointer callBusDaemon(const char* interface, const char* member, GVariant* arguments);

private:
    GObjectPointer<GDBusConnection> mConnection;
    guint mFilter;
};
