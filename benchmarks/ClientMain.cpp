// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "ClientMain.h"

#include "AllocationCounter.h"
#include "Digest.h"

#include <valgrind/callgrind.h>

#include <chrono>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <map>
#include <string>

namespace {

using Operation = void (Client::*)();

Operation findOperation(const std::string& name)
{
    static const std::map<std::string, Operation> cOperations = {
        {"views", &Client::readViews},
        {"current", &Client::readCurrentView},
        {"set", &Client::setCurrentView},
        {"step", &Client::stepToNextView},
        {"screen-read", &Client::readOrientation},
        {"screen-write", &Client::writeFullScreen},
        {"overlay", &Client::showOverlay},
        {"notify", &Client::notify},
        {"screenshot", &Client::captureScreenShot},
        {"change", &Client::awaitChange},
        {"fetch", &Client::fetchViews},
        {"decode", &Client::decodeViews},
        {"construct", &Client::construct},
        {"names", &Client::askNames},
    };
    return cOperations.at(name);
}

long long nanosecondsSince(std::chrono::steady_clock::time_point start)
{
    return std::chrono::nanoseconds(std::chrono::steady_clock::now() - start).count();
}

void measure(Client& client, Operation operation, long count)
{
    CALLGRIND_START_INSTRUMENTATION;
    CALLGRIND_ZERO_STATS;
    const auto allocationsBefore = countAllocations();
    const auto start = std::chrono::steady_clock::now();
    for (long i = 0; i < count; ++i) {
        (client.*operation)();
    }
    const auto nanoseconds = nanosecondsSince(start);
    const auto allocations = countAllocations() - allocationsBefore;
    CALLGRIND_DUMP_STATS;

    Digest digest;
    client.addResult(digest);
    std::cout << nanoseconds << ' ' << allocations << ' ' << digest.toHex() << std::endl;
}

} // namespace

int runClient(const std::function<std::unique_ptr<Client>()>& makeClient)
{
    try {
        const auto start = std::chrono::steady_clock::now();
        const std::unique_ptr<Client> client = makeClient();
        std::cout << nanosecondsSince(start) << std::endl;

        std::string name;
        long count = 0;
        while (std::cin >> name >> count) {
            measure(*client, findOperation(name), count);
        }
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
        return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}
