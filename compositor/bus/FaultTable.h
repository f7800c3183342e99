// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "bus/BusCall.h"

#include <QDeadlineTimer>
#include <QString>

#include <optional>
#include <vector>

/// An injected fault: how matching calls are answered instead of normally.
struct CallFault
{
    CallPattern calls;
    /// Empty for the normal reply, which is only delayed then.
    QString errorName;
    QString errorText;
    int delayMilliseconds = 0;
    /// No reply is sent.
    bool isSilent = false;

    /// The fault ends after that time or that number of calls, whichever is first; without both it stays.
    std::optional<int> lifetimeMilliseconds;
    std::optional<int> lifetimeCalls;
};

/// The active faults.
class FaultTable
{
public:
    void add(const CallFault& fault);
    /// Removes the faults whose pattern equals `calls`.
    void remove(const CallPattern& calls);
    /// Returns the fault that matches `call`, the one added last of several, and counts the call against its lifetime.
    std::optional<CallFault> take(const BusCall& call);

private:
    struct Entry
    {
        CallFault fault;
        QDeadlineTimer end;
    };

    std::vector<Entry> mEntries;
};
