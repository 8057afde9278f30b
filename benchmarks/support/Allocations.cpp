// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "support/Allocations.h"

#include <malloc.h>

#include <atomic>
#include <cerrno>
#include <cstdlib>

// glibc's own names of the functions that are replaced here.
extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
void __libc_free(void* block);
}

namespace {

std::atomic<std::size_t> numAllocations{0};
std::atomic<std::ptrdiff_t> bytesInUse{0};

/// The size of a block: the bytes that it can hold and the size field before them.
std::ptrdiff_t sizeOf(void* block)
{
    return block ? static_cast<std::ptrdiff_t>(malloc_usable_size(block) + sizeof(std::size_t)) : 0;
}

void* counted(void* block)
{
    if (block) {
        numAllocations.fetch_add(1, std::memory_order_relaxed);
        bytesInUse.fetch_add(sizeOf(block), std::memory_order_relaxed);
    }
    return block;
}

void discount(void* block)
{
    bytesInUse.fetch_sub(sizeOf(block), std::memory_order_relaxed);
}

} // namespace

extern "C" {

void* malloc(std::size_t size)
{
    return counted(__libc_malloc(size));
}

void* calloc(std::size_t count, std::size_t size)
{
    return counted(__libc_calloc(count, size));
}

void* realloc(void* block, std::size_t size)
{
    const std::ptrdiff_t before = sizeOf(block);
    void* moved = __libc_realloc(block, size);
    if (moved || size == 0)
        bytesInUse.fetch_sub(before, std::memory_order_relaxed);
    return counted(moved);
}

void* memalign(std::size_t alignment, std::size_t size)
{
    return counted(__libc_memalign(alignment, size));
}

void* aligned_alloc(std::size_t alignment, std::size_t size)
{
    return memalign(alignment, size);
}

int posix_memalign(void** block, std::size_t alignment, std::size_t size)
{
    *block = memalign(alignment, size);
    return *block ? 0 : ENOMEM;
}

void free(void* block)
{
    discount(block);
    __libc_free(block);
}

} // extern "C"

namespace OrvBench {

Allocations allocations()
{
    return {numAllocations.load(std::memory_order_relaxed),
            bytesInUse.load(std::memory_order_relaxed)};
}

} // namespace OrvBench
