// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef ORV_TESTS_GROWTH_H
#define ORV_TESTS_GROWTH_H

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <functional>
#include <limits>

/// Whether times say something about the library: under the sanitizers and valgrind (for which
/// tests/CMakeLists.txt sets the variable) their own work stands in the foreground.
inline bool timesCount()
{
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    return false;
#else
    return !std::getenv("ORV_TESTS_WITHOUT_TIMES");
#endif
}

inline double seconds(const std::function<void()>& work)
{
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

/// The best of several times that the work takes on a fresh Subject of this size.
template<typename Subject>
double bestTime(int size, void (*work)(Subject&))
{
    double best = std::numeric_limits<double>::max();
    for (int i = 0; i < 5; ++i) {
        Subject subject(size);
        best = std::min(best, seconds([&] { work(subject); }));
    }
    return best;
}

/// Twice the size takes twice the time when the work is linear, four times when it is quadratic. On
/// a busy machine one measurement may mislead; three in a row do not.
template<typename Subject>
void expectLinear(int size, void (*work)(Subject&))
{
    if (!timesCount())
        GTEST_SKIP() << "times mean nothing here";
    double ratio = 0;
    for (int attempt = 0; attempt < 3; ++attempt) {
        ratio = bestTime(2 * size, work) / bestTime(size, work);
        if (ratio < 3)
            return;
    }
    ADD_FAILURE() << "twice the size takes " << ratio << " times as long";
}

#endif
