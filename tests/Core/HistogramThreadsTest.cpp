// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include <Kestrin/Orv/HistogramFrameTimes.h>

#include "support/AnnotatedMutex.h"
#include "support/MessageRecorder.h"

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <thread>
#include <vector>

using Kestrin::Orv::HistogramFrameTimes;

namespace {

class Histogram : public HistogramFrameTimes
{
public:
    using HistogramFrameTimes::buckets;
    using HistogramFrameTimes::frameCount;
    using HistogramFrameTimes::peakBucketUS;
    using HistogramFrameTimes::peakCount;
    using HistogramFrameTimes::totalTimeUS;

    /// The invariants, to be checked while no thread is at work.
    void check() const
    {
        unsigned int frames = 0;
        unsigned int time = 0;
        unsigned int peak = 0;
        for (auto it = buckets.begin(); it != buckets.end(); ++it) {
            frames += it.value();
            time += it.key() * it.value();
            peak = std::max(peak, it.value());
        }
        EXPECT_EQ(frameCount, frames);
        EXPECT_EQ(totalTimeUS, time);
        EXPECT_EQ(peakCount, peak);
        EXPECT_EQ(buckets.value(peakBucketUS), peak);
    }
};

/// Counts the frames that it is told to forget.
class FlushingHistogram : public Histogram
{
public:
    void flush() override
    {
        ++flushes;
        dump();
        clear();
    }
    std::atomic<int> flushes{0};
};

void runTogether(std::initializer_list<std::function<void()>> works)
{
    std::vector<std::thread> threads;
    for (const auto& work : works)
        threads.emplace_back(work);
    for (std::thread& thread : threads)
        thread.join();
}

const int kFrames = 20000;

} // namespace

TEST(HistogramThreads, NoFrameIsLost)
{
    Histogram histogram;
    const auto add = [&histogram] {
        for (int i = 0; i < kFrames; ++i)
            histogram.addFrameTimeUS(static_cast<unsigned int>(i % 3) * 250);
    };
    runTogether({add, add, add, add});
    EXPECT_EQ(histogram.frameCount, 4u * kFrames);
    histogram.check();
}

TEST(HistogramThreads, AddingClearingFlushingAndDumpingGoTogether)
{
    const MessageRecorder recorder;
    Histogram histogram;
    const auto add = [&histogram] {
        for (int i = 0; i < kFrames; ++i)
            histogram.addFrameTimeUS(static_cast<unsigned int>(i % 2000) * 500);
    };
    runTogether({add, add,
                 [&histogram] {
                     for (int i = 0; i < 300; ++i)
                         histogram.clear();
                 },
                 [&histogram] {
                     for (int i = 0; i < 300; ++i)
                         histogram.flush();
                 },
                 [&histogram] {
                     for (int i = 0; i < 30; ++i)
                         histogram.dump();
                 }});
    histogram.check();
    for (const MessageRecorder::Message& message : recorder.messages())
        ASSERT_TRUE(message.text.startsWith(QLatin1String("TIME DUMP "))
                    || message.text.startsWith(QLatin1String("      ")));
}

TEST(HistogramThreads, AFlushThatDumpsAndClearsIsCalledFromAnyThread)
{
    const MessageRecorder recorder;
    FlushingHistogram histogram;
    const auto add = [&histogram] {
        for (int i = 0; i < 2000; ++i)
            histogram.addFrameTimeUS(1000000);
    };
    runTogether({add, add, add});
    EXPECT_GT(histogram.flushes, 0);
    histogram.check();
    EXPECT_LE(histogram.frameCount, 64u); // one minute, and a frame of each thread
}

TEST(HistogramThreads, ADumpIsOfOneMoment)
{
    const MessageRecorder recorder;
    Histogram histogram;
    histogram.addFrameTimeUS(500);
    runTogether({[&histogram] {
                     for (int i = 0; i < kFrames; ++i)
                         histogram.addFrameTimeUS(500);
                 },
                 [&histogram] {
                     for (int i = 0; i < 200; ++i)
                         histogram.dump();
                 }});
    const auto messages = recorder.messages();
    ASSERT_EQ(messages.size(), 400u);
    for (size_t i = 0; i < messages.size(); i += 2) {
        const QString frames = messages[i].text.mid(10, 6);
        EXPECT_EQ(messages[i + 1].text,
                  QStringLiteral("         500 us ") + frames + QStringLiteral(" <"));
    }
}
