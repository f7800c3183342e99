// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "BusConnection.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QString>

/// A bus monitor that records all method calls, those to the bus daemon included.
class BusMonitor
{
public:
    /// Becomes a monitor of the bus at the address. Throws std::runtime_error on a failure.
    explicit BusMonitor(const QString& address);
    BusMonitor(const BusMonitor&) = delete;
    BusMonitor& operator=(const BusMonitor&) = delete;

    /// The command "calls" returns all method calls from one sender up to the marker signal that the sender has
    /// emitted, once that signal has arrived.
    QJsonObject handle(const QJsonObject& command);

private:
    void receive(const QJsonObject& message);

    BusConnection mConnection;
    QJsonArray mCalls;
    QString mLastMarker;
    QString mAwaitedMarker;
};
