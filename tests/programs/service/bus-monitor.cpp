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
        BusMonitor monitor(QString::fromLocal8Bit(argv[1]));
        CommandChannel::serve([&monitor](const QJsonObject& command) {
            return monitor.handle(command);
        });
    } catch (const std::exception& error) {
        std::cerr << "bus-monitor: " << error.what() << '\n';
        return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}
