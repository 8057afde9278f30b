// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef ORV_BENCHMARKS_ALLOCATIONS_H
#define ORV_BENCHMARKS_ALLOCATIONS_H

#include <cstddef>

namespace OrvBench {

/// Counts the heap allocations of a program that links Allocations.cpp, including its libraries.
/// That file replaces malloc and related functions.
struct Allocations
{
    std::size_t count;    // allocations so far
    std::ptrdiff_t bytes; // in use now, with what the allocator adds to each block
};

Allocations allocations();

} // namespace OrvBench

#endif
