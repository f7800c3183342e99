// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "Operations.h"
#include "SteeredProcess.h"

/// An application in a process of its own that performs the operations of Operations on this process's bus, with all
/// connectors or, before they are prepared, with those that an operation needs. Throws std::runtime_error where the
/// application ends or does not answer in time.
class OperationProcess : public SteeredProcess
{
public:
    OperationProcess();

    /// Connects the application to the bus, waits for an answer of it, and runs the event loop once.
    Outcome turn();

    /// Makes all connectors, after a turn of the event loop.
    Outcome prepare();

    /// What the operation needs to make all its calls: a turn for a construction, which introspects the service only
    /// where no connector has been made before, and all connectors for another.
    Outcome prepareFor(const QString& operation);

    Outcome perform(const QString& operation);

    /// The two halves of perform(): the first returns when the application is about to perform the operation.
    void begin(const QString& operation);
    Outcome finish();
    /// Whether the second half can return by then.
    bool returnsWithin(int milliseconds);
    /// Whether the application's main thread waits for something.
    bool isBlocked() const;

    /// The signals that the connectors have emitted, after all that the bus had for them, one word each.
    Outcome takeSignals();

    /// Destroys all connectors.
    Outcome destroy();

private:
    Outcome performCommand(const QString& name);
};
