// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "clients/Client.h"

#include "clients/AllocationCounter.h"

#include <valgrind/callgrind.h>

#include <chrono>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <stdexcept>

namespace {

long long nanosecondsSince(std::chrono::steady_clock::time_point start)
{
    return std::chrono::nanoseconds(std::chrono::steady_clock::now() - start).count();
}

void measure(const Client& client, const std::function<void()>& operation, long count)
{
    CALLGRIND_START_INSTRUMENTATION;
    CALLGRIND_ZERO_STATS;
    const auto allocationsBefore = countAllocations();
    const auto start = std::chrono::steady_clock::now();
    for (long i = 0; i < count; ++i) {
        operation();
    }
    const auto nanoseconds = nanosecondsSince(start);
    const auto allocations = countAllocations() - allocationsBefore;
    CALLGRIND_DUMP_STATS;

    Digest digest;
    client.addResult(digest);
    std::cout << nanoseconds << ' ' << allocations << ' ' << digest.toHex() << std::endl;
}

} // namespace

const std::function<void()>& Client::operation(const std::string& name) const
{
    return mOperations.at(name);
}

void Client::addResult(Digest& /*digest*/) const
{
}

int runClient(const std::function<std::unique_ptr<Client>()>& makeClient)
{
    try {
        const auto start = std::chrono::steady_clock::now();
        const std::unique_ptr<Client> client = makeClient();
        std::cout << nanosecondsSince(start) << std::endl;

        std::string name;
        long count = 0;
        while (std::cin >> name >> count) {
            measure(*client, client->operation(name), count);
        }
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
        return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}

void checkSucceeded(bool succeeded)
{
    if (!succeeded) {
        throw std::runtime_error("the operation has failed");
    }
}
