// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors

// Linked into the test programs that run under qemu's user emulation. Qt probes the kernel for process descriptors and
// then uses them to start processes; the emulation forwards the probe but rejects the use, so the probe must fail.

#include <cerrno>
#include <cstdarg>

#include <dlfcn.h>
#include <sys/syscall.h>

namespace {

constexpr long cProcessDescriptor = 3; // P_PIDFD

using SystemCall = long (*)(long, ...);

} // namespace

extern "C" [[gnu::visibility("default")]] long syscall(long number, ...)
{
    static const auto next = reinterpret_cast<SystemCall>(dlsym(RTLD_NEXT, "syscall"));

    va_list list;
    va_start(list, number);
    long arguments[6];
    for (long& argument : arguments) {
        argument = va_arg(list, long);
    }
    va_end(list);

    if (number == SYS_waitid && arguments[0] == cProcessDescriptor) {
        errno = EINVAL;
        return -1;
    }
    return next(number, arguments[0], arguments[1], arguments[2], arguments[3], arguments[4], arguments[5]);
}
