// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "service/BenchmarkService.h"

#include <cstdlib>
#include <exception>
#include <iostream>

// benchmark-service INTERFACE_DIRECTORY
int main(int argc, char** argv)
{
    if (argc != 2) {
        std::cerr << "Usage: benchmark-service INTERFACE_DIRECTORY\n";
        return EXIT_FAILURE;
    }
    try {
        BenchmarkService(argv[1]).run();
    } catch (const std::exception& error) {
        std::cerr << "benchmark-service: " << error.what() << '\n';
        return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}
