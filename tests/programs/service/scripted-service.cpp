// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "CommandChannel.h"
#include "ScriptedService.h"

#include <QString>

#include <cstdlib>
#include <exception>
#include <iostream>

// scripted-service BUS_ADDRESS INTERFACE_DIRECTORY
int main(int argc, char** argv)
{
    if (argc != 3) {
        std::cerr << "Usage: scripted-service BUS_ADDRESS INTERFACE_DIRECTORY\n";
        return EXIT_FAILURE;
    }
    try {
        ScriptedService service(QString::fromLocal8Bit(argv[1]), QString::fromLocal8Bit(argv[2]));
        CommandChannel::serve([&service](const QJsonObject& command) {
            return service.handle(command);
        });
    } catch (const std::exception& error) {
        std::cerr << "scripted-service: " << error.what() << '\n';
        return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}
