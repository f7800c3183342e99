// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "BusConnection.h"

#include <QString>

/// A service on the raw connection, which receives every method call, including those that GDBus would answer itself.
class BusService : protected BusConnection
{
public:
    /// Connects to the bus at the address. Throws std::runtime_error on a failure.
    explicit BusService(const QString& address);
    virtual ~BusService();

protected:
    /// Called in the main loop's thread. Exceptions are printed to standard error.
    virtual void receive(GDBusMessage* call) = 0;

    /// Throws std::runtime_error if the name has an owner or the bus rejects it. A replaceable owner takes the name
    /// from another replaceable one, without a moment in which nobody has it; the other waits to get it back.
    void requestName(const QString& name, bool replaceable = false);
    void releaseName(const QString& name);
};
