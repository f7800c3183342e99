// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QtGlobal>

/// The memory of this process, in KiB.
namespace ProcessMemory {

/// Whether the numbers reflect the library's needs: not if a sanitizer or valgrind retains freed memory, nor in an
/// emulator, which retains translated code.
bool isMeaningful();

/// The resident size after the allocator has returned its free memory.
qint64 resident();

/// The most that has been resident since the last resetPeak().
qint64 peak();
void resetPeak();

} // namespace ProcessMemory
