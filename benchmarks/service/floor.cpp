// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "service/LibDBus.h"
#include "service/ServiceNames.h"

#include <QCoreApplication>

#include <chrono>
#include <cstdlib>
#include <exception>
#include <iostream>

namespace {

/// Sends a call without arguments through the bus daemon to the service and waits for the reply.
void callService(DBusConnection* connection)
{
    const DBusMessagePointer call(dbus_message_new_method_call(ServiceNames::cService, ServiceNames::cOverlayPath,
                                                               ServiceNames::cOverlayInterface, "Hide"));
    LibDBusError error;
    const DBusMessagePointer reply(
        dbus_connection_send_with_reply_and_block(connection, call.get(), DBUS_TIMEOUT_USE_DEFAULT, error.get()));
    error.check();
}

} // namespace

// The lower bound of every binding: prints the nanoseconds of as many calls as the lines of standard input say, until
// its end.
int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    try {
        const DBusConnectionPointer connection = connectToBus();
        std::cout << "ready" << std::endl;
        long count = 0;
        while (std::cin >> count) {
            const auto start = std::chrono::steady_clock::now();
            for (long i = 0; i < count; ++i) {
                callService(connection.get());
            }
            std::cout << std::chrono::nanoseconds(std::chrono::steady_clock::now() - start).count() << std::endl;
        }
    } catch (const std::exception& error) {
        std::cerr << "floor: " << error.what() << '\n';
        return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}
