// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QObject>

/// Ends the event loop with Failed, and says so, when the connection to the bus is lost: to the live objects that is
/// the end of the service, which may come back.
class BusEnd : public QObject
{
    Q_OBJECT

public:
    BusEnd();

private Q_SLOTS:
    void onDisconnected();
};
