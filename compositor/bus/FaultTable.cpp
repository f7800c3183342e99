// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "bus/FaultTable.h"

#include <algorithm>

void FaultTable::add(const CallFault& fault)
{
    QDeadlineTimer end(QDeadlineTimer::Forever);
    if (fault.lifetimeMilliseconds) {
        end.setPreciseRemainingTime(0, qint64(*fault.lifetimeMilliseconds) * 1000000, Qt::PreciseTimer);
    }
    mEntries.push_back({fault, end});
}

void FaultTable::remove(const CallPattern& calls)
{
    const auto end = std::remove_if(mEntries.begin(), mEntries.end(), [&calls](const Entry& entry) {
        return entry.fault.calls == calls;
    });
    mEntries.erase(end, mEntries.end());
}

std::optional<CallFault> FaultTable::take(const BusCall& call)
{
    const auto end = std::remove_if(mEntries.begin(), mEntries.end(), [](const Entry& entry) {
        return entry.end.hasExpired();
    });
    mEntries.erase(end, mEntries.end());

    const auto found = std::find_if(mEntries.rbegin(), mEntries.rend(), [&call](const Entry& entry) {
        return entry.fault.calls.matches(call);
    });
    if (found == mEntries.rend()) {
        return {};
    }
    const CallFault fault = found->fault;
    if (found->fault.lifetimeCalls && --*found->fault.lifetimeCalls == 0) {
        mEntries.erase(std::next(found).base());
    }
    return fault;
}
