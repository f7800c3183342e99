// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "RecordedCall.h"
#include "SteeredProcess.h"

#include <QList>

/// A bus monitor process, which sees calls to the bus daemon, too.
class BusMonitorProcess : public SteeredProcess
{
public:
    BusMonitorProcess();

    /// Takes all calls of this process's shared connection since the last time.
    QList<RecordedCall> takeCalls();

private:
    int mMarker = 0;
};
