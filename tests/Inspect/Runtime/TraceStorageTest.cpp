// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include <Kestrin/Orv/Inspect/Trace.h>
#include <Kestrin/Orv/Inspect/TracedPass.h>

#include "Inspect/Runtime/TimedScene.h"

#include <gtest/gtest.h>

using namespace Kestrin::Orv;
using namespace Kestrin::Orv::Inspect;

TEST(TraceStorage, ClearForgetsAllButThePasses)
{
    TimedScene s;
    s.onePass();
    s.frame();
    s.trace.beginFrame();
    s.trace.clear();
    EXPECT_EQ(s.trace.numEvents(), 0);
    EXPECT_EQ(s.trace.numPasses(), 1);
    s.trace.endFrame();
    EXPECT_EQ(s.events(), "");
    s.time = 2000;
    s.frame();
    EXPECT_EQ(s.trace.events().first().frame, 0);
    EXPECT_EQ(s.trace.events().first().beginNs, 1000);
    EXPECT_EQ(s.trace.frames().count, 1);
}

TEST(TraceStorage, ClearDuringACallForgetsTheCall)
{
    TimedScene s;
    const int node = s.onePass();
    s.at(node).unfinishedPolls = 1;
    s.afterCall(node, "isFinished", [&] { s.trace.clear(); });
    s.frame();
    EXPECT_EQ(s.events(), "A.endFrame 22-32");
    s.at(node).onCall = [&](const std::string& operation) {
        if (operation == "endFrame")
            s.trace.clear();
    };
    s.at(node).failStart = 3;
    s.frame();
    EXPECT_EQ(s.events(), "");
}

TEST(TraceStorage, ACallBeforeClearingEndsNoLaterOne)
{
    TimedScene s;
    const int a = s.onePass();
    const int b = s.pass("B", 0, 0);
    s.beforeCall(a, "start", [&] {
        s.trace.clear();
        s.scene.renderer.renderPass(b)->setup(nullptr);
    });
    s.scene.renderer.renderPass(a)->start(nullptr);
    EXPECT_EQ(s.events(), "B.setup 0-10");
    s.trace.beginFrame();
    EXPECT_EQ(s.trace.frames().count, 0);
}

TEST(TraceStorage, FramesBeforeClearingDoNotCountLaterOnes)
{
    TimedScene s;
    s.onePass();
    s.frame();
    s.frame();
    s.trace.clear();
    s.trace.beginFrame();
    s.scene.render();
    EXPECT_EQ(s.trace.frames().count, 0);
    EXPECT_EQ(s.trace.passes().first().count, 0);
}

TEST(TraceStorage, RecordingStopsWhenTheCapacityIsReached)
{
    TimedScene s(6);
    s.onePass();
    s.frame();
    EXPECT_EQ(s.trace.numDropped(), 0);
    s.frame();
    EXPECT_EQ(s.trace.numEvents(), 6);
    EXPECT_EQ(s.trace.numDropped(), 2);
    s.frame();
    EXPECT_EQ(s.trace.numEvents(), 6);
    EXPECT_EQ(s.trace.numDropped(), 6);
    EXPECT_EQ(s.events(),
              "frame@0 0-31 A.beginFrame@0 0-10 A.start@0 10-20 A.endFrame@0 21-31 "
              "frame@1 31-62 A.beginFrame@1 31-41");
    s.trace.clear();
    EXPECT_EQ(s.trace.numDropped(), 0);
    s.frame();
    EXPECT_EQ(s.trace.numEvents(), 4);
}

TEST(TraceStorage, WaitThatDoesNotFitIsDropped)
{
    TimedScene s(3);
    const int node = s.onePass();
    s.at(node).unfinishedPolls = 1;
    s.frame();
    EXPECT_EQ(s.events(), "frame@0 0-32 A.beginFrame@0 0-10 A.start@0 10-20");
    EXPECT_EQ(s.trace.numDropped(), 2);
    EXPECT_EQ(s.trace.frames().count, 0);
}

TEST(TraceStorage, NegativeCapacityHoldsNothing)
{
    Trace trace(-1);
    trace.beginFrame();
    makePass(trace, "A")->start(nullptr);
    trace.endFrame();
    EXPECT_EQ(trace.numEvents(), 0);
    EXPECT_EQ(trace.numDropped(), 3);
}
