// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "CommandChannel.h"
#include "FuzzingService.h"

#include <QString>

#include <cstdlib>
#include <exception>
#include <iostream>
#include <string>

// fuzzing-service BUS_ADDRESS INTERFACE_DIRECTORY SEED
int main(int argc, char** argv)
{
    if (argc != 4) {
        std::cerr << "Usage: fuzzing-service BUS_ADDRESS INTERFACE_DIRECTORY SEED\n";
        return EXIT_FAILURE;
    }
    try {
        FuzzingService service(QString::fromLocal8Bit(argv[1]), QString::fromLocal8Bit(argv[2]), std::stoull(argv[3]));
        CommandChannel::serve([&service](const QJsonObject& command) {
            return service.handle(command);
        });
    } catch (const std::exception& error) {
        std::cerr << "fuzzing-service: " << error.what() << '\n';
        return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}
