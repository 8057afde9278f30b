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

// The mutex orders all changes. The atomics are for the early checks that read without it.
quint32 load(const std::atomic<quint32>& field)
{
    return field.load(std::memory_order_relaxed);
}

void store(std::atomic<quint32>& field, quint32 value)
{
    field.store(value, std::memory_order_relaxed);
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
