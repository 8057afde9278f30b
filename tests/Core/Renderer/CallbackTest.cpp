// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

// Passes that call back into their renderer while it is calling them.

#include "support/RecordingPass.h"
#include "support/RendererInternals.h"

#include <gtest/gtest.h>

#include <functional>
#include <iterator>
#include <string>
#include <tuple>

using namespace Kestrin::Orv;

namespace {

/// Runs \p action within the first call of \p operation that the pass of \p node receives.
void onFirst(Scene& s, int node, const std::string& operation, const std::function<void()>& action)
{
    bool done = false;
    s.at(node).onCall = [operation, action, done](const std::string& called) mutable {
        if (called == operation && !done) {
            done = true;
            action();
        }
    };
}

struct Action
{
    const char* name;
    void (*run)(Scene& s, int node);
};

/// Enough new entries to move every list that a renderer or a graph keeps.
const int kMany = 200;

const Action kActions[] = {
    {"setEnabled",
     [](Scene& s, int node) { s.renderer.setEnabled(node, !s.renderer.enabled(node)); }},
    {"setParameter",
     [](Scene& s, int) {
         s.renderer.setParameter(0, QStringLiteral("changed"));
         s.renderer.setParameter(1, true);
     }},
    {"setup", [](Scene& s, int) { s.setup(); }},
    {"teardown", [](Scene& s, int) { s.teardown(); }},
    {"teardownAndSetup",
     [](Scene& s, int) {
         s.teardown();
         s.setup();
     }},
    {"render", [](Scene& s, int) { s.render(); }},
    {"addPass",
     [](Scene& s, int) {
         for (int i = 0; i < kMany; ++i)
             s.pass("N", 2, 2);
     }},
    {"addPassInFrontAndSetup",
     [](Scene& s, int node) {
         for (int i = 0; i < kMany; ++i) {
             const int n = s.pass("N", 1, 1);
             s.up(n, 0, s.output());
         }
         s.renderer.setTarget(node);
         s.setup();
     }},
    {"addParametersAndOutputs",
     [](Scene& s, int) {
         for (int i = 0; i < kMany; ++i) {
             s.parameter(i);
             s.output();
         }
     }},
    {"addPorts",
     [](Scene& s, int node) {
         for (int i = 0; i < kMany; ++i) {
             s.graph.addInput(node, QString(), -1);
             s.graph.addOutput(node, QString(), -1);
         }
     }},
    {"removePorts",
     [](Scene& s, int node) {
         s.graph.removeInput(node, 0);
         s.graph.removeOutput(node, 0);
     }},
    {"disconnect",
     [](Scene& s, int) {
         for (int edge = 0; edge < s.graph.numEdgesGlobal(); ++edge)
             s.graph.removeEdge(edge);
     }},
    {"removeNode", [](Scene& s, int node) { s.graph.removeNode(node); }},
    {"removeRoot", [](Scene& s, int) { s.graph.removeNode(Graph::kRootNodeRef); }},
    {"removeRootAndPurge",
     [](Scene& s, int) {
         s.graph.removeNode(Graph::kRootNodeRef);
         s.graph.purge();
     }},
    {"removeNodeAndPurge",
     [](Scene& s, int node) {
         s.graph.removeNode(node);
         s.graph.purge();
     }},
    {"setNodeValue", [](Scene& s, int node) { s.graph.setNodeValue(node, -1); }},
    {"setAllNodeValues",
     [](Scene& s, int) {
         for (int node = 0; node < s.graph.numNodesGlobal(); ++node)
             s.graph.setNodeValue(node, 0);
     }},
    {"changeCounts",
     [](Scene& s, int node) {
         if (RenderPass* pass = s.renderer.renderPass(node))
             static_cast<RecordingPass*>(pass)->extraInputs = 3;
     }},
};

const char* const kOperations[] = {"setup",
                                   "beginFrame",
                                   "start",
                                   "skip",
                                   "endFrame",
                                   "isFinished",
                                   "teardown",
                                   "numInputs",
                                   "setInput",
                                   "defaultValue",
                                   "output",
                                   "setNumOutputUsers",
                                   "resetNumOutputUsers",
                                   "errorCode",
                                   "clearErrorCode"};

class CallBack : public ::testing::TestWithParam<std::tuple<const char*, int>>
{
};

} // namespace

TEST_P(CallBack, LeavesTheRendererUsable)
{
    const std::string operation = std::get<0>(GetParam());
    const Action& action = kActions[std::get<1>(GetParam())];

    // A parameter and A into B, A inside a group into C, all of them into outputs. B starts first
    // and so lets C be skipped.
    Scene s;
    s.parameter(1);
    s.staggered();
    const int a = s.pass("A", 2, 2);
    const int b = s.pass("B", 2, 2);
    const int g = s.group("G", 1, 1);
    const int c = s.pass("C", 2, 2, g);
    s.down(0, a, 0);
    s.edge(a, 0, b, 0);
    s.edge(a, 1, g, 0);
    s.down(0, c, 0);
    s.up(c, 0, 0);
    s.up(b, 0, s.output());
    s.up(g, 0, s.output());
    s.up(a, 0, s.output());

    bool called = false;
    int depth = 0;
    int runs = 0;
    for (const int node : {a, b, c}) {
        s.at(node).onCall = [&, node](const std::string& now) {
            // Once for each pass, and not within what the call back itself sets off.
            if (now != operation || depth > 0 || runs >= 3)
                return;
            called = true;
            ++depth;
            ++runs;
            action.run(s, node);
            --depth;
        };
    }
    for (int frame = 0; frame < 3; ++frame) {
        s.setup();
        s.render();
        s.render();
        s.teardown();
    }
    EXPECT_TRUE(called);

    // Whatever it did, a pass of its own works as ever.
    s.renderer.setParameter(1, false);
    const int before = s.graph.numNodesGlobal();
    const int fresh = s.pass("fresh", 1, 1);
    if (fresh < 0)
        return; // the root is gone
    EXPECT_GE(fresh, before);
    s.renderer.setTarget(fresh);
    s.setup();
    s.log.keepOnly("start");
    s.render();
    EXPECT_NE(s.log.take().find("fresh.start(7)"), std::string::npos);
}

INSTANTIATE_TEST_SUITE_P(
    Renderer, CallBack,
    ::testing::Combine(::testing::ValuesIn(kOperations),
                       ::testing::Range(0, static_cast<int>(std::size(kActions)))),
    [](const ::testing::TestParamInfo<CallBack::ParamType>& param) {
        return std::string(kActions[std::get<1>(param.param)].name) + "From_"
            + std::get<0>(param.param);
    });

// What comes of it, where that is settled.

TEST(CallBackDuring, StartTeardownEndsTheRestOfTheFrameAtOnce)
{
    Scene s;
    const int a = s.chain(3);
    s.setup();
    onFirst(s, a + 1, "start", [&s] { s.teardown(); });
    s.log.keepOnly("start isFinished endFrame errorCode teardown output");
    EXPECT_TRUE(s.render());
    EXPECT_EQ(s.log.take(),
              "A.start(7) A.isFinished A.endFrame(7) A.errorCode A.output(0) "
              "B.start(7) A.teardown(7) B.teardown(7) C.teardown(7) B.isFinished B.endFrame(7) "
              "B.errorCode C.output(0)");
    EXPECT_EQ(s.renderer.getNumPasses(), 2);
    EXPECT_EQ(s.order(), "");
}

TEST(CallBackDuring, StartSetupGoesOnAtTheSamePositionOfTheNewOrder)
{
    Scene s;
    const int a = s.chain(3);
    s.setup();
    onFirst(s, a, "start", [&s] { s.setup(); });
    EXPECT_EQ(s.order(), "A B C");
    EXPECT_EQ(s.order(), "A B C");
}

TEST(CallBackDuring, StartSetupOfAShorterOrderEndsTheFrame)
{
    Scene s;
    const int a = s.chain(3);
    s.setup();
    onFirst(s, a + 1, "start", [&s, a] {
        s.renderer.setEnabled(a, false);
        s.renderer.setEnabled(a + 2, false);
        s.setup();
    });
    EXPECT_EQ(s.order(), "A B");
    EXPECT_EQ(s.order(), "B");
}

TEST(CallBackDuring, StartSetParameterIsSeenByLaterPassesOfTheFrame)
{
    Scene s;
    const int p = s.parameter(1);
    const int a = s.pass("A", 1, 1);
    const int b = s.pass("B", 2, 1);
    s.down(p, a, 0);
    s.down(p, b, 0);
    s.edge(a, 0, b, 1);
    s.up(b, 0, s.output());
    s.setup();
    onFirst(s, a, "start", [&s, p] { s.renderer.setParameter(p, 2); });
    s.log.keepOnly("setInput");
    EXPECT_EQ(s.frame(), "A.setInput(0,1) B.setInput(0,2) B.setInput(1,A0#1)");
}

TEST(CallBackDuring, StartDisablingALaterPassLetsItRunThisOnce)
{
    Scene s;
    const int a = s.chain(3);
    s.setup();
    onFirst(s, a, "start", [&s, a] { s.renderer.setEnabled(a + 1, false); });
    s.log.keepOnly("setInput");
    EXPECT_EQ(s.frame(), "A.setInput(0,A0?) B.setInput(0,A0#1) C.setInput(0,C0?)")
        << "its consumer takes the default at once";
    EXPECT_EQ(s.order(), "A C");
}

TEST(CallBackDuring, StartSwitchingTheStaggeredFrameOffIsNotRemembered)
{
    Scene s;
    const int parameter = s.staggered();
    const int a = s.chain(2);
    s.setup();
    onFirst(s, a, "start", [&s, parameter] { s.renderer.setParameter(parameter, false); });
    s.log.keepOnly("start skip");
    EXPECT_EQ(s.frame(), "A.start(7) B.start(7)");
    s.renderer.setParameter(parameter, true);
    EXPECT_EQ(s.renderer.getGraphProcessingMode(), 1);
    EXPECT_EQ(s.frame(), "A.start(7) B.skip(7)");
}

TEST(CallBackDuring, StartSwitchingTheStaggeredFrameOnHoldsTheNextPassBack)
{
    Scene s;
    const int parameter = s.staggered(false);
    const int a = s.chain(2);
    s.setup();
    onFirst(s, a, "start", [&s, parameter] { s.renderer.setParameter(parameter, true); });
    s.log.keepOnly("start skip");
    EXPECT_EQ(s.frame(), "A.start(7) B.skip(7)");
    EXPECT_EQ(s.frame(), "A.start(7) B.start(7)");
}

TEST(CallBackDuring, StartAddPassLeavesTheFrameAsItWas)
{
    Scene s;
    const int a = s.chain(2);
    s.setup();
    onFirst(s, a, "start", [&s] {
        for (int i = 0; i < 1000; ++i)
            s.renderer.addPass(QString(), new RecordingPass(s.log, "N", 1, 1), 0);
    });
    EXPECT_EQ(s.order(), "A B");
    EXPECT_EQ(s.graph.numNodesGlobal(), 1003);
}

TEST(CallBackDuring, SetupTeardownStillSetsUpTheRest)
{
    Scene s;
    const int a = s.chain(3);
    onFirst(s, a, "setup", [&s] { s.teardown(); });
    s.log.keepOnly("setup");
    s.setup();
    EXPECT_EQ(s.log.take(), "A.setup(7) B.setup(7) C.setup(7)") << "a copy of the order";
    EXPECT_EQ(s.order(), "") << "the order itself is empty";
}

TEST(CallBackDuring, SetupSetupSetsUpTheOldOrderAfterTheNew)
{
    Scene s;
    const int a = s.chain(2);
    onFirst(s, a, "setup", [&s] { s.setup(8); });
    s.log.keepOnly("setup teardown");
    s.setup();
    EXPECT_EQ(s.log.take(),
              "A.setup(7) A.teardown(8) B.teardown(8) A.setup(8) B.setup(8) B.setup(7)");
    EXPECT_EQ(s.order(), "A B");
}

TEST(CallBackDuring, SetupOfAnotherOrderLeavesTheOuterSetupItsOwn)
{
    Scene s;
    const int a = s.chain(3);
    onFirst(s, a, "setup", [&s, a] {
        const int n = s.pass("N", 0, 1);
        s.edge(n, 0, a, 0);
        s.setup(8);
    });
    s.log.keepOnly("setup");
    s.setup();
    EXPECT_EQ(s.log.take(),
              "A.setup(7) N.setup(8) A.setup(8) B.setup(8) C.setup(8) "
              "B.setup(7) C.setup(7)");
    EXPECT_EQ(s.order(), "N A B C");
}

TEST(CallBackDuring, SetupSeesItsCountsAndInputs)
{
    Scene s;
    const int p = s.parameter(4);
    const int a = s.chain(1);
    s.down(p, a, 0);
    QVariant input;
    int users = -1;
    RecordingPass& pass = s.at(a);
    onFirst(s, a, "setup", [&pass, &input, &users] {
        input = pass.values[0];
        users = pass.users[0];
    });
    s.setup();
    EXPECT_EQ(input, QVariant(4));
    EXPECT_EQ(users, 1);
}

TEST(CallBackDuring, TeardownAddPassReachesTheNewPassesToo)
{
    Scene s;
    const int a = s.chain(1);
    onFirst(s, a, "teardown", [&s] {
        for (int i = 0; i < 3; ++i)
            s.renderer.addPass(QString(), new RecordingPass(s.log, "N", 0, 0), 0);
    });
    s.log.keepOnly("teardown");
    s.teardown();
    EXPECT_EQ(s.log.take(), "A.teardown(7) N.teardown(7) N.teardown(7) N.teardown(7)");
}

TEST(CallBackDuring, UnregisteredCountsOfARegisteringPassMayRegisterAnother)
{
    // The outer pass has taken index 0 when it is asked for its outputs, so the inner takes 1.
    Scene s;
    auto* outer = new RecordingPass(s.log, "outer", 1, 1);
    bool once = true;
    int inner = -1;
    outer->onCall = [&](const std::string& operation) {
        if (operation == "numOutputs" && once) {
            once = false;
            inner = s.renderer.addPass(QString(), new RecordingPass(s.log, "inner", 1, 1), 0);
        }
    };
    const int node = s.renderer.addPass(QString(), outer, 0);
    EXPECT_EQ(s.at(node).name, "outer");
    EXPECT_EQ(s.at(inner).name, "inner");
    EXPECT_EQ(s.graph.nodeValue(node), 0);
    EXPECT_EQ(s.graph.nodeValue(inner), 1);
}

TEST(CallBackDuring, OutputCollectionMayAddOutputs)
{
    Scene s;
    const int a = s.chain(1);
    s.setup();
    s.render();
    onFirst(s, a, "output", [&s, a] {
        for (int i = 0; i < 100; ++i)
            s.up(a, 0, s.output());
    });
    s.render();
    EXPECT_EQ(s.renderer.output(0), QVariant(QStringLiteral("A0#2")));
    EXPECT_EQ(s.renderer.numOutputs(), 101);
}
