// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include <Kestrin/Orv/Inspect/Trace.h>
#include <Kestrin/Orv/Inspect/TracedPass.h>

#include "Inspect/Runtime/TimedScene.h"

#include <gtest/gtest.h>

#include <stdexcept>

using namespace Kestrin::Orv;
using namespace Kestrin::Orv::Inspect;

TEST(TraceWait, LastsFromTheEndOfStartUntilThePassIsFinished)
{
    TimedScene s;
    const int node = s.onePass();
    s.at(node).unfinishedPolls = 3;
    s.frame();
    EXPECT_EQ(s.events(),
              "frame@0 0-34 A.beginFrame@0 0-10 A.start@0 10-20 A.wait@0 20-24 "
              "A.endFrame@0 24-34");
}

TEST(TraceWait, FollowsASkipToo)
{
    TimedScene s;
    const int node = s.onePass();
    s.at(node).unfinishedPolls = 1;
    TracedPass& pass = static_cast<TracedPass&>(*s.scene.renderer.renderPass(node));
    pass.skip(nullptr);
    while (!pass.isFinished()) { }
    EXPECT_EQ(s.events(), "A.skip 0-10 A.wait 10-12");
}

TEST(TraceWait, EndsWithAnException)
{
    TimedScene s;
    const int node = s.onePass();
    s.at(node).unfinishedPolls = 5;
    int questions = 0;
    s.afterCall(node, "isFinished", [&questions] {
        if (++questions == 3)
            throw std::runtime_error("lost");
    });
    EXPECT_THROW(s.scene.render(), std::runtime_error);
    EXPECT_EQ(s.events(), "A.beginFrame 0-10 A.start 10-20 A.wait 20-23");
}

TEST(TraceWait, IsNotRecordedWhereItOverlapsAnother)
{
    Timed t;
    CallLog log;
    TracedPass a(t.trace, QStringLiteral("A"), new RecordingPass(log, "A", 0, 0));
    TracedPass b(t.trace, QStringLiteral("B"), new RecordingPass(log, "B", 0, 0));
    static_cast<RecordingPass*>(a.pass())->unfinishedPolls = 2;
    static_cast<RecordingPass*>(b.pass())->unfinishedPolls = 2;
    a.start(nullptr);
    b.start(nullptr);
    for (int i = 0; i < 3; ++i) {
        a.isFinished();
        b.isFinished();
    }
    EXPECT_EQ(t.events(), "A.start 0-0 B.start 0-0");
}

TEST(TraceWait, IsNotRecordedAcrossFrames)
{
    Timed t;
    CallLog log;
    TracedPass a(t.trace, QStringLiteral("A"), new RecordingPass(log, "A", 0, 0));
    static_cast<RecordingPass*>(a.pass())->unfinishedPolls = 2;
    t.trace.beginFrame();
    a.start(nullptr);
    a.isFinished();
    t.time += 5;
    t.trace.endFrame();
    t.time += 5;
    a.isFinished();
    a.isFinished();
    EXPECT_EQ(t.events(), "frame@0 0-5 A.start@0 0-0");
}

TEST(TraceWait, EnclosesTheCallsThatIsFinishedMakes)
{
    TimedScene s;
    const int a = s.onePass();
    const int b = s.pass("B", 0, 0);
    s.at(a).unfinishedPolls = 1;
    s.beforeCall(a, "isFinished", [&] { s.scene.renderer.renderPass(b)->setup(nullptr); });
    s.frame();
    EXPECT_EQ(s.events(),
              "frame@0 0-52 A.beginFrame@0 0-10 A.start@0 10-20 A.wait@0 20-42 "
              "B.setup@0 20-30 B.setup@0 31-41 A.endFrame@0 42-52");
}

TEST(TraceWait, EndsWhenThePassIsFinishedFirst)
{
    TimedScene s;
    const int node = s.onePass();
    s.at(node).unfinishedPolls = 1;
    RenderPass& pass = *s.scene.renderer.renderPass(node);
    pass.start(nullptr);
    EXPECT_FALSE(pass.isFinished());
    EXPECT_TRUE(pass.isFinished());
    EXPECT_TRUE(pass.isFinished());
    EXPECT_EQ(s.events(), "A.start 0-10 A.wait 10-12");
}
