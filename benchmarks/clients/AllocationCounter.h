// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <cstdint>

/// Defined only while the allocation counter is preloaded.
extern "C" std::uint64_t telvaroAllocationCount() __attribute__((weak, visibility("default")));

/// Returns the allocations of this process so far, 0 where they are not counted.
inline std::uint64_t countAllocations()
{
    return telvaroAllocationCount != nullptr ? telvaroAllocationCount() : 0;
}
