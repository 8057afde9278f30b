// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include <Kestrin/Orv/Inspect/Trace.h>
#include <Kestrin/Orv/Inspect/TracedPass.h>

#include "Inspect/Runtime/TimedScene.h"

#include <gtest/gtest.h>

#include <chrono>
#include <limits>

using namespace Kestrin::Orv;
using namespace Kestrin::Orv::Inspect;

TEST(TraceClock, StandsStillWhereItRunsBackwards)
{
    Timed t;
    const auto pass = makePass(t.trace, "A");
    t.time = 1010;
    t.trace.beginFrame();
    t.time = 1005;
    pass->start(nullptr);
    t.time = std::numeric_limits<qint64>::min();
    pass->start(nullptr);
    t.time = 1020;
    t.trace.endFrame();
    EXPECT_EQ(t.events(), "frame@0 10-20 A.start@0 10-10 A.start@0 10-10");
}

TEST(TraceClock, MayBeginAnywhere)
{
    const qint64 min = std::numeric_limits<qint64>::min();
    qint64 time = min;
    Trace trace(10, [&time] { return time; });
    time = min + 5;
    trace.beginFrame();
    time = std::numeric_limits<qint64>::max(); // more than fits
    trace.endFrame();
    ASSERT_EQ(trace.numEvents(), 1);
    EXPECT_EQ(trace.events().first().beginNs, 5);
    EXPECT_EQ(trace.events().first().endNs, 5);
}

TEST(TraceClock, IsTheSteadyOneByDefault)
{
    const auto before = std::chrono::steady_clock::now();
    Trace trace;
    trace.beginFrame();
    trace.endFrame();
    const std::chrono::nanoseconds all = std::chrono::steady_clock::now() - before;
    ASSERT_EQ(trace.numEvents(), 1);
    const TraceEvent event = trace.events().first();
    EXPECT_GE(event.beginNs, 0);
    EXPECT_GE(event.endNs, event.beginNs);
    EXPECT_LE(event.endNs, all.count());
}
