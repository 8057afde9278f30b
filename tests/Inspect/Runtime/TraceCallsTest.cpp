// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include <Kestrin/Orv/Inspect/Trace.h>
#include <Kestrin/Orv/Inspect/TracedPass.h>

#include "Inspect/Runtime/TimedScene.h"
#include "Inspect/Runtime/TraceFileReader.h"
#include "support/LightPass.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <utility>

using namespace Kestrin::Orv;
using namespace Kestrin::Orv::Inspect;

TEST(TraceCalls, AreThoseOfTheLifeCycleByDefault)
{
    TimedScene s;
    s.onePass();
    EXPECT_TRUE(s.frame());
    EXPECT_EQ(s.events(), "frame@0 0-31 A.beginFrame@0 0-10 A.start@0 10-20 A.endFrame@0 21-31");
}

TEST(TraceCalls, CallsOutsideFramesHaveNoFrame)
{
    TimedScene s;
    const int node = s.pass("A");
    s.scene.up(node, 0, s.scene.output());
    s.scene.setup();
    s.scene.render();
    s.scene.teardown();
    EXPECT_EQ(s.events(),
              "A.setup 0-10 A.beginFrame 10-20 A.start 20-30 A.endFrame 31-41 "
              "A.teardown 41-51");
}

TEST(TraceCalls, FramesAreNumbered)
{
    TimedScene s;
    s.onePass();
    s.frame();
    s.frame();
    const QVector<TraceEvent> events = s.trace.events();
    ASSERT_EQ(events.size(), 8);
    EXPECT_EQ(events[3].frame, 0);
    EXPECT_EQ(events[4].kind, TraceEvent::Frame);
    EXPECT_EQ(events[4].frame, 1);
    EXPECT_EQ(events[4].pass, -1);
    EXPECT_EQ(events[7].frame, 1);
}

TEST(TraceCalls, SkippedPassIsRecordedAsSkipped)
{
    TimedScene s;
    const int a = s.pass("A");
    const int b = s.pass("B");
    s.scene.edge(a, 0, b, 0);
    s.scene.up(b, 0, s.scene.output());
    s.scene.staggered();
    s.setUp();
    s.frame();
    EXPECT_EQ(s.events(),
              "frame@0 0-62 A.beginFrame@0 0-10 A.start@0 10-20 A.endFrame@0 21-31 "
              "B.beginFrame@0 31-41 B.skip@0 41-51 B.endFrame@0 52-62");
}

TEST(TraceCalls, EveryCallRecordsAllOperations)
{
    TimedScene s;
    const int node = s.onePass();
    s.trace.setDetail(Trace::EveryCall);
    EXPECT_EQ(s.trace.detail(), Trace::EveryCall);
    s.at(node).unfinishedPolls = 1;
    s.frame();
    EXPECT_EQ(s.events(),
              "frame@0 0-32 A.numInputs@0 0-0 A.defaultValue@0 0-0 A.setInput@0 0-0 "
              "A.clearErrorCode@0 0-0 A.beginFrame@0 0-10 A.start@0 10-20 A.wait@0 20-22 "
              "A.isFinished@0 20-21 A.isFinished@0 21-22 A.endFrame@0 22-32 A.errorCode@0 32-32 "
              "A.output@0 32-32");
}

TEST(TraceCalls, RegistrationIsRecordedUnderEveryCall)
{
    TimedScene s;
    s.trace.setDetail(Trace::EveryCall);
    s.pass("A", 1, 1);
    EXPECT_EQ(s.events(),
              "A.numOutputs 0-0 A.numInputs 0-0 A.numInputs 0-0 A.inputName 0-0 A.numOutputs 0-0 "
              "A.outputName 0-0");
}

TEST(TraceCalls, DestructorIsRecorded)
{
    Timed t;
    CallLog log;
    auto* inner = new RecordingPass(log, "A", 0, 0);
    inner->onDelete = [&t] { t.time += 4; };
    delete new TracedPass(t.trace, QStringLiteral("A"), inner);
    EXPECT_EQ(t.events(), "A.destructor 0-4");
}

TEST(TraceCalls, CallsAreCountedWhateverIsRecorded)
{
    TimedScene s(0);
    const int node = s.onePass();
    s.at(node).unfinishedPolls = 2;
    s.frame();
    s.frame();
    EXPECT_EQ(s.trace.numEvents(), 0);
    EXPECT_EQ(s.trace.numCalls(0, TraceEvent::Start), 2);
    EXPECT_EQ(s.trace.numCalls(0, TraceEvent::IsFinished), 6);
    EXPECT_EQ(s.trace.numCalls(0, TraceEvent::SetInput), 2);
    EXPECT_EQ(s.trace.numCalls(0, TraceEvent::Skip), 0);
    s.trace.clear();
    EXPECT_EQ(s.trace.numCalls(0, TraceEvent::Start), 0);
}

TEST(TraceCalls, EachOperationCountsAsItself)
{
    Trace trace(100);
    {
        TracedPass pass(trace, QStringLiteral("A"), new LightPass(1, 1));
        pass.setup(nullptr);
        pass.beginFrame(nullptr);
        pass.start(nullptr);
        pass.skip(nullptr);
        pass.endFrame(nullptr);
        pass.teardown(nullptr);
        pass.teardownContextData(nullptr);
        pass.isFinished();
        pass.numInputs();
        pass.numOutputs();
        pass.inputName(0);
        pass.outputName(0);
        pass.setInput(0, 1);
        pass.defaultValue(0);
        pass.setDefaultValue(0, 1);
        pass.output(0);
        pass.setNumOutputUsers(0, 1);
        pass.resetNumOutputUsers();
        pass.errorCode();
        pass.clearErrorCode();
        pass.setErrorCode(1);
    }
    for (int kind = TraceEvent::Setup; kind <= TraceEvent::SetErrorCode; ++kind) {
        EXPECT_EQ(trace.numCalls(0, static_cast<TraceEvent::Kind>(kind)), 1)
            << Trace::kindName(static_cast<TraceEvent::Kind>(kind)).toStdString();
    }
    EXPECT_EQ(trace.numCalls(0, TraceEvent::Frame), 0);
    EXPECT_EQ(trace.numCalls(0, TraceEvent::Wait), 0);
}

TEST(TraceCalls, ErrorCodeStaysWithTheEndOfTheFrameThatItEnded)
{
    TimedScene s;
    const int node = s.onePass();
    s.at(node).failStart = 7;
    EXPECT_FALSE(s.frame());
    EXPECT_EQ(s.events(),
              "frame@0 0-31 A.beginFrame@0 0-10 A.start@0 10-20 A.endFrame@0 21-31 failed 7");
    s.at(node).failStart = 0;
    EXPECT_TRUE(s.frame());
    EXPECT_EQ(s.trace.events().last().errorCode, 0u);
    EXPECT_EQ(s.trace.events()[3].errorCode, 7u);
}

TEST(TraceCalls, LaterReadsOfTheErrorCodeChangeNothing)
{
    TimedScene s;
    const int node = s.onePass();
    s.frame();
    s.at(node).error = 9;
    s.scene.renderer.renderPass(node)->errorCode();
    EXPECT_EQ(s.trace.events().last().errorCode, 0u);
}

TEST(TraceCalls, ThrowingCallEndsWithTheException)
{
    TimedScene s;
    const int node = s.onePass();
    bool broken = true;
    s.afterCall(node, "start", [&broken] {
        if (std::exchange(broken, false))
            throw std::runtime_error("broken");
    });
    s.trace.beginFrame();
    EXPECT_THROW(s.scene.render(), std::runtime_error);
    s.time += 100;
    s.frame();
    EXPECT_EQ(s.events(),
              "frame@0 0-20 A.beginFrame@0 0-10 A.start@0 10-20 "
              "frame@1 120-151 A.beginFrame@1 120-130 A.start@1 130-140 "
              "A.endFrame@1 141-151");
}

TEST(TraceCalls, CallsFromWithinACallNest)
{
    TimedScene s;
    const int a = s.onePass();
    const int b = s.pass("B", 0, 0);
    s.beforeCall(a, "start",
                 [&] { static_cast<TracedPass*>(s.scene.renderer.renderPass(b))->setup(nullptr); });
    s.frame();
    EXPECT_EQ(s.events(),
              "frame@0 0-41 A.beginFrame@0 0-10 A.start@0 10-30 B.setup@0 10-20 "
              "A.endFrame@0 31-41");
}

TEST(TraceCalls, FrameIsNeitherOpenedNorClosedDuringACall)
{
    TimedScene s;
    const int node = s.onePass();
    s.afterCall(node, "start", [&] {
        s.trace.endFrame();
        s.trace.beginFrame();
    });
    s.frame();
    EXPECT_EQ(s.events(), "frame@0 0-31 A.beginFrame@0 0-10 A.start@0 10-20 A.endFrame@0 21-31");
}

TEST(TraceCalls, EndWithoutBeginningDoesNothing)
{
    Timed t;
    t.trace.endFrame();
    t.trace.beginFrame();
    t.trace.endFrame();
    t.trace.endFrame();
    EXPECT_EQ(t.events(), "frame@0 0-0");
}

TEST(TraceCalls, EventsThatHaveNotEndedAreLeftOut)
{
    TimedScene s;
    const int node = s.onePass();
    std::string during;
    s.afterCall(node, "start", [&] {
        during = s.events();
        EXPECT_EQ(s.trace.numEvents(), 3);
        EXPECT_EQ(completeEvents(s.trace.toTraceEvents()).size(), 1u);
    });
    s.frame();
    EXPECT_EQ(during, "A.beginFrame@0 0-10");
}

TEST(TraceCalls, ErrorCodeOfTheNextFrameIsNotThatOfTheLast)
{
    TimedScene s;
    const int node = s.onePass();
    RenderPass& pass = *s.scene.renderer.renderPass(node);
    pass.endFrame(nullptr);
    pass.beginFrame(nullptr);
    s.at(node).error = 5;
    EXPECT_EQ(pass.errorCode(), 5u);
    EXPECT_EQ(s.trace.events().first().errorCode, 0u);
}
