// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QtGlobal>

/// The memory of this process, in KiB.
namespace ProcessMemory {

/// Whether the numbers tell what the library needs: not where a sanitizer or valgrind keeps freed memory, nor where the
/// process is an emulator, which keeps the code that it has translated.
bool isMeaningful();

/// What is resident, with all that the allocator can do without given back.
qint64 resident();

/// The most that has been resident since the last resetPeak().
qint64 peak();
void resetPeak();

} // namespace ProcessMemory
