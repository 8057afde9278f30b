// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef ORV_BENCHMARKS_ALLOCATIONS_H
#define ORV_BENCHMARKS_ALLOCATIONS_H

#include <cstddef>

namespace OrvBench {

/// What the program that links Allocations.cpp has taken from the heap, its libraries included:
/// that file stands in for malloc and its kin.
struct Allocations
{
    std::size_t count;    // allocations so far
    std::ptrdiff_t bytes; // in use now, with what the allocator adds to each block
};

Allocations allocations();

} // namespace OrvBench

#endif
