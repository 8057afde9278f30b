// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "support/Rows.h"

#include <Kestrin/Orv/HistogramFrameTimes.h>

#include <prometheus/histogram.h>

#include <map>
#include <mutex>
#include <random>
#include <thread>
#include <vector>

// Counting frame times. The size of a row is the number of buckets in use.

using namespace OrvBench;
using Kestrin::Orv::HistogramFrameTimes;

namespace {

using Counts = std::map<unsigned, unsigned>; // by bucket

constexpr unsigned bucketWidth = 500;
constexpr unsigned highestBucket = 1000000;
constexpr unsigned flushAfter = 60000000;

/// The same histogram, made with the standard library.
class MapHistogram
{
public:
    void addFrameTimeUS(unsigned us)
    {
        const unsigned bucket = us / bucketWidth * bucketWidth;
        if (bucket > highestBucket)
            return;
        if (totalTime > flushAfter)
            clear();
        const std::lock_guard<std::mutex> lock(mutex);
        const unsigned count = ++counts[bucket];
        if (count > peakCount) {
            peakCount = count;
            peakBucket = bucket;
        }
        ++frameCount;
        totalTime += bucket;
        if (bucket < minTime)
            minTime = bucket;
    }

    void clear()
    {
        const std::lock_guard<std::mutex> lock(mutex);
        counts.clear();
        frameCount = 0;
        totalTime = 0;
        minTime = highestBucket;
        peakBucket = 0;
        peakCount = 0;
    }

    const Counts& buckets() const { return counts; }
    unsigned peak() const { return peakBucket; }

private:
    std::mutex mutex;
    Counts counts;
    unsigned frameCount = 0;
    unsigned totalTime = 0;
    unsigned minTime = highestBucket;
    unsigned peakBucket = 0;
    unsigned peakCount = 0;
};

/// A histogram of the library whose buckets can be read.
class OpenHistogram : public HistogramFrameTimes
{
public:
    Counts counts() const
    {
        Counts result;
        for (auto it = buckets.cbegin(); it != buckets.cend(); ++it)
            result[it.key()] = it.value();
        return result;
    }
    unsigned peak() const { return peakBucketUS; }
};

/// The upper bounds of the same buckets. prometheus-cpp includes the bound in the bucket.
prometheus::Histogram::BucketBoundaries boundaries()
{
    prometheus::Histogram::BucketBoundaries bounds;
    for (unsigned bucket = 0; bucket <= highestBucket; bucket += bucketWidth)
        bounds.push_back(bucket + bucketWidth - 1);
    return bounds;
}

Counts countsOf(const prometheus::Histogram& histogram)
{
    Counts counts;
    std::uint64_t before = 0;
    unsigned bucket = 0;
    for (const auto& entry : histogram.Collect().histogram.bucket) {
        if (entry.cumulative_count > before)
            counts[bucket] = static_cast<unsigned>(entry.cumulative_count - before);
        before = entry.cumulative_count;
        bucket += bucketWidth;
    }
    return counts;
}

/// Frame times around 16.6 ms that are spread evenly over the given number of buckets.
std::vector<unsigned> makeTimes(int numBuckets)
{
    std::mt19937 random(4);
    std::vector<unsigned> times;
    for (int i = 0; i < 4096; ++i) {
        times.push_back(16600 - 16600 / bucketWidth * bucketWidth
                        + (33 - static_cast<unsigned>(numBuckets) / 2
                           + static_cast<unsigned>(random()) % static_cast<unsigned>(numBuckets))
                            * bucketWidth);
    }
    return times;
}

void compare(const std::vector<unsigned>& times, int numBuckets)
{
    OpenHistogram orv;
    MapHistogram map;
    prometheus::Histogram peer(boundaries());
    // Their sum stays below a minute, because the first two empty themselves after a minute.
    for (std::size_t i = 0; i < 3000; ++i) {
        orv.addFrameTimeUS(times[i]);
        map.addFrameTimeUS(times[i]);
        peer.Observe(times[i]);
        requireEqual(orv.peak(), map.peak(), "the peak");
    }
    requireEqual(static_cast<int>(map.buckets().size()), numBuckets, "the number of buckets");
    requireEqual(orv.counts(), map.buckets(), "counts of the map");
    requireEqual(orv.counts(), countsOf(peer), "counts of prometheus-cpp");
    for (const unsigned time : times) {
        orv.addFrameTimeUS(time);
        map.addFrameTimeUS(time);
    }
    requireEqual(orv.counts(), map.buckets(), "counts after a minute");
}

void addRows(int numBuckets)
{
    const auto add = [numBuckets](const char* subject, auto run) {
        addRow("histogram", "count a frame", subject, numBuckets, [=](benchmark::State& state) {
            static Cache<std::vector<unsigned>> cache;
            const std::vector<unsigned>& times = cache.get(std::to_string(numBuckets), [&] {
                auto made = std::make_unique<std::vector<unsigned>>(makeTimes(numBuckets));
                compare(*made, numBuckets);
                return made;
            });
            run(state, times);
        });
    };
    const auto count = [](benchmark::State& state, const std::vector<unsigned>& times,
                          auto addTime) {
        std::size_t i = 0;
        for (auto _ : state)
            addTime(times[i++ % 4096]);
    };
    add("orv", [count](benchmark::State& state, const std::vector<unsigned>& times) {
        HistogramFrameTimes histogram;
        count(state, times, [&](unsigned us) { histogram.addFrameTimeUS(us); });
    });
    add("map", [count](benchmark::State& state, const std::vector<unsigned>& times) {
        MapHistogram histogram;
        count(state, times, [&](unsigned us) { histogram.addFrameTimeUS(us); });
    });
    add("prometheus", [count](benchmark::State& state, const std::vector<unsigned>& times) {
        prometheus::Histogram histogram(boundaries());
        count(state, times, [&](unsigned us) { histogram.Observe(us); });
    });
}

const bool registered = [] {
    // The process must have started a second thread, as every host of a histogram has. Before that,
    // the C library's mutexes do without atomic operations, but QMutex does not.
    std::thread([] {}).join();
    for (const int numBuckets : {1, 10, 60})
        addRows(numBuckets);
    return true;
}();

} // namespace
