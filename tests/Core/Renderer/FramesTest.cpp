// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "support/RecordingPass.h"
#include "support/RendererInternals.h"

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>

using namespace Kestrin::Orv;

namespace {

/// Notes the calls of its virtual operations in a log, then does what a Renderer does.
struct NotingRenderer : Renderer
{
    void setup(RenderCallbacks* callbacks) override
    {
        note("setup", callbacks);
        Renderer::setup(callbacks);
    }
    bool render(RenderCallbacks* callbacks) override
    {
        note("render", callbacks);
        return Renderer::render(callbacks);
    }
    void teardown(RenderCallbacks* callbacks) override
    {
        note("teardown", callbacks);
        Renderer::teardown(callbacks);
    }
    void beginFrame(RenderCallbacks* callbacks) override
    {
        note("beginFrame", callbacks);
        Renderer::beginFrame(callbacks);
    }
    void endFrame(RenderCallbacks* callbacks) override
    {
        note("endFrame", callbacks);
        if (onEndFrame)
            onEndFrame();
        Renderer::endFrame(callbacks);
    }
    void note(const char* operation, RenderCallbacks* callbacks)
    {
        if (log)
            log->note(std::string(operation) + "("
                      + std::to_string(reinterpret_cast<std::uintptr_t>(callbacks)) + ")");
    }

    CallLog* log = nullptr;
    std::function<void()> onEndFrame;
};

struct NotingScene : BasicScene<NotingRenderer>
{
    NotingScene() { renderer.log = &log; }
};

QVariant text(const char* value)
{
    return QString::fromLatin1(value);
}

} // namespace

TEST(Frames, WithoutASetupSucceedAndTouchNothing)
{
    NotingScene s;
    s.chain(1);
    EXPECT_TRUE(s.render(5));
    EXPECT_EQ(s.log.take(), "render(5) beginFrame(5) endFrame(5)");
    EXPECT_FALSE(s.renderer.output(0).isValid());
}

TEST(Frames, SuccessfulFrameAnswersTrue)
{
    Scene s;
    s.chain(3);
    s.setup();
    EXPECT_TRUE(s.render());
    EXPECT_EQ(s.renderer.getNumPasses(), 3);
}

TEST(Frames, HooksEncloseThePassesAndTheOutputs)
{
    NotingScene s;
    s.chain(1);
    s.setup(3);
    s.log.keepOnly("start output");
    EXPECT_TRUE(s.render(5));
    EXPECT_EQ(s.log.take(), "render(5) beginFrame(5) A.start(5) A.output(0) endFrame(5)");
}

TEST(Frames, OutputsHaveBeenCollectedWhenTheFrameEnds)
{
    NotingScene s;
    s.chain(1);
    s.setup();
    QVariant seen;
    s.renderer.onEndFrame = [&s, &seen] { seen = s.renderer.output(0); };
    s.render();
    EXPECT_EQ(seen, text("A0#1"));
}

TEST(Frames, EndFrameRunsAfterAFailure)
{
    NotingScene s;
    const int a = s.chain(2);
    s.setup();
    s.at(a).failStart = 1;
    s.log.keepOnly("start");
    EXPECT_FALSE(s.render(5));
    EXPECT_EQ(s.log.take(), "render(5) beginFrame(5) A.start(5) endFrame(5)");
}

TEST(Frames, FailureEndsTheFrameAtOnce)
{
    Scene s;
    const int a = s.chain(3);
    s.setup();
    s.at(a + 1).failStart = 9;
    s.log.keepOnly("numInputs clearErrorCode beginFrame start isFinished endFrame errorCode");
    s.log.take();
    EXPECT_FALSE(s.render());
    EXPECT_EQ(s.log.take(),
              "A.numInputs A.clearErrorCode A.beginFrame(7) A.start(7) A.isFinished "
              "A.endFrame(7) A.errorCode "
              "B.numInputs B.clearErrorCode B.beginFrame(7) B.start(7) B.isFinished "
              "B.endFrame(7) B.errorCode");
    EXPECT_EQ(s.renderer.getNumPasses(), 2);
}

TEST(Frames, AnyCodeButZeroIsAFailure)
{
    for (const unsigned int code : {1u, 0x80000000u, 0xffffffffu, 256u}) {
        Scene s;
        const int a = s.chain(1);
        s.setup();
        s.at(a).failStart = code;
        EXPECT_FALSE(s.render()) << code;
    }
}

TEST(Frames, LastPassFailing)
{
    Scene s;
    const int a = s.chain(2);
    s.setup();
    s.at(a + 1).failStart = 1;
    EXPECT_FALSE(s.render());
    EXPECT_EQ(s.renderer.getNumPasses(), 2);
    EXPECT_EQ(s.renderer.output(0), text("B0#1"));
}

TEST(Frames, FrameAfterAFailureStartsAfresh)
{
    Scene s;
    const int a = s.chain(2);
    s.setup();
    s.at(a).failStart = 1;
    EXPECT_FALSE(s.render());
    s.at(a).failStart = 0;
    s.log.keepOnly("start setup teardown");
    EXPECT_TRUE(s.render());
    EXPECT_EQ(s.log.take(), "A.start(7) B.start(7)");
}

TEST(Frames, ErrorCodeIsClearedBeforeThePassBegins)
{
    Scene s;
    const int a = s.chain(1);
    s.setup();
    s.at(a).error = 5;
    EXPECT_TRUE(s.render()) << "a code from before the frame does not count";
    RecordingPass& pass = s.at(a);
    pass.onCall = [&pass](const std::string& operation) {
        if (operation == "endFrame")
            pass.error = 6;
    };
    EXPECT_FALSE(s.render()) << "one that the last call leaves does";
}

TEST(Frames, OutputsAreCollectedAfterAFailure)
{
    Scene s;
    const int a = s.pass("A", 0, 1);
    const int b = s.pass("B", 0, 1);
    s.up(a, 0, s.output());
    s.up(b, 0, s.output());
    s.setup();
    s.at(a).failStart = 1;
    s.at(b).results[0] = QStringLiteral("old");
    s.log.keepOnly("errorCode output");
    EXPECT_FALSE(s.render());
    EXPECT_EQ(s.log.take(), "A.errorCode A.output(0) B.output(0)");
    EXPECT_EQ(s.renderer.output(0), text("A0#1"));
    EXPECT_EQ(s.renderer.output(1), text("old"));
}

TEST(Frames, OutputsOfSkippedPassesAreReadAsTheyStand)
{
    Scene s;
    s.staggered();
    const int a = s.chain(2);
    s.at(a + 1).results[0] = QStringLiteral("old");
    s.setup();
    s.render();
    EXPECT_EQ(s.renderer.output(0), text("old"));
}

TEST(Frames, OutputsOfDisabledPassesAreReadAsTheyStand)
{
    Scene s;
    const int a = s.chain(2);
    s.setup();
    s.render();
    s.renderer.setEnabled(a + 1, false);
    s.at(a + 1).results[0] = QStringLiteral("old");
    s.render();
    EXPECT_EQ(s.renderer.output(0), text("old"));
}

TEST(Frames, OutputsOfUnscheduledPassesAreReadAsTheyStand)
{
    Scene s;
    s.chain(1);
    s.setup();
    const int late = s.pass("late", 0, 1);
    const int output = s.output();
    s.at(late).results[0] = 12;
    s.up(late, 0, output);
    s.render();
    EXPECT_EQ(s.renderer.output(output), QVariant(12));
}

TEST(Frames, OutputsComeFromTheOutputThatProducesThem)
{
    Scene s;
    const int g = s.group("G", 0, 2);
    const int x = s.pass("X", 0, 3, g);
    const int first = s.output();
    const int second = s.output();
    s.up(x, 2, 1);
    s.up(x, 1, 0);
    s.up(g, 1, first);
    s.up(g, 0, second);
    s.setup();
    s.log.keepOnly("output");
    EXPECT_EQ(s.frame(), "X.output(2) X.output(1)");
    EXPECT_EQ(s.renderer.output(first), text("X2#1"));
    EXPECT_EQ(s.renderer.output(second), text("X1#1"));
    EXPECT_EQ(s.renderer.outputType(first), QVariant::String);
}

TEST(Frames, OutputIsReplacedByAnInvalidOne)
{
    Scene s;
    const int a = s.chain(1);
    s.setup();
    s.render();
    EXPECT_TRUE(s.renderer.output(0).isValid());
    RecordingPass& pass = s.at(a);
    pass.onCall = [&pass](const std::string& operation) {
        if (operation == "start")
            pass.results[0] = QVariant();
    };
    s.render();
    EXPECT_FALSE(s.renderer.output(0).isValid());
}

TEST(Frames, OutputWithoutAProducerKeepsItsValue)
{
    Scene s;
    const int a = s.chain(1);
    const int b = s.pass("B", 0, 1);
    s.up(b, 0, s.output());
    s.setup();
    s.render();
    s.graph.removeEdge(s.graph.outputSource(Graph::kRootNodeRef, 0));
    s.at(a).results[0] = 1;
    s.render();
    EXPECT_EQ(s.renderer.output(0), text("A0#1"));
    EXPECT_EQ(s.renderer.output(1), text("B0#2"));
}

TEST(Frames, OutputWithoutAProducerIsNotTakenFromTheRoot)
{
    Scene s;
    const int unfed = s.output();
    const int a = s.chain(1);
    s.graph.setNodeValue(Graph::kRootNodeRef, s.graph.nodeValue(a));
    s.setup();
    s.render();
    EXPECT_FALSE(s.renderer.output(unfed).isValid());
}

TEST(Frames, OutputFedByAGroupThatLeadsNowhereKeepsItsValue)
{
    Scene s;
    s.chain(1);
    const int g = s.group("G", 0, 1);
    const int b = s.pass("B", 0, 1);
    s.up(b, 0, s.output());
    s.setup();
    s.render();
    s.graph.removeEdge(s.graph.outputSource(Graph::kRootNodeRef, 0));
    s.up(g, 0, 0);
    EXPECT_TRUE(s.render());
    EXPECT_EQ(s.renderer.output(0), text("A0#1"));
    EXPECT_EQ(s.renderer.output(1), text("B0#2"));
}

TEST(Frames, EmptyFrameLeavesTheOutputsAlone)
{
    Scene s;
    const int a = s.chain(1);
    s.setup();
    s.render();
    s.teardown();
    s.at(a).results[0] = QStringLiteral("new");
    EXPECT_TRUE(s.render());
    EXPECT_EQ(s.renderer.output(0), text("A0#1"));
    EXPECT_EQ(s.renderer.getNumPasses(), 0);
}

TEST(Frames, NumPassesCountsWithinTheFrame)
{
    Scene s;
    const int a = s.chain(2);
    s.setup();
    s.render();
    std::string counts;
    for (const int node : {a, a + 1}) {
        s.at(node).onCall = [&s, &counts](const std::string& operation) {
            if (operation == "beginFrame" || operation == "start" || operation == "isFinished")
                counts += std::to_string(s.renderer.getNumPasses()) + " ";
        };
    }
    s.render();
    EXPECT_EQ(counts, "0 0 1 1 1 2 ");
}

TEST(Frames, NumPassesIsZeroWhenTheFrameBegins)
{
    struct Derived : Renderer
    {
        void beginFrame(RenderCallbacks*) override { seen = getNumPasses(); }
        int seen = -1;
    };
    BasicScene<Derived> s;
    s.chain(2);
    s.setup();
    s.render();
    EXPECT_EQ(s.renderer.getNumPasses(), 2);
    s.render();
    EXPECT_EQ(s.renderer.seen, 0);
}

TEST(Frames, PassStartsOnceTheOneBeforeHasFinished)
{
    Scene s;
    const int a = s.chain(2);
    s.at(a).unfinishedPolls = 5;
    s.setup();
    s.log.keepOnly("setInput start endFrame output");
    EXPECT_EQ(s.frame(),
              "A.setInput(0,A0?) A.start(7) A.endFrame(7) "
              "A.output(0) B.setInput(0,A0#1) B.start(7) B.endFrame(7) B.output(0)");
}

TEST(Frames, ImplRendersOnePass)
{
    Scene s;
    const int a = s.chain(1);
    EXPECT_TRUE(internals::render(internals::of(s.renderer), a, callbacksNo(4)));
    EXPECT_EQ(s.log.take(),
              "A.numInputs A.defaultValue(0) A.setInput(0,A0?) A.clearErrorCode "
              "A.beginFrame(4) A.start(4) A.isFinished A.endFrame(4) A.errorCode");
    EXPECT_EQ(s.renderer.getNumPasses(), 1);
    s.at(a).failStart = 1;
    EXPECT_FALSE(internals::render(internals::of(s.renderer), a, callbacksNo(4)));
    EXPECT_EQ(s.renderer.getNumPasses(), 2);
    EXPECT_FALSE(s.renderer.output(0).isValid());
}

TEST(Frames, ExceptionOfAPassReachesTheCallerAndTheNextFrameStartsAfresh)
{
    Scene s;
    const int a = s.chain(2);
    s.setup();
    bool throws = true;
    s.at(a).onCall = [&throws](const std::string& operation) {
        if (operation == "start" && throws)
            throw std::runtime_error("no memory on the device");
    };
    EXPECT_THROW(s.render(), std::runtime_error);
    throws = false;
    s.log.keepOnly("start");
    EXPECT_TRUE(s.render());
    EXPECT_EQ(s.log.take(), "A.start(7) B.start(7)");
    EXPECT_EQ(s.renderer.getNumPasses(), 2);
}

TEST(Frames, ExceptionInARerunSetupLeavesItToTheNextFrame)
{
    Scene s;
    const int a = s.chain(1);
    s.setup();
    bool throws = true;
    s.at(a).onCall = [&throws](const std::string& operation) {
        if (operation == "setup" && throws)
            throw std::runtime_error("no memory on the device");
    };
    s.renderer.setEnabled(a, true);
    EXPECT_THROW(s.render(), std::runtime_error);
    throws = false;
    s.log.keepOnly("setup start");
    EXPECT_EQ(s.frame(), "A.setup(7) A.start(7)");
    EXPECT_EQ(s.frame(), "A.start(7)");
}

TEST(NeedsSetup, SetEnabledMakesTheNextFrameSetUpAnew)
{
    Scene s;
    const int a = s.chain(2);
    s.pass("lone", 0, 0);
    s.setup();
    s.render();
    s.log.keepOnly("teardown setup start");
    s.renderer.setEnabled(a, false);
    EXPECT_EQ(s.log.take(), "") << "nothing happens before the frame";
    EXPECT_EQ(s.frame(), "A.teardown(7) B.teardown(7) lone.teardown(7) B.setup(7) B.start(7)");
    EXPECT_EQ(s.frame(), "B.start(7)") << "once";
    s.renderer.setEnabled(a, true);
    EXPECT_EQ(s.frame(),
              "A.teardown(7) B.teardown(7) lone.teardown(7) A.setup(7) B.setup(7) A.start(7) "
              "B.start(7)");
}

TEST(NeedsSetup, SetEnabledWithTheSameValueDoesSoToo)
{
    Scene s;
    const int a = s.chain(1);
    s.setup();
    s.log.keepOnly("teardown setup start");
    s.renderer.setEnabled(a, true);
    EXPECT_EQ(s.frame(), "A.teardown(7) A.setup(7) A.start(7)");
    EXPECT_EQ(s.frame(), "A.start(7)");
}

TEST(NeedsSetup, ManyCallsMakeOneSetup)
{
    Scene s;
    const int a = s.chain(1);
    s.setup();
    s.log.keepOnly("setup");
    for (int i = 0; i < 5; ++i)
        s.renderer.setEnabled(a, i % 2 == 0);
    EXPECT_EQ(s.frame(), "A.setup(7)");
    EXPECT_EQ(s.frame(), "");
}

TEST(NeedsSetup, SetsUpARendererThatNeverWas)
{
    Scene s;
    const int a = s.chain(1);
    s.renderer.setEnabled(a, true);
    s.log.keepOnly("teardown setup start");
    EXPECT_EQ(s.frame(), "A.setup(7) A.start(7)");
}

TEST(NeedsSetup, OutlastsASetupOfTheHost)
{
    Scene s;
    const int a = s.chain(1);
    s.renderer.setEnabled(a, true);
    s.setup();
    s.log.keepOnly("teardown setup start");
    EXPECT_EQ(s.frame(), "A.teardown(7) A.setup(7) A.start(7)");
    EXPECT_EQ(s.frame(), "A.start(7)");
}

TEST(NeedsSetup, OutlastsATeardown)
{
    Scene s;
    const int a = s.chain(1);
    s.setup();
    s.renderer.setEnabled(a, true);
    s.teardown();
    s.log.keepOnly("teardown setup start");
    EXPECT_EQ(s.frame(), "A.setup(7) A.start(7)");
}

TEST(NeedsSetup, TurnsAFrameEmptyWhenNothingIsLeftToRun)
{
    Scene s;
    const int a = s.chain(1);
    s.setup();
    s.render();
    s.renderer.setEnabled(a, false);
    s.at(a).results[0] = QStringLiteral("new");
    EXPECT_TRUE(s.render());
    EXPECT_EQ(s.renderer.output(0), text("A0#1")) << "an empty frame collects nothing";
    EXPECT_EQ(s.renderer.getNumPasses(), 0);
}

TEST(NeedsSetup, OtherEditsDoNotRaiseIt)
{
    Scene s;
    const int p = s.parameter(1);
    const int a = s.chain(1);
    s.setup();
    s.log.keepOnly("teardown setup");
    s.renderer.setParameter(p, 2);
    s.renderer.setTarget(a);
    s.parameter(3);
    s.output();
    s.pass("B", 0, 0);
    s.group("G", 0, 0);
    EXPECT_EQ(s.frame(), "");
}

TEST(NeedsSetup, SetEnabledWithinTheRerunSetupIsLost)
{
    Scene s;
    const int a = s.chain(2);
    s.setup();
    RecordingPass& pass = s.at(a + 1);
    pass.onCall = [&s, a](const std::string& operation) {
        if (operation == "setup")
            s.renderer.setEnabled(a, false);
    };
    s.renderer.setEnabled(a, true);
    s.log.keepOnly("setup start");
    EXPECT_EQ(s.frame(), "A.setup(7) B.setup(7) A.start(7) B.start(7)");
    EXPECT_FALSE(s.renderer.enabled(a));
    EXPECT_EQ(s.frame(), "A.start(7) B.start(7)") << "the flag was cleared after the setup";
}

TEST(NeedsSetup, SetEnabledWithinASetupOfTheHostIsHeeded)
{
    Scene s;
    const int a = s.chain(2);
    bool once = true;
    s.at(a + 1).onCall = [&s, &once, a](const std::string& operation) {
        if (operation == "setup" && once) {
            once = false;
            s.renderer.setEnabled(a, false);
        }
    };
    s.setup();
    s.log.keepOnly("setup start");
    EXPECT_EQ(s.frame(), "B.setup(7) B.start(7)");
}

TEST(NeedsSetup, SetEnabledWithinAFrameIsHeededByTheNext)
{
    Scene s;
    const int a = s.chain(2);
    bool once = true;
    s.at(a).onCall = [&s, &once, a](const std::string& operation) {
        if (operation == "start" && once) {
            once = false;
            s.renderer.setEnabled(a + 1, false);
        }
    };
    s.setup();
    s.log.keepOnly("setup start");
    EXPECT_EQ(s.frame(), "A.start(7) B.start(7)");
    EXPECT_EQ(s.frame(), "A.setup(7) A.start(7)");
}

TEST(Dispatch, FrameCallsSetupVirtually)
{
    NotingScene s;
    const int a = s.chain(1);
    s.setup(1);
    s.renderer.setEnabled(a, true);
    s.log.keepOnly("setup");
    s.render(2);
    EXPECT_EQ(s.log.take(), "render(2) beginFrame(2) setup(2) teardown(2) A.setup(2) endFrame(2)");
}

TEST(Dispatch, OverriddenBeginFrameRunsInPlaceOfTheOriginal)
{
    struct Derived : Renderer
    {
        void beginFrame(RenderCallbacks*) override { }
        void endFrame(RenderCallbacks*) override { }
    };
    BasicScene<Derived> s;
    const int a = s.chain(1);
    s.setup();
    s.renderer.setEnabled(a, false);
    s.log.keepOnly("setup start");
    EXPECT_EQ(s.frame(), "A.start(7)") << "nobody heeds the flag";
}

TEST(Dispatch, OverriddenSetupRunsInPlaceOfTheOriginalAndTheFlagIsCleared)
{
    struct Derived : Renderer
    {
        void setup(RenderCallbacks*) override { ++setups; }
        int setups = 0;
    };
    BasicScene<Derived> s;
    const int a = s.chain(1);
    s.renderer.setEnabled(a, true);
    s.log.keepOnly("start");
    EXPECT_EQ(s.frame(), "");
    EXPECT_EQ(s.frame(), "");
    EXPECT_EQ(s.renderer.setups, 1);
}

TEST(Dispatch, HooksOfTheRendererDoNothingWithoutTheFlag)
{
    Scene s;
    s.chain(1);
    s.setup();
    s.log.take();
    s.renderer.beginFrame(nullptr);
    s.renderer.endFrame(nullptr);
    EXPECT_EQ(s.log.take(), "");
}

TEST(Dispatch, BeginFrameAloneRerunsTheSetup)
{
    Scene s;
    const int a = s.chain(1);
    s.renderer.setEnabled(a, true);
    s.log.keepOnly("setup");
    s.renderer.beginFrame(callbacksNo(3));
    EXPECT_EQ(s.log.take(), "A.setup(3)");
    s.renderer.beginFrame(callbacksNo(3));
    EXPECT_EQ(s.log.take(), "");
}

TEST(Teardown, ReachesEveryRegisteredPassInOrderOfRegistration)
{
    Scene s;
    const int g = s.group("G", 0, 0);
    s.pass("nested", 0, 0, g);
    const int a = s.pass("A", 0, 1);
    const int b = s.pass("B", 0, 1);
    s.up(b, 0, s.output());
    s.up(a, 0, s.output());
    s.renderer.setEnabled(a, false);
    s.setup();
    s.log.take();
    s.teardown(3);
    EXPECT_EQ(s.log.take(), "nested.teardown(3) A.teardown(3) B.teardown(3)");
}

TEST(Teardown, NeedsNoSetupBefore)
{
    Scene s;
    s.pass("A", 0, 0);
    s.teardown();
    s.teardown();
    EXPECT_EQ(s.log.take(), "A.teardown(7) A.teardown(7)");
}

TEST(Teardown, ForgetsTheOrder)
{
    Scene s;
    s.chain(2);
    s.setup();
    s.teardown();
    EXPECT_EQ(s.order(), "");
    s.setup();
    EXPECT_EQ(s.order(), "A B");
}

TEST(Teardown, LeavesPassesAndOutputsAlone)
{
    Scene s;
    const int a = s.chain(1);
    s.setup();
    s.render();
    RenderPass* pass = s.renderer.renderPass(a);
    s.teardown();
    EXPECT_EQ(s.renderer.renderPass(a), pass);
    EXPECT_TRUE(s.renderer.enabled(a));
    EXPECT_EQ(s.renderer.output(0), text("A0#1"));
    EXPECT_EQ(s.renderer.getNumPasses(), 1) << "of the last frame";
}
