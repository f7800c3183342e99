// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "LibDBus.h"

#include <cstdint>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <sstream>
#include <string>

namespace {

std::string orEmpty(const char* text)
{
    return text != nullptr ? text : "";
}

void writeValue(std::ostream& output, DBusMessageIter& value);

void writeValues(std::ostream& output, DBusMessageIter& container)
{
    DBusMessageIter element;
    dbus_message_iter_recurse(&container, &element);
    output << '(';
    while (dbus_message_iter_get_arg_type(&element) != DBUS_TYPE_INVALID) {
        writeValue(output, element);
        dbus_message_iter_next(&element);
    }
    output << ')';
}

void writeValue(std::ostream& output, DBusMessageIter& value)
{
    const int type = dbus_message_iter_get_arg_type(&value);
    output << ' ' << static_cast<char>(type);
    if (dbus_type_is_container(type)) {
        writeValues(output, value);
        return;
    }
    DBusBasicValue basic = {};
    dbus_message_iter_get_basic(&value, &basic);
    if (type == DBUS_TYPE_STRING || type == DBUS_TYPE_OBJECT_PATH || type == DBUS_TYPE_SIGNATURE) {
        output << '"' << basic.str << '"';
    } else {
        // Whatever is narrower fills the low bytes.
        output << basic.u64;
    }
}

/// One line: what a receiver of the call can tell of it.
std::string describeCall(DBusMessage* call)
{
    std::ostringstream text;
    text << orEmpty(dbus_message_get_destination(call)) << ' ' << orEmpty(dbus_message_get_path(call)) << ' '
         << orEmpty(dbus_message_get_interface(call)) << '.' << orEmpty(dbus_message_get_member(call))
         << (dbus_message_get_no_reply(call) ? " without reply" : "");
    DBusMessageIter argument;
    if (dbus_message_iter_init(call, &argument)) {
        do {
            writeValue(text, argument);
        } while (dbus_message_iter_next(&argument));
    }
    return text.str();
}

void becomeMonitor(DBusConnection* connection)
{
    const DBusMessagePointer call(dbus_message_new_method_call(DBUS_SERVICE_DBUS, DBUS_PATH_DBUS,
                                                               "org.freedesktop.DBus.Monitoring", "BecomeMonitor"));
    const char* const* rules = nullptr;
    const std::uint32_t flags = 0;
    dbus_message_append_args(call.get(), DBUS_TYPE_ARRAY, DBUS_TYPE_STRING, &rules, 0, DBUS_TYPE_UINT32, &flags,
                             DBUS_TYPE_INVALID);
    LibDBusError error;
    const DBusMessagePointer reply(
        dbus_connection_send_with_reply_and_block(connection, call.get(), DBUS_TIMEOUT_USE_DEFAULT, error.get()));
    error.check();
}

} // namespace

// Prints a line for every method call on the session bus, and the line "mark" for the benchmark service's signal Mark,
// until the bus ends.
int main()
{
    try {
        const DBusConnectionPointer connection = connectToBus();
        becomeMonitor(connection.get());
        std::cout << "ready" << std::endl;
        while (dbus_connection_read_write(connection.get(), -1)) {
            while (const DBusMessagePointer message{dbus_connection_pop_message(connection.get())}) {
                if (dbus_message_get_type(message.get()) == DBUS_MESSAGE_TYPE_METHOD_CALL) {
                    std::cout << describeCall(message.get()) << std::endl;
                } else if (orEmpty(dbus_message_get_member(message.get())) == "Mark") {
                    std::cout << "mark" << std::endl;
                }
            }
        }
    } catch (const std::exception& error) {
        std::cerr << "message-monitor: " << error.what() << '\n';
        return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}
