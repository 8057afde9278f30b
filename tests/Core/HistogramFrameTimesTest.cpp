// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include <Kestrin/Orv/HistogramFrameTimes.h>

#include "support/MessageRecorder.h"

#include <gtest/gtest.h>

#include <QtCore/QStringList>

#include <climits>
#include <cstdint>
#include <cstring>
#include <functional>
#include <map>
#include <type_traits>

using Kestrin::Orv::HistogramFrameTimes;

namespace {

/// Shows the fields.
class Histogram : public HistogramFrameTimes
{
public:
    using HistogramFrameTimes::buckets;
    using HistogramFrameTimes::frameCount;
    using HistogramFrameTimes::minTimeUS;
    using HistogramFrameTimes::mutex;
    using HistogramFrameTimes::peakBucketUS;
    using HistogramFrameTimes::peakCount;
    using HistogramFrameTimes::totalTimeUS;

    void add(std::initializer_list<unsigned int> times)
    {
        for (const unsigned int time : times)
            addFrameTimeUS(time);
    }

    /// "bucket:count ..., frames, total, min, peak bucket:count"
    std::string state() const
    {
        std::string text;
        for (auto it = buckets.begin(); it != buckets.end(); ++it)
            text += std::to_string(it.key()) + ":" + std::to_string(it.value()) + " ";
        return text + "| " + std::to_string(frameCount) + " " + std::to_string(totalTimeUS) + " "
            + std::to_string(minTimeUS) + " " + std::to_string(peakBucketUS) + ":"
            + std::to_string(peakCount);
    }
};

const char kEmpty[] = "| 0 0 1000000 0:0";

/// Calls the hook in place of flush().
class HookedHistogram : public Histogram
{
public:
    ~HookedHistogram() override { }
    void flush() override
    {
        ++flushes;
        if (hook)
            hook();
    }
    int flushes = 0;
    std::function<void()> hook;
};

/// The dump's lines, each of which is checked to be a plain debug message.
QStringList dump(HistogramFrameTimes& histogram)
{
    const MessageRecorder recorder;
    histogram.dump();
    QStringList lines;
    for (const MessageRecorder::Message& message : recorder.messages()) {
        EXPECT_EQ(message.level, QtDebugMsg);
        EXPECT_TRUE(message.hasPlainContext());
        lines << message.text;
    }
    return lines;
}

QStringList lines(std::initializer_list<const char*> texts)
{
    QStringList list;
    for (const char* text : texts)
        list << QString::fromLatin1(text);
    return list;
}

template<typename Method>
std::uintptr_t virtualSlot(Method method)
{
    std::uintptr_t word = 0; // 1 + offset in the table of virtual functions
    std::memcpy(&word, &method, sizeof word);
    return (word - 1) / sizeof(void*);
}

void add61Seconds(HistogramFrameTimes& histogram)
{
    for (int i = 0; i < 61; ++i)
        histogram.addFrameTimeUS(1000000);
}

} // namespace

TEST(HistogramFrameTimes, StartsEmpty)
{
    const Histogram histogram;
    EXPECT_EQ(histogram.state(), kEmpty);
}

TEST(HistogramFrameTimes, CountsAFrameInTheNextLowerMultipleOf500)
{
    Histogram histogram;
    histogram.add({500, 999, 1000, 1499, 1500});
    EXPECT_EQ(histogram.state(), "500:2 1000:2 1500:1 | 5 4500 500 500:2");
}

TEST(HistogramFrameTimes, ALessThan500MicrosecondsLongFrameAddsNoTime)
{
    Histogram histogram;
    histogram.add({499});
    EXPECT_EQ(histogram.state(), "0:1 | 1 0 0 0:1");
    histogram.add({0});
    EXPECT_EQ(histogram.state(), "0:2 | 2 0 0 0:2");
}

TEST(HistogramFrameTimes, TheLastBucketEndsBelow1000500)
{
    Histogram histogram;
    histogram.add({1000499});
    EXPECT_EQ(histogram.state(), "1000000:1 | 1 1000000 1000000 1000000:1");
    histogram.add({1000000, 999999});
    EXPECT_EQ(histogram.state(), "999500:1 1000000:2 | 3 2999500 999500 1000000:2");
}

TEST(HistogramFrameTimes, IgnoresALongerFrame)
{
    Histogram histogram;
    histogram.add({1000500, UINT_MAX, 1u << 31});
    EXPECT_EQ(histogram.state(), kEmpty);
    histogram.add({1000});
    histogram.add({1000500});
    EXPECT_EQ(histogram.state(), "1000:1 | 1 1000 1000 1000:1");
}

TEST(HistogramFrameTimes, TheTotalIsTheSumOfTheBuckets)
{
    Histogram histogram;
    histogram.add({1499, 1499});
    EXPECT_EQ(histogram.totalTimeUS, 2000u);
}

TEST(HistogramFrameTimes, KeepsTheSmallestBucket)
{
    Histogram histogram;
    histogram.add({3000, 2000, 2499, 5000});
    EXPECT_EQ(histogram.minTimeUS, 2000u);
}

TEST(HistogramFrameTimes, ThePeakIsTheFirstBucketToReachItsCount)
{
    Histogram histogram;
    histogram.add({1000, 1000, 2000, 2000});
    EXPECT_EQ(histogram.peakBucketUS, 1000u);
    EXPECT_EQ(histogram.peakCount, 2u);
    histogram.add({2000});
    EXPECT_EQ(histogram.peakBucketUS, 2000u);
    EXPECT_EQ(histogram.peakCount, 3u);
    histogram.add({1000});
    EXPECT_EQ(histogram.peakBucketUS, 2000u);
}

// clear

TEST(HistogramFrameTimes, ClearEmptiesEveryField)
{
    Histogram histogram;
    histogram.add({1000, 1000, 2000});
    histogram.clear();
    EXPECT_EQ(histogram.state(), kEmpty);
}

TEST(HistogramFrameTimes, CountsAfreshAfterAClear)
{
    Histogram histogram;
    histogram.add({1000, 1000});
    histogram.clear();
    histogram.add({3000});
    EXPECT_EQ(histogram.state(), "3000:1 | 1 3000 3000 3000:1");
}

TEST(HistogramFrameTimes, ClearAndDumpOfAnEmptyHistogramDoNotLock)
{
    Histogram histogram;
    const QMutexLocker locker(&histogram.mutex);
    histogram.clear();
    histogram.dump();
    histogram.HistogramFrameTimes::flush();
    EXPECT_EQ(histogram.state(), kEmpty);
}

TEST(HistogramFrameTimes, TheMutexIsFreeBetweenTheOperations)
{
    Histogram histogram;
    histogram.add({1000});
    ASSERT_TRUE(histogram.mutex.tryLock());
    histogram.mutex.unlock();
    dump(histogram);
    ASSERT_TRUE(histogram.mutex.tryLock());
    histogram.mutex.unlock();
    histogram.clear();
    ASSERT_TRUE(histogram.mutex.tryLock());
    EXPECT_FALSE(histogram.mutex.isRecursive());
    histogram.mutex.unlock();
}

// flush

TEST(HistogramFrameTimes, AFrameAfterMoreThanAMinuteFlushesFirst)
{
    Histogram histogram;
    add61Seconds(histogram);
    EXPECT_EQ(histogram.totalTimeUS, 61000000u);
    EXPECT_EQ(histogram.frameCount, 61u);
    histogram.add({2000});
    EXPECT_EQ(histogram.state(), "2000:1 | 1 2000 2000 2000:1");
}

TEST(HistogramFrameTimes, AMinuteSharpIsNotFlushed)
{
    Histogram histogram;
    for (int i = 0; i < 60; ++i)
        histogram.addFrameTimeUS(1000000);
    EXPECT_EQ(histogram.totalTimeUS, 60000000u);
    histogram.add({500});
    EXPECT_EQ(histogram.frameCount, 61u);
    EXPECT_EQ(histogram.totalTimeUS, 60000500u);
    histogram.add({500});
    EXPECT_EQ(histogram.frameCount, 1u);
}

TEST(HistogramFrameTimes, AnIgnoredFrameDoesNotFlush)
{
    Histogram histogram;
    add61Seconds(histogram);
    histogram.add({1000500});
    EXPECT_EQ(histogram.frameCount, 61u);
}

TEST(HistogramFrameTimes, AFrameOfNoTimeFlushesToo)
{
    Histogram histogram;
    add61Seconds(histogram);
    histogram.add({0});
    EXPECT_EQ(histogram.state(), "0:1 | 1 0 0 0:1");
}

TEST(HistogramFrameTimes, FlushClearsAndDumpsNothing)
{
    const MessageRecorder recorder;
    Histogram histogram;
    histogram.add({1000});
    histogram.flush();
    EXPECT_EQ(histogram.state(), kEmpty);
    EXPECT_TRUE(recorder.messages().empty());
}

TEST(HistogramFrameTimes, AnOverridingFlushIsCalledOncePerFrameOutsideTheLock)
{
    HookedHistogram histogram;
    bool wasFree = false;
    unsigned int framesSeen = 0;
    histogram.hook = [&] {
        wasFree = histogram.mutex.tryLock();
        if (wasFree)
            histogram.mutex.unlock();
        framesSeen = histogram.frameCount;
    };
    add61Seconds(histogram);
    EXPECT_EQ(histogram.flushes, 0);
    histogram.add({1000});
    EXPECT_EQ(histogram.flushes, 1);
    EXPECT_TRUE(wasFree);
    EXPECT_EQ(framesSeen, 61u);
    EXPECT_EQ(histogram.frameCount, 62u);
    histogram.add({1000});
    EXPECT_EQ(histogram.flushes, 2);
}

TEST(HistogramFrameTimes, AnOverridingFlushMayDumpAndClear)
{
    const MessageRecorder recorder;
    HookedHistogram histogram;
    histogram.hook = [&] {
        histogram.dump();
        histogram.clear();
    };
    add61Seconds(histogram);
    histogram.add({1000});
    EXPECT_EQ(histogram.state(), "1000:1 | 1 1000 1000 1000:1");
    const auto messages = recorder.messages();
    ASSERT_EQ(messages.size(), 2u);
    EXPECT_EQ(messages[0].text, QStringLiteral("TIME DUMP     61 frames 61000000 us 1000000 us"));
    EXPECT_EQ(messages[1].text, QStringLiteral("      1000000 us     61 <"));
}

TEST(HistogramFrameTimes, TheTotalHas32Bits)
{
    HookedHistogram histogram; // never empties itself
    for (int i = 0; i < 4295; ++i)
        histogram.addFrameTimeUS(1000000);
    EXPECT_EQ(histogram.frameCount, 4295u);
    EXPECT_EQ(histogram.totalTimeUS, static_cast<unsigned int>(4295000000ull - (1ull << 32)));
}

TEST(HistogramFrameTimes, DestructionDoesNotCallAnOverridingFlush)
{
    const MessageRecorder recorder;
    static int flushes;
    flushes = 0;
    struct Counting : Histogram
    {
        void flush() override { ++flushes; }
    };
    {
        Counting histogram;
        histogram.addFrameTimeUS(1000);
    }
    EXPECT_EQ(flushes, 0);
    EXPECT_TRUE(recorder.messages().empty());
}

// dump

TEST(HistogramFrameTimes, DumpsATotalsLineAndOneLinePerBucketInAscendingOrder)
{
    Histogram histogram;
    for (int i = 0; i < 20; ++i)
        histogram.addFrameTimeUS(16500);
    for (int i = 0; i < 3; ++i)
        histogram.addFrameTimeUS(17000);
    for (int i = 0; i < 2; ++i)
        histogram.addFrameTimeUS(500);
    histogram.addFrameTimeUS(123456);
    EXPECT_EQ(dump(histogram),
              lines({"TIME DUMP     26 frames 505000 us    500 us", "         500 us      2  ",
                     "       16500 us     20 <", "       17000 us      3 |",
                     "      123000 us      1  "}));
}

TEST(HistogramFrameTimes, DumpsATieWithOnePeak)
{
    Histogram histogram;
    histogram.add({1000, 1000, 2000, 2000});
    EXPECT_EQ(dump(histogram),
              lines({"TIME DUMP      4 frames   6000 us   1000 us", "        1000 us      2 <",
                     "        2000 us      2 |"}));
}

TEST(HistogramFrameTimes, MarksMoreThanATenthOfThePeakRoundedDown)
{
    Histogram histogram;
    for (int i = 0; i < 39; ++i)
        histogram.addFrameTimeUS(1000);
    for (int i = 0; i < 4; ++i)
        histogram.addFrameTimeUS(2000);
    for (int i = 0; i < 3; ++i)
        histogram.addFrameTimeUS(3000);
    EXPECT_EQ(dump(histogram),
              lines({"TIME DUMP     46 frames  56000 us   1000 us", "        1000 us     39 <",
                     "        2000 us      4 |", "        3000 us      3  "}));
}

TEST(HistogramFrameTimes, DumpsABucketOfNoTime)
{
    Histogram histogram;
    histogram.add({0, 499, 1000000});
    EXPECT_EQ(dump(histogram),
              lines({"TIME DUMP      3 frames 1000000 us      0 us", "           0 us      2 <",
                     "      1000000 us      1 |"}));
}

TEST(HistogramFrameTimes, DumpsNothingWhenEmpty)
{
    Histogram histogram;
    EXPECT_EQ(dump(histogram), QStringList());
    histogram.add({1000});
    histogram.clear();
    EXPECT_EQ(dump(histogram), QStringList());
}

TEST(HistogramFrameTimes, DumpChangesNothing)
{
    Histogram histogram;
    histogram.add({1000, 2000, 2000});
    const std::string before = histogram.state();
    const QStringList first = dump(histogram);
    EXPECT_EQ(histogram.state(), before);
    EXPECT_EQ(dump(histogram), first);
}

TEST(HistogramFrameTimes, AnOverridingDumpReadsTheFields)
{
    struct Csv : HistogramFrameTimes
    {
        void dump() override
        {
            const QMutexLocker locker(&mutex);
            for (auto it = buckets.cbegin(); it != buckets.cend(); ++it)
                text += std::to_string(it.key()) + "," + std::to_string(it.value()) + "\n";
        }
        std::string text;
    } histogram;
    histogram.addFrameTimeUS(2000);
    histogram.addFrameTimeUS(1000);
    static_cast<HistogramFrameTimes&>(histogram).dump();
    EXPECT_EQ(histogram.text, "1000,1\n2000,1\n");
}

TEST(HistogramFrameTimes, ADerivedDumpBindsPassesAndPrintsTheFields)
{
    struct Derived : Histogram
    {
        void dump() override
        {
            const quint32& frames = frameCount;
            const auto twice = [](quint32 number) { return 2 * number; };
            char line[64];
            std::snprintf(line, sizeof line, "%u %u %u %u %u", frames, twice(totalTimeUS),
                          minTimeUS, peakBucketUS, peakCount);
            text = line;
        }
        std::string text;
    };
    Derived histogram;
    histogram.add({1000, 1000, 500});
    histogram.dump();
    EXPECT_EQ(histogram.text, "3 5000 500 1000 2");
}

TEST(HistogramFrameTimes, IsDestroyedThroughItsBaseAndNeverCopied)
{
    EXPECT_TRUE(std::has_virtual_destructor<HistogramFrameTimes>::value);
    EXPECT_FALSE(std::is_copy_constructible<HistogramFrameTimes>::value);
    EXPECT_FALSE(std::is_copy_assignable<HistogramFrameTimes>::value);
}

TEST(HistogramFrameTimes, ItsVirtualOperationsFollowTheTwoDestructors)
{
    EXPECT_EQ(virtualSlot(&HistogramFrameTimes::flush), 2u);
    EXPECT_EQ(virtualSlot(&HistogramFrameTimes::dump), 3u);
    EXPECT_EQ(sizeof(Histogram::frameCount), 4u);
    EXPECT_EQ(sizeof(Histogram::totalTimeUS), 4u);
}
