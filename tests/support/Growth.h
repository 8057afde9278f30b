// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef ORV_TESTS_GROWTH_H
#define ORV_TESTS_GROWTH_H

#include <gtest/gtest.h>

#include <malloc.h>
#include <time.h>

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <limits>

// Tests of growth compare what the processor spends on a small and on a large subject, within one
// run; none has a limit in seconds. Their suites are called ...Growth, which gives them the label
// `timing`: they alone may be repeated.

/// Whether times say something about the library: under the sanitizers and valgrind (for which
/// scripts/valgrind sets the variable) their own work stands in the foreground.
inline bool timesCount()
{
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    return false;
#else
    return !std::getenv("ORV_TESTS_WITHOUT_TIMES");
#endif
}

/// The time that the processor spends in this thread on the work: other processes do not count.
inline double processorSeconds(const std::function<void()>& work)
{
    // What is freed stays mapped: the first touch of a page costs more than the work in it.
    static const int kept = mallopt(M_MMAP_THRESHOLD, 1 << 30) + mallopt(M_TRIM_THRESHOLD, 1 << 30);
    (void)kept;
    timespec before, after;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &before);
    work();
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &after);
    return static_cast<double>(after.tv_sec - before.tv_sec)
        + 1e-9 * static_cast<double>(after.tv_nsec - before.tv_nsec);
}

/// Expects that the large work takes less than \p limit times as long as the small work. Compares
/// the best of several rounds, a small and a large one in turn, until the answer is clear.
/// \param small, large measure once and answer seconds.
inline void expectGrowthBelow(double limit, const std::function<double()>& small,
                              const std::function<double()>& large)
{
    double bestSmall = std::numeric_limits<double>::max();
    double bestLarge = bestSmall;
    for (int round = 0; round < 15; ++round) {
        bestSmall = std::min(bestSmall, small());
        bestLarge = std::min(bestLarge, large());
        if (round >= 2 && bestLarge < limit * bestSmall)
            return;
    }
    ADD_FAILURE() << "the large work takes " << bestLarge / bestSmall << " times as long, "
                  << bestLarge << " s after " << bestSmall << " s";
}

/// The time that the work takes on a fresh Subject of this size.
template<typename Subject>
double timeOn(int size, void (*work)(Subject&))
{
    Subject subject(size);
    return processorSeconds([&] { work(subject); });
}

/// Twice the size takes twice the time when the work is linear, four times when it is quadratic.
template<typename Subject>
void expectLinear(int size, void (*work)(Subject&))
{
    if (!timesCount())
        GTEST_SKIP() << "times mean nothing here";
    expectGrowthBelow(
        3, [&] { return timeOn(size, work); }, [&] { return timeOn(2 * size, work); });
}

/// Eight times the size takes eight times the time when the work is linear, 64 times when it is
/// quadratic. What lies between leaves room for what the caches no longer hold.
template<typename Subject>
void expectLinearUpTo(int size, void (*work)(Subject&))
{
    if (!timesCount())
        GTEST_SKIP() << "times mean nothing here";
    expectGrowthBelow(
        30, [&] { return timeOn(size / 8, work); }, [&] { return timeOn(size, work); });
}

#endif
