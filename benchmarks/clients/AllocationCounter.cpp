// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "clients/AllocationCounter.h"

#include <atomic>
#include <cerrno>
#include <cstddef>

// Preloaded, these functions interpose the C library's of the same names in every thread and every library, and forward
// to the C library's internal names.
#define TELVARO_INTERPOSED extern "C" __attribute__((visibility("default")))

extern "C" void* __libc_malloc(std::size_t size);
extern "C" void* __libc_calloc(std::size_t count, std::size_t size);
extern "C" void* __libc_realloc(void* block, std::size_t size);
extern "C" void* __libc_memalign(std::size_t alignment, std::size_t size);

namespace {

std::atomic<std::uint64_t> count{0};

void countOne()
{
    count.fetch_add(1, std::memory_order_relaxed);
}

} // namespace

std::uint64_t telvaroAllocationCount()
{
    return count.load(std::memory_order_relaxed);
}

TELVARO_INTERPOSED void* malloc(std::size_t size)
{
    countOne();
    return __libc_malloc(size);
}

TELVARO_INTERPOSED void* calloc(std::size_t number, std::size_t size)
{
    countOne();
    return __libc_calloc(number, size);
}

TELVARO_INTERPOSED void* realloc(void* block, std::size_t size)
{
    countOne();
    return __libc_realloc(block, size);
}

TELVARO_INTERPOSED void* memalign(std::size_t alignment, std::size_t size)
{
    countOne();
    return __libc_memalign(alignment, size);
}

TELVARO_INTERPOSED void* aligned_alloc(std::size_t alignment, std::size_t size)
{
    return memalign(alignment, size);
}

TELVARO_INTERPOSED int posix_memalign(void** block, std::size_t alignment, std::size_t size)
{
    *block = memalign(alignment, size);
    return *block != nullptr ? 0 : ENOMEM;
}
