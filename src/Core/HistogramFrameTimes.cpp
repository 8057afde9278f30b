// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include <Kestrin/Orv/HistogramFrameTimes.h>

#include "Diagnostics.h"

#include <QtCore/QMutexLocker>

namespace Kestrin {
namespace Orv {

namespace {

constexpr quint32 bucketWidthUS = 500;
constexpr quint32 highestBucketUS = 1000000;
constexpr quint32 flushAfterUS = 60000000;

// The early checks also read two fields without the mutex. For derived classes, these fields are
// plain numbers. Here they are read and written like relaxed atomics, so that no thread sees half a
// number. The mutex orders all changes.
quint32 load(const quint32& field)
{
#if defined(__GNUC__)
    return __atomic_load_n(&field, __ATOMIC_RELAXED);
#else
    return static_cast<const volatile quint32&>(field);
#endif
}

void store(quint32& field, quint32 value)
{
#if defined(__GNUC__)
    __atomic_store_n(&field, value, __ATOMIC_RELAXED);
#else
    static_cast<volatile quint32&>(field) = value;
#endif
}

} // namespace

HistogramFrameTimes::HistogramFrameTimes()
    : frameCount(0)
    , totalTimeUS(0)
    , minTimeUS(highestBucketUS)
    , peakBucketUS(0)
    , peakCount(0)
{
}

HistogramFrameTimes::~HistogramFrameTimes()
{
    HistogramFrameTimes::flush();
}

void HistogramFrameTimes::addFrameTimeUS(unsigned int us)
{
    const quint32 bucket = us / bucketWidthUS * bucketWidthUS;
    if (bucket > highestBucketUS)
        return;
    if (load(totalTimeUS) > flushAfterUS)
        flush();

    const QMutexLocker locker(&mutex);
    const quint32 count = ++buckets[bucket];
    if (count > peakCount) {
        peakCount = count;
        peakBucketUS = bucket;
    }
    store(frameCount, load(frameCount) + 1);
    store(totalTimeUS, load(totalTimeUS) + bucket);
    if (bucket < minTimeUS)
        minTimeUS = bucket;
}

void HistogramFrameTimes::clear()
{
    if (load(frameCount) == 0)
        return;
    const QMutexLocker locker(&mutex);
    buckets.clear();
    store(frameCount, 0);
    store(totalTimeUS, 0);
    minTimeUS = highestBucketUS;
    peakBucketUS = 0;
    peakCount = 0;
}

void HistogramFrameTimes::flush()
{
    clear();
}

void HistogramFrameTimes::dump()
{
    if (load(frameCount) == 0)
        return;
    const QMutexLocker locker(&mutex);
    Diagnostics::logger().debug("TIME DUMP %6u frames %6u us %6u us", load(frameCount),
                                load(totalTimeUS), minTimeUS);
    for (auto bucket = buckets.cbegin(); bucket != buckets.cend(); ++bucket) {
        const char mark = bucket.key() == peakBucketUS ? '<'
            : bucket.value() > peakCount / 10          ? '|'
                                                       : ' ';
        Diagnostics::logger().debug("      %6u us %6u %c", bucket.key(), bucket.value(), mark);
    }
}

} // namespace Orv
} // namespace Kestrin
