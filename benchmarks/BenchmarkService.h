// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "LibDBus.h"

#include <map>
#include <string>

/// The service's side of every measured operation, as fast as it can be had: one thread on libdbus, and the answer with
/// the views made once and copied. Answers every call with what a real service would say and keeps nothing but the
/// current view; it notifies a change only to a client that asks for that.
class BenchmarkService
{
public:
    /// Takes the service's name on the session bus. The interfaces are described by the files in the directory.
    explicit BenchmarkService(const std::string& interfaceDirectory);

    /// Serves until standard input ends. Its lines are commands, each answered with a line:
    /// - `views COUNT`: from now on there are that many views, the middle one current;
    /// - `mark`: sends the signal Mark, which tells a monitor of the bus that it has seen all that was before.
    void run();

private:
    bool handleCommand();
    void setViewCount(int count);
    void handleMessages();
    void answer(DBusMessage* call);
    DBusMessagePointer makeReply(DBusMessage* call);
    DBusMessagePointer makePropertyReply(DBusMessage* call) const;
    void writeProperty(DBusMessage* call);
    void notifyChange(const char* receiver);

    DBusConnectionPointer mConnection;
    std::map<std::string, std::string> mDescriptions;
    DBusMessagePointer mViews;
    std::string mCurrentView;
};
