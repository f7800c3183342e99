// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "BusConnection.h"

#include <QString>

/// A service that sits on the raw connection below any object model, so that it sees every method call and nothing is
/// answered on its behalf.
class BusService : protected BusConnection
{
public:
    /// Connects to the bus at the address. Throws std::runtime_error where it cannot.
    explicit BusService(const QString& address);
    virtual ~BusService();

protected:
    /// Called in the main loop's thread. An exception is told on standard error.
    virtual void receive(GDBusMessage* call) = 0;

    /// Throws std::runtime_error where the name belongs to another or the bus refuses it. A replaceable owner takes the
    /// name from another replaceable one without a moment in which nobody has it, and that one waits to get it back.
    void requestName(const QString& name, bool replaceable = false);
    void releaseName(const QString& name);
};
