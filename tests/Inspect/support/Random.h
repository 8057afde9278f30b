// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef ORV_TESTS_RANDOM_H
#define ORV_TESTS_RANDOM_H

#include <random>

/// The same numbers for the same seed, with every compiler.
using Random = std::mt19937;

/// A number from 0 up to, but not including, the limit.
inline int below(Random& random, int limit)
{
    return static_cast<int>(random() % static_cast<unsigned>(limit));
}

#endif
