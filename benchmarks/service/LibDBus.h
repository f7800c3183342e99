// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <dbus/dbus.h>

#include <memory>
#include <stdexcept>

/// Owning pointers to libdbus's objects.
struct DBusMessageUnref
{
    void operator()(DBusMessage* message) const
    {
        dbus_message_unref(message);
    }
};
using DBusMessagePointer = std::unique_ptr<DBusMessage, DBusMessageUnref>;

struct DBusConnectionUnref
{
    void operator()(DBusConnection* connection) const
    {
        dbus_connection_unref(connection);
    }
};
using DBusConnectionPointer = std::unique_ptr<DBusConnection, DBusConnectionUnref>;

/// A DBusError that check() throws if it is set.
class LibDBusError
{
public:
    LibDBusError()
    {
        dbus_error_init(&mError);
    }

    ~LibDBusError()
    {
        dbus_error_free(&mError);
    }

    LibDBusError(const LibDBusError&) = delete;
    LibDBusError& operator=(const LibDBusError&) = delete;

    DBusError* get()
    {
        return &mError;
    }

    void check() const
    {
        if (dbus_error_is_set(&mError)) {
            throw std::runtime_error(mError.message);
        }
    }

private:
    DBusError mError;
};

/// Returns a connection to the session bus that does not end the process when the bus does.
inline DBusConnectionPointer connectToBus()
{
    LibDBusError error;
    DBusConnectionPointer connection(dbus_bus_get(DBUS_BUS_SESSION, error.get()));
    error.check();
    dbus_connection_set_exit_on_disconnect(connection.get(), FALSE);
    return connection;
}
