// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "Operations.h"
#include "SteeredProcess.h"

/// A client process that performs the operations of Operations on this process's bus. Throws std::runtime_error if the
/// process ends or does not reply in time.
class OperationProcess : public SteeredProcess
{
public:
    OperationProcess();

    /// Connects the application to the bus, waits for a reply from it, and runs the event loop once.
    Outcome turn();

    /// Constructs all connectors, after a turn of the event loop.
    Outcome prepare();

    /// Prepares the process so that the operation makes all its calls: only a turn for a construction, which
    /// introspects the service once per process, and all connectors for any other operation.
    Outcome prepareFor(const QString& operation);

    Outcome perform(const QString& operation);

    /// The two halves of perform(): begin() returns when the application is about to perform the operation.
    void begin(const QString& operation);
    Outcome finish();
    /// Whether finish() can return within this time.
    bool returnsWithin(int milliseconds);
    /// Whether the application's main thread is sleeping.
    bool isBlocked() const;

    /// Delivers the bus's messages and returns the signals that the connectors have emitted, one word each.
    Outcome takeSignals();

    /// Destroys all connectors.
    Outcome destroy();

private:
    Outcome performCommand(const QString& name);
};
