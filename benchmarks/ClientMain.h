// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "Client.h"

#include <functional>
#include <memory>

/// Makes the client, prints the nanoseconds that took, and then carries out the commands on standard input until its
/// end: `OPERATION COUNT` repeats the operation and prints the nanoseconds of all repetitions together, the allocations
/// made meanwhile (0 unless they are counted), and the digest of what the last one has read. Under callgrind the
/// instructions of the repetitions, and only those, are dumped after each command. Returns the process's exit status.
int runClient(const std::function<std::unique_ptr<Client>()>& makeClient);
