// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "bus/BusCall.h"

#include <QDeadlineTimer>
#include <QString>

#include <optional>
#include <vector>

/// How calls are answered instead of as they should be.
struct CallFault
{
    CallPattern calls;
    /// Empty for the answer that there would be without the fault.
    QString errorName;
    QString errorText;
    int delayMilliseconds = 0;
    /// Not answered at all.
    bool isSilent = false;

    /// How long the fault lasts from when it begins, and for how many calls; it ends with whichever is over first.
    std::optional<int> lifetimeMilliseconds;
    std::optional<int> lifetimeCalls;
};

/// The faults that there are now.
class FaultTable
{
public:
    void add(const CallFault& fault);
    /// Ends those that were made for just these calls.
    void remove(const CallPattern& calls);
    /// The fault for `call`, which is counted; of several, the one that was added last.
    std::optional<CallFault> take(const BusCall& call);

private:
    struct Entry
    {
        CallFault fault;
        QDeadlineTimer end;
    };

    std::vector<Entry> mEntries;
};
