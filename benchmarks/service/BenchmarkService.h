// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "service/LibDBus.h"

#include <map>
#include <string>

/// The service of every measured operation, made for speed: a single thread on libdbus, which copies a prepared reply
/// with the views. Replies to every call as a real service would and keeps nothing but the current view; it sends a
/// change only to the client that requests one.
class BenchmarkService
{
public:
    /// Takes the service's name on the session bus. The directory has the interfaces' descriptions.
    explicit BenchmarkService(const std::string& interfaceDirectory);

    /// Serves until standard input ends. Its lines are commands; each is acknowledged by its name:
    /// - `views COUNT`: sets the number of views and makes the middle one current;
    /// - `mark`: sends the signal Mark, which ends the messages that a monitor of the bus has to consider.
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
