// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "support/MessageRecorder.h"
#include "support/RecordingPass.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <set>
#include <string>
#include <thread>

using namespace Kestrin::Orv;

namespace {

/// A parameter of value 4 into A, A into the first input of B, B into the output of the renderer.
struct TwoPasses : Scene
{
    TwoPasses()
    {
        parameter(4);
        output();
        auto* passA = new RecordingPass(log, "A", 1, 1);
        passA->defaults[0] = 1;
        auto* passB = new RecordingPass(log, "B", 2, 1);
        passB->defaults = {QVariant(), 2.0};
        a = renderer.addPass(QStringLiteral("A"), passA, 0);
        b = renderer.addPass(QStringLiteral("B"), passB, 0);
        down(0, a, 0);
        edge(a, 0, b, 0);
        up(b, 0, 0);
    }
    int a;
    int b;
};

const char kRegistration[] =
    "A.numOutputs A.numInputs A.numInputs A.inputName(0) A.numOutputs A.outputName(0) "
    "B.numOutputs B.numInputs B.numInputs B.inputName(0) B.inputName(1) B.numOutputs "
    "B.outputName(0)";

} // namespace

TEST(CallOrder, TwoPassesFromRegistrationToDeletion)
{
    auto scene = std::make_unique<TwoPasses>();
    TwoPasses& s = *scene;
    EXPECT_EQ(s.a, 1);
    EXPECT_EQ(s.b, 2);
    EXPECT_EQ(s.log.take(), kRegistration);

    s.setup(7);
    EXPECT_EQ(s.log.take(),
              "A.resetNumOutputUsers A.setNumOutputUsers(0,1) A.numInputs A.setInput(0,4) "
              "A.setup(7) "
              "B.resetNumOutputUsers B.setNumOutputUsers(0,1) B.numInputs A.output(0) "
              "B.setInput(0,invalid) B.defaultValue(1) B.setInput(1,2.0) B.setup(7)");

    EXPECT_TRUE(s.render(8));
    EXPECT_EQ(s.log.take(),
              "A.numInputs A.setInput(0,4) A.clearErrorCode A.beginFrame(8) A.start(8) "
              "A.isFinished A.endFrame(8) A.errorCode "
              "B.numInputs A.output(0) B.setInput(0,A0#1) B.defaultValue(1) B.setInput(1,2.0) "
              "B.clearErrorCode B.beginFrame(8) B.start(8) B.isFinished B.endFrame(8) B.errorCode "
              "B.output(0)");
    EXPECT_EQ(s.renderer.output(0), QVariant(QStringLiteral("B0#1")));
    EXPECT_EQ(s.renderer.getNumPasses(), 2);

    s.teardown(9);
    EXPECT_EQ(s.log.take(), "A.teardown(9) B.teardown(9)");

    std::string deletions;
    for (const int node : {s.a, s.b})
        s.at(node).onDelete = [&deletions, &s] {
            deletions = s.log.take();
            s.log.note(deletions);
        };
    scene.reset();
    EXPECT_EQ(deletions, "A.delete B.delete");
}

TEST(CallOrder, FirstPassOfTwoFails)
{
    TwoPasses s;
    s.setup();
    s.render();
    s.at(s.a).failStart = 3;
    s.log.take();
    EXPECT_FALSE(s.render());
    EXPECT_EQ(s.log.take(),
              "A.numInputs A.setInput(0,4) A.clearErrorCode A.beginFrame(7) A.start(7) "
              "A.isFinished A.endFrame(7) A.errorCode "
              "B.output(0)");
    EXPECT_EQ(s.renderer.output(0), QVariant(QStringLiteral("B0#1"))) << "the old output of B";
    EXPECT_EQ(s.renderer.getNumPasses(), 1);
}

TEST(CallOrder, StaggeredFirstFrameOfTwoPasses)
{
    TwoPasses s;
    s.staggered();
    s.setup();
    EXPECT_EQ(s.renderer.getGraphProcessingMode(), 1);

    EXPECT_EQ(s.frame(),
              "A.numInputs A.setInput(0,4) A.clearErrorCode A.beginFrame(7) A.start(7) "
              "A.isFinished A.endFrame(7) A.errorCode "
              "B.numInputs A.output(0) B.setInput(0,A0#1) B.defaultValue(1) B.setInput(1,2.0) "
              "B.clearErrorCode B.beginFrame(7) B.skip(7) B.isFinished B.endFrame(7) B.errorCode "
              "B.output(0)");
    EXPECT_EQ(s.renderer.getGraphProcessingMode(), 1);

    const char bothStart[] =
        "A.numInputs A.setInput(0,4) A.clearErrorCode A.beginFrame(7) A.start(7) "
        "A.isFinished A.endFrame(7) A.errorCode "
        "B.numInputs A.output(0) B.setInput(0,A0#%1) B.defaultValue(1) B.setInput(1,2.0) "
        "B.clearErrorCode B.beginFrame(7) B.start(7) B.isFinished B.endFrame(7) B.errorCode "
        "B.output(0)";
    for (int frame = 2; frame <= 4; ++frame) {
        EXPECT_EQ(s.frame(), QString::fromLatin1(bothStart).arg(frame).toStdString());
        EXPECT_EQ(s.renderer.getGraphProcessingMode(), 2);
    }
}

TEST(CallOrder, PassWithoutInputsIsAskedForTheirNumberOnly)
{
    Scene s;
    const int a = s.pass("A", 0, 1);
    s.up(a, 0, s.output());
    s.setup();
    EXPECT_EQ(s.log.take(),
              "A.resetNumOutputUsers A.setNumOutputUsers(0,1) A.numInputs A.setup(7)");
    EXPECT_EQ(s.frame(),
              "A.numInputs A.clearErrorCode A.beginFrame(7) A.start(7) A.isFinished "
              "A.endFrame(7) A.errorCode A.output(0)");
}

TEST(CallOrder, PassWithoutOutputsStillHasItsUsersReset)
{
    Scene s;
    s.renderer.setTarget(s.pass("A", 1, 0));
    s.setup();
    EXPECT_EQ(s.log.take(),
              "A.resetNumOutputUsers A.numInputs A.defaultValue(0) A.setInput(0,A0?) A.setup(7)");
}

TEST(CallOrder, UserCountsComeInAscendingOrderOfOutputs)
{
    Scene s;
    const int a = s.pass("A", 0, 3);
    s.up(a, 2, s.output());
    s.up(a, 1, s.output());
    s.up(a, 1, s.output());
    s.setup();
    EXPECT_EQ(s.log.take(),
              "A.resetNumOutputUsers A.setNumOutputUsers(0,0) A.setNumOutputUsers(1,2) "
              "A.setNumOutputUsers(2,1) A.numInputs A.setup(7)");
}

TEST(CallOrder, EachPassIsSetUpBeforeTheNextGetsItsCounts)
{
    Scene s;
    s.chain(3);
    s.log.keepOnly("resetNumOutputUsers setup");
    s.setup();
    EXPECT_EQ(s.log.take(),
              "A.resetNumOutputUsers A.setup(7) B.resetNumOutputUsers B.setup(7) "
              "C.resetNumOutputUsers C.setup(7)");
}

TEST(CallOrder, UnfinishedPassIsPolledUntilItIsDone)
{
    Scene s;
    const int a = s.chain(2);
    s.at(a).unfinishedPolls = 3;
    s.setup();
    s.log.keepOnly("start isFinished endFrame");
    EXPECT_EQ(s.frame(),
              "A.start(7) A.isFinished A.isFinished A.isFinished A.isFinished "
              "A.endFrame(7) B.start(7) B.isFinished B.endFrame(7)");
}

TEST(CallOrder, SkippedPassIsPolledToo)
{
    Scene s;
    s.staggered();
    const int a = s.chain(2);
    s.at(a + 1).unfinishedPolls = 2;
    s.setup();
    s.log.keepOnly("skip isFinished endFrame");
    EXPECT_EQ(s.frame(),
              "A.isFinished A.endFrame(7) "
              "B.skip(7) B.isFinished B.isFinished B.isFinished B.endFrame(7)");
}

TEST(CallOrder, WorkOfAnotherThreadIsWaitedFor)
{
    struct Asynchronous : RecordingPass
    {
        using RecordingPass::RecordingPass;
        ~Asynchronous() override
        {
            if (worker.joinable())
                worker.join();
        }
        void start(Callbacks) override
        {
            worker = std::thread([this] {
                std::this_thread::sleep_for(std::chrono::milliseconds(20));
                results[0] = 42;
                done = true;
            });
        }
        bool isFinished() const override { return done; }
        std::thread worker;
        std::atomic<bool> done{false};
    };
    Scene s;
    const int a = s.renderer.addPass(QStringLiteral("A"), new Asynchronous(s.log, "A", 0, 1), 0);
    s.up(a, 0, s.output());
    s.setup();
    EXPECT_TRUE(s.render());
    EXPECT_EQ(s.renderer.output(0), QVariant(42));
}

TEST(CallOrder, CallbacksArePassedThroughUntouched)
{
    Scene s;
    s.chain(1);
    s.log.keepOnly("setup beginFrame start endFrame teardown");
    s.setup(0);
    s.render(1);
    s.render(0);
    const quintptr last = ~quintptr(7);
    s.setup(last);
    s.teardown(0x10);
    EXPECT_EQ(s.log.take(),
              "A.setup(0) A.beginFrame(1) A.start(1) A.endFrame(1) "
              "A.beginFrame(0) A.start(0) A.endFrame(0) A.teardown("
                  + std::to_string(last) + ") A.setup(" + std::to_string(last)
                  + ") A.teardown(16)");
}

TEST(CallOrder, CallbacksOfAFrameReachTheSetupThatItReruns)
{
    Scene s;
    const int a = s.chain(1);
    s.setup(1);
    s.renderer.setEnabled(a, true);
    s.log.keepOnly("setup start teardown");
    s.render(2);
    EXPECT_EQ(s.log.take(), "A.teardown(2) A.setup(2) A.start(2)");
}

TEST(CallOrder, HostOnlyOperationsAreNeverCalled)
{
    CallLog log;
    log.keepOnly("teardownContextData setDefaultValue setErrorCode");
    {
        Renderer renderer;
        renderer.addParameter(QStringLiteral("Orv_bool_staggeredFirstFrame"), true);
        Graph& graph = *renderer.getGraph();
        int previous = -1;
        for (const char* name : {"A", "B", "C"}) {
            auto* pass = new RecordingPass(log, name, 2, 2);
            const int node = renderer.addPass(QLatin1String(name), pass, 0);
            if (previous >= 0)
                graph.addEdge(previous, 0, node, 0);
            previous = node;
        }
        renderer.addOutput(QString());
        graph.addUpEdge(0, previous, 1);
        renderer.setup(nullptr);
        for (int i = 0; i < 5; ++i)
            renderer.render(nullptr);
        static_cast<RecordingPass*>(renderer.renderPass(1))->failStart = 1;
        renderer.render(nullptr);
        renderer.setEnabled(2, false);
        renderer.render(nullptr);
        renderer.setup(nullptr);
        renderer.teardown(nullptr);
    }
    EXPECT_EQ(log.take(), "");
}

TEST(CallOrder, AllCallsComeOnTheCallingThread)
{
    TwoPasses s;
    std::set<std::thread::id> threads;
    for (const int node : {s.a, s.b})
        s.at(node).onCall = [&threads](const std::string&) {
            threads.insert(std::this_thread::get_id());
        };
    s.setup();
    s.render();
    s.teardown();
    EXPECT_EQ(threads, std::set<std::thread::id>{std::this_thread::get_id()});
}

TEST(CallOrder, RendererLogsNothing)
{
    const MessageRecorder recorder;
    TwoPasses s;
    s.staggered();
    s.renderer.setTarget(99);
    s.setup();
    s.render();
    s.at(s.a).failStart = 3;
    s.render();
    s.renderer.setEnabled(s.a, false);
    s.render();
    s.teardown();
    s.render();
    EXPECT_TRUE(recorder.messages().empty());
}

TEST(CallOrder, CountsAndNamesAreNotAskedForAgainOnceRegistered)
{
    TwoPasses s;
    s.log.keepOnly("numOutputs inputName outputName");
    s.setup();
    s.render();
    s.teardown();
    EXPECT_EQ(s.log.take(), "");
}
