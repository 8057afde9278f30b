// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include <Kestrin/Orv/Inspect/Trace.h>
#include <Kestrin/Orv/Inspect/TracedPass.h>

#include <Kestrin/Orv/RenderPassHelper.h>

#include "Inspect/Runtime/TimedScene.h"

#include <gtest/gtest.h>

#include <limits>
#include <memory>
#include <utility>

using namespace Kestrin::Orv;
using namespace Kestrin::Orv::Inspect;

TEST(TraceNames, IndexThatNamesNothingIsHarmless)
{
    Trace trace(10);
    const auto pass = makePass(trace, "A");
    const int max = std::numeric_limits<int>::max();
    EXPECT_EQ(pass->index(), 0);
    EXPECT_EQ(trace.passName(0), QStringLiteral("A"));
    for (const int index : {-1, 1, max, -max - 1}) {
        EXPECT_EQ(trace.passName(index), QString());
        EXPECT_EQ(trace.numCalls(index, TraceEvent::Start), 0);
    }
    EXPECT_EQ(trace.numCalls(0, static_cast<TraceEvent::Kind>(TraceEvent::SetErrorCode + 1)), 0);
    EXPECT_EQ(Trace::kindName(static_cast<TraceEvent::Kind>(TraceEvent::SetErrorCode + 1)),
              QString());
    EXPECT_EQ(Trace::kindName(TraceEvent::SetErrorCode), QStringLiteral("setErrorCode"));
}

TEST(TraceNames, PassesAreNamedByThePathsOfTheirNodes)
{
    Trace trace(10);
    Trace other(10);
    Renderer renderer;
    const int group = renderer.addGroup(QStringLiteral("Bloom"), 0, 0, 0);
    renderer.addPass(QStringLiteral("Plain"), new RenderPassHelper, group);
    renderer.addPass(
        QStringLiteral("Blur"),
        new TracedPass(other, QString(), new TracedPass(trace, QString(), new RenderPassHelper)),
        group);
    Trace::namePasses(renderer);
    EXPECT_EQ(trace.passName(0), QStringLiteral("Bloom/Blur"));
    EXPECT_EQ(other.passName(0), QStringLiteral("Bloom/Blur"));
}

TEST(TraceSummaries, PercentilesAreNearestRanks)
{
    Timed t;
    // 1 to 10, in some order.
    for (const int duration : {4, 1, 10, 7, 2, 9, 3, 8, 5, 6}) {
        t.trace.beginFrame();
        t.time += duration;
        t.trace.endFrame();
    }
    const TraceSummary frames = t.trace.frames();
    EXPECT_EQ(frames.name, QString());
    EXPECT_EQ(frames.count, 10);
    EXPECT_EQ(frames.total, 55);
    EXPECT_EQ(frames.minimum, 1);
    EXPECT_EQ(frames.median, 5);
    EXPECT_EQ(frames.percentile90, 9);
    EXPECT_EQ(frames.percentile99, 10);
    EXPECT_EQ(frames.maximum, 10);
}

TEST(TraceSummaries, PercentilesOfFewAndMany)
{
    for (const int count : {1, 2, 3, 99, 100, 101, 200}) {
        Timed t;
        for (int i = 1; i <= count; ++i) {
            t.trace.beginFrame();
            t.time += i;
            t.trace.endFrame();
        }
        // The smallest value that so many percent do not exceed.
        const auto nearestRank = [count](int percent) {
            int rank = 1;
            while (rank * 100 < percent * count)
                ++rank;
            return rank;
        };
        const TraceSummary frames = t.trace.frames();
        EXPECT_EQ(frames.median, nearestRank(50)) << count;
        EXPECT_EQ(frames.percentile90, nearestRank(90)) << count;
        EXPECT_EQ(frames.percentile99, nearestRank(99)) << count;
    }
}

TEST(TraceSummaries, NothingRecordedIsAllZero)
{
    Trace trace(10);
    const auto pass = makePass(trace, "A");
    const TraceSummary frames = trace.frames();
    EXPECT_EQ(frames.count, 0);
    EXPECT_EQ(frames.maximum, 0);
    const QVector<TraceSummary> passes = trace.passes();
    ASSERT_EQ(passes.size(), 1);
    EXPECT_EQ(passes[0].name, QStringLiteral("A"));
    EXPECT_EQ(passes[0].count, 0);
    EXPECT_EQ(passes[0].total, 0);
}

TEST(TraceSummaries, PassTakesItsCallsAndTheWait)
{
    TimedScene s;
    const int node = s.onePass();
    s.frame();
    s.at(node).unfinishedPolls = 4;
    s.frame();
    const TraceSummary pass = s.trace.passes().first();
    EXPECT_EQ(pass.count, 2);
    EXPECT_EQ(pass.total, 30 + 35);
    EXPECT_EQ(pass.minimum, 30);
    EXPECT_EQ(pass.median, 30);
    EXPECT_EQ(pass.maximum, 35);
}

TEST(TraceSummaries, DetailChangesNothing)
{
    TimedScene s;
    const int node = s.onePass();
    s.trace.setDetail(Trace::EveryCall);
    s.afterCall(node, "setInput", [&] { s.time += 1000; });
    s.frame();
    EXPECT_EQ(s.trace.passes().first().total, 30);
    EXPECT_EQ(s.trace.frames().total, 1031);
}

TEST(TraceSummaries, CallsOutsideFramesDoNotCount)
{
    TimedScene s;
    s.onePass();
    s.scene.setup();
    s.scene.render();
    s.frame();
    s.scene.teardown();
    EXPECT_EQ(s.trace.passes().first().count, 1);
    EXPECT_EQ(s.trace.passes().first().total, 30);
}

TEST(TraceSummaries, SetupWithinAFrameCounts)
{
    TimedScene s;
    const int node = s.onePass();
    s.scene.renderer.setEnabled(node, true);
    s.frame();
    EXPECT_EQ(s.trace.passes().first().total, 50);
}

TEST(TraceSummaries, CallsWithinCallsOfTheSamePassCountOnce)
{
    TimedScene s;
    const int node = s.onePass();
    bool within = false;
    s.afterCall(node, "start", [&] {
        if (!std::exchange(within, true))
            s.scene.render();
    });
    s.frame();
    // beginFrame, start with a whole frame of 31 in it, endFrame
    EXPECT_EQ(s.trace.passes().first().total, 10 + 41 + 10);
}

TEST(TraceSummaries, OpenFrameDoesNotCount)
{
    TimedScene s;
    s.onePass();
    s.frame();
    s.trace.beginFrame();
    s.scene.render();
    EXPECT_EQ(s.trace.frames().count, 1);
    EXPECT_EQ(s.trace.passes().first().count, 1);
    s.trace.endFrame();
    EXPECT_EQ(s.trace.frames().count, 2);
    EXPECT_EQ(s.trace.passes().first().count, 2);
}

TEST(TraceSummaries, FrameThatDidNotFitDoesNotCount)
{
    TimedScene s(6);
    s.onePass();
    s.frame();
    s.frame();
    EXPECT_EQ(s.trace.frames().count, 1);
    EXPECT_EQ(s.trace.passes().first().count, 1);
    EXPECT_EQ(s.trace.passes().first().total, 30);
}

TEST(TraceSummaries, PassesComeInTheOrderInWhichTheyWereMade)
{
    Trace trace(100);
    const auto a = makePass(trace, "Z");
    const auto b = makePass(trace, "A");
    const auto c = makePass(trace, "M");
    trace.beginFrame();
    c->start(nullptr);
    a->start(nullptr);
    trace.endFrame();
    const QVector<TraceSummary> passes = trace.passes();
    ASSERT_EQ(passes.size(), 3);
    EXPECT_EQ(passes[0].name, QStringLiteral("Z"));
    EXPECT_EQ(passes[0].count, 1);
    EXPECT_EQ(passes[1].name, QStringLiteral("A"));
    EXPECT_EQ(passes[1].count, 0);
    EXPECT_EQ(passes[2].name, QStringLiteral("M"));
    EXPECT_EQ(passes[2].count, 1);
}
