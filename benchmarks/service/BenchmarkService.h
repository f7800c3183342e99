// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "service/LibDBus.h"

#include <initializer_list>
#include <map>
#include <string>
#include <vector>

/// The service of every measured operation, made for speed: a single thread on libdbus, which copies a prepared reply
/// with the views. Replies to every call as a real service would and keeps nothing but the views' titles and the
/// current view.
class BenchmarkService
{
public:
    /// Takes the service's name on the session bus. The directory has the interfaces' descriptions.
    explicit BenchmarkService(const std::string& interfaceDirectory);

    /// Serves until standard input ends. Its lines are commands, each of which prints a number when done: the time on
    /// the monotonic clock at which a change was sent, 0 for the others.
    /// - `views COUNT`: sets the number of views and makes the middle one current;
    /// - `broadcast`: from now on a client's write of the current view is signalled, as `switch` is. Otherwise a change
    ///   is only sent to the client that requests one;
    /// - `title`: changes the title of a view and signals the list;
    /// - `switch`: makes the next view current, and signals the list, then the current view;
    /// - `mark`: sends the signal Mark, which ends the messages that a monitor of the bus has to consider.
    void run();

private:
    bool handleCommand();
    void setViewCount(int count);
    void makeViewsReply();
    long long sendTitle();
    long long sendSwitch();
    long long broadcast(std::initializer_list<const char*> properties);
    DBusMessagePointer makeSignal(const char* property) const;
    void appendProperty(DBusMessageIter& iterator, const std::string& property) const;
    void appendViews(DBusMessageIter& iterator) const;
    void handleMessages();
    void answer(DBusMessage* call);
    DBusMessagePointer makeReply(DBusMessage* call);
    DBusMessagePointer makePropertyReply(DBusMessage* call) const;
    void writeProperty(DBusMessage* call);

    DBusConnectionPointer mConnection;
    std::map<std::string, std::string> mDescriptions;
    std::vector<std::string> mTitles;
    int mTitleChanges = 0;
    int mCurrentView = 0;
    bool mIsBroadcasting = false;
    DBusMessagePointer mViews;
};
