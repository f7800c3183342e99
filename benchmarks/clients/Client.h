// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "clients/Digest.h"

#include <functional>
#include <map>
#include <memory>
#include <string>

/// What an application does with the compositor service through one D-Bus binding, as operations with names. Every
/// client sends the same messages for the same operation and reads the same from the replies; what it reads is kept
/// until the next operation, so that it can be compared outside the measured time.
class Client
{
public:
    virtual ~Client() = default;

    /// The operation of that name; throws std::out_of_range where the binding has none.
    const std::function<void()>& operation(const std::string& name) const;

    /// Adds what the last operations have read.
    virtual void addResult(Digest& digest) const;

protected:
    std::map<std::string, std::function<void()>> mOperations;
};

/// Makes the client, prints the nanoseconds that took, and then carries out the commands on standard input until its
/// end: `OPERATION COUNT` repeats the operation and prints the nanoseconds of all repetitions together, the allocations
/// made meanwhile (0 unless they are counted), and the digest of what was read. Under callgrind the instructions of the
/// repetitions, and only those, are dumped after each command. Returns the process's exit status.
int runClient(const std::function<std::unique_ptr<Client>()>& makeClient);

/// Throws unless the operation has succeeded.
void checkSucceeded(bool succeeded);
