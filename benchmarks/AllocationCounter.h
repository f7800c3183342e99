// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <cstdint>

/// There only while the allocation counter is preloaded.
extern "C" std::uint64_t telvaroAllocationCount() __attribute__((weak, visibility("default")));

/// How often this process has asked for memory so far, 0 where that is not counted.
inline std::uint64_t countAllocations()
{
    return telvaroAllocationCount != nullptr ? telvaroAllocationCount() : 0;
}
