// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "BusMonitor.h"
#include "CommandChannel.h"

#include <QString>

#include <cstdlib>
#include <exception>
#include <iostream>

// bus-monitor BUS_ADDRESS
int main(int argc, char** argv)
{
    if (argc != 2) {
        std::cerr << "Usage: bus-monitor BUS_ADDRESS\n";
        return EXIT_FAILURE;
    }
    try {
        GMainLoop* const loop = g_main_loop_new(nullptr, FALSE);
        {
            BusMonitor monitor(QString::fromLocal8Bit(argv[1]));
            const CommandChannel channel(loop, [&monitor](const QJsonObject& command) {
                return monitor.handle(command);
            });
            CommandChannel::answer({{QStringLiteral("ready"), true}});
            g_main_loop_run(loop);
        }
        g_main_loop_unref(loop);
    } catch (const std::exception& error) {
        std::cerr << "bus-monitor: " << error.what() << '\n';
        return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}
