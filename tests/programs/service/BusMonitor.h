// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "BusConnection.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QString>

/// Sees every message on the bus, those to the bus daemon included, and keeps the method calls.
class BusMonitor
{
public:
    /// Becomes a monitor of the bus at the address. Throws std::runtime_error where it cannot.
    explicit BusMonitor(const QString& address);
    BusMonitor(const BusMonitor&) = delete;
    BusMonitor& operator=(const BusMonitor&) = delete;

    /// The command "calls" hands over all method calls from one sender up to the signal that the sender has marked the
    /// end with, once that signal has been seen.
    QJsonObject handle(const QJsonObject& command);

private:
    void receive(const QJsonObject& message);

    BusConnection mConnection;
    QJsonArray mCalls;
    QString mLastMarker;
    QString mAwaitedMarker;
};
