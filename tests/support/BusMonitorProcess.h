// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "RecordedCall.h"
#include "SteeredProcess.h"

#include <QList>

/// Sees every message on the bus, those to the bus daemon included.
class BusMonitorProcess : public SteeredProcess
{
public:
    BusMonitorProcess();

    /// All calls of this process's shared connection since the last time.
    QList<RecordedCall> takeCalls();

private:
    int mMarker = 0;
};
