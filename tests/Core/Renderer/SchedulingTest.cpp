// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "support/RecordingPass.h"
#include "support/RendererInternals.h"

#include <gtest/gtest.h>

#include <climits>

using namespace Kestrin::Orv;

TEST(Scheduling, PassesComeAfterThosePassesThatFeedThem)
{
    Scene s;
    const int c = s.pass("C", 1, 1);
    const int b = s.pass("B", 1, 1);
    const int a = s.pass("A", 0, 1);
    s.edge(a, 0, b, 0);
    s.edge(b, 0, c, 0);
    s.up(c, 0, s.output());
    s.setup();
    EXPECT_EQ(s.order(), "A B C");
}

TEST(Scheduling, BranchesComeInTheOrderOfInputs)
{
    Scene s;
    const int a = s.pass("A", 0, 1);
    const int b = s.pass("B", 0, 1);
    const int c = s.pass("C", 0, 1);
    const int d = s.pass("D", 3, 1);
    s.edge(a, 0, d, 1);
    s.edge(b, 0, d, 2);
    s.edge(c, 0, d, 0);
    s.up(d, 0, s.output());
    s.setup();
    EXPECT_EQ(s.order(), "C A B D");
}

TEST(Scheduling, BranchesComeInTheOrderOfTheOutputsOfTheRenderer)
{
    Scene s;
    const int a = s.pass("A", 0, 1);
    const int b = s.pass("B", 0, 1);
    const int first = s.output();
    const int second = s.output();
    s.up(a, 0, second);
    s.up(b, 0, first);
    s.setup();
    EXPECT_EQ(s.order(), "B A");
}

TEST(Scheduling, SharedSourceRunsOnce)
{
    Scene s;
    const int a = s.pass("A", 0, 1);
    const int b = s.pass("B", 1, 1);
    const int c = s.pass("C", 1, 1);
    const int d = s.pass("D", 2, 1);
    s.edge(a, 0, b, 0);
    s.edge(a, 0, c, 0);
    s.edge(b, 0, d, 0);
    s.edge(c, 0, d, 1);
    s.up(d, 0, s.output());
    s.up(d, 0, s.output());
    s.up(b, 0, s.output());
    s.setup();
    EXPECT_EQ(s.order(), "A B C D");
}

TEST(Scheduling, PassesThatNoOutputNeedsStayOut)
{
    Scene s;
    const int a = s.pass("A", 0, 1);
    const int b = s.pass("B", 1, 1);
    s.pass("lone", 1, 1);
    s.edge(a, 0, b, 0);
    s.up(a, 0, s.output());
    s.log.keepOnly("setup");
    s.setup();
    EXPECT_EQ(s.log.take(), "A.setup(7)");
    EXPECT_EQ(s.order(), "A");
}

TEST(Scheduling, OutputsThatNothingProducesArePassedOver)
{
    Scene s;
    const int a = s.pass("A", 0, 1);
    const int g = s.group("G", 0, 1);
    s.output();
    s.up(g, 0, s.output());
    s.up(a, 0, s.output());
    s.setup();
    EXPECT_EQ(s.order(), "A");
}

TEST(Scheduling, OutputsThatNothingProducesDoNotLeadToTheRoot)
{
    Scene s;
    s.pass("A", 0, 1);
    s.output();
    s.graph.setNodeValue(Graph::kRootNodeRef, 0);
    s.setup();
    EXPECT_EQ(s.order(), "");
}

TEST(Scheduling, UnfedInputOfAGroupDoesNotLeadToTheGroup)
{
    // The group is a pass itself here, so that it would run if it were visited.
    Scene s;
    const int p = s.pass("P", 1, 1);
    const int x = s.pass("X", 1, 1, p);
    s.down(0, x, 0);
    s.up(x, 0, 0);
    s.up(p, 0, s.output());
    s.setup();
    EXPECT_EQ(s.order(), "X");
}

TEST(Scheduling, NothingWiredSchedulesNothing)
{
    Scene s;
    s.pass("A", 1, 1);
    s.output();
    s.setup();
    EXPECT_EQ(s.log.take(), "");
    EXPECT_EQ(s.order(), "");
}

TEST(Scheduling, RendererWithoutAnythingSetsUp)
{
    Scene s;
    s.setup();
    EXPECT_TRUE(s.render());
    s.teardown();
}

TEST(Scheduling, GroupsAreWalkedThrough)
{
    Scene s;
    const int a = s.pass("A", 0, 1);
    const int g = s.group("G", 1, 1);
    const int x = s.pass("X", 1, 1, g);
    const int y = s.pass("Y", 1, 1, g);
    s.pass("unused", 1, 1, g);
    const int b = s.pass("B", 1, 1);
    s.edge(a, 0, g, 0);
    s.down(0, x, 0);
    s.edge(x, 0, y, 0);
    s.up(y, 0, 0);
    s.edge(g, 0, b, 0);
    s.up(b, 0, s.output());
    s.setup();
    EXPECT_EQ(s.order(), "A X Y B");
}

TEST(Scheduling, NestedGroupsAreWalkedThrough)
{
    Scene s;
    const int a = s.pass("A", 0, 1);
    const int g = s.group("G", 1, 1);
    const int h = s.group("H", 1, 1, g);
    const int i = s.group("I", 1, 1, h);
    const int x = s.pass("X", 1, 1, i);
    s.edge(a, 0, g, 0);
    s.down(0, h, 0);
    s.down(0, i, 0);
    s.down(0, x, 0);
    s.up(x, 0, 0);
    s.up(i, 0, 0);
    s.up(h, 0, 0);
    s.up(g, 0, s.output());
    s.setup();
    EXPECT_EQ(s.order(), "A X");
}

TEST(Scheduling, OnlyTheInputsOfInnerPassesAreFollowed)
{
    // The group's second input feeds nothing that is needed.
    Scene s;
    const int a = s.pass("A", 0, 1);
    const int unneeded = s.pass("N", 0, 1);
    const int g = s.group("G", 2, 1);
    const int x = s.pass("X", 1, 1, g);
    s.edge(a, 0, g, 0);
    s.edge(unneeded, 0, g, 1);
    s.down(0, x, 0);
    s.up(x, 0, 0);
    s.up(g, 0, s.output());
    s.setup();
    EXPECT_EQ(s.order(), "A X");
}

TEST(Scheduling, GroupOutputThatLeadsNowhereLeadsToTheInputsOfTheGroup)
{
    Scene s;
    const int a = s.pass("A", 0, 1);
    const int g = s.group("G", 1, 1);
    const int b = s.pass("B", 1, 1);
    s.edge(a, 0, g, 0);
    s.edge(g, 0, b, 0);
    s.up(b, 0, s.output());
    s.setup();
    EXPECT_EQ(s.order(), "A B");
}

TEST(Scheduling, PassWithChildrenIsAPassAndAGroup)
{
    // The output of P comes from inside; its other output is its own.
    Scene s;
    const int p = s.pass("P", 0, 2);
    const int x = s.pass("X", 0, 1, p);
    const int b = s.pass("B", 2, 1);
    s.up(x, 0, 0);
    s.edge(p, 0, b, 0);
    s.edge(p, 1, b, 1);
    s.up(b, 0, s.output());
    s.setup();
    EXPECT_EQ(s.order(), "X P B");
}

TEST(Scheduling, DisabledPassIsWalkedThroughButNotRun)
{
    Scene s;
    const int a = s.chain(3);
    s.renderer.setEnabled(a + 1, false);
    s.setup();
    EXPECT_EQ(s.order(), "A C");
}

TEST(Scheduling, DisablingTheLastPassKeepsItsUpstreamScheduled)
{
    Scene s;
    const int a = s.chain(3);
    s.renderer.setEnabled(a + 2, false);
    s.setup();
    EXPECT_EQ(s.order(), "A B");
}

TEST(Scheduling, DisablingEveryPassSchedulesNothing)
{
    Scene s;
    const int a = s.chain(2);
    s.renderer.setEnabled(a, false);
    s.renderer.setEnabled(a + 1, false);
    s.setup();
    EXPECT_EQ(s.order(), "");
}

TEST(Scheduling, DisabledPassGetsNoCalls)
{
    Scene s;
    const int a = s.chain(2);
    s.renderer.setEnabled(a, false);
    s.setup();
    EXPECT_EQ(s.log.take(),
              "B.resetNumOutputUsers B.setNumOutputUsers(0,1) B.numInputs "
              "B.defaultValue(0) B.setInput(0,B0?) B.setup(7)");
}

TEST(Scheduling, TargetIsScheduledWithItsUpstream)
{
    Scene s;
    const int a = s.pass("A", 0, 1);
    const int b = s.pass("B", 1, 1);
    s.edge(a, 0, b, 0);
    s.renderer.setTarget(b);
    s.setup();
    EXPECT_EQ(s.order(), "A B");
    EXPECT_EQ(s.renderer.getTarget(), b);
}

TEST(Scheduling, TargetComesAfterWhatTheOutputsNeed)
{
    Scene s;
    const int t = s.pass("T", 1, 1);
    const int a = s.pass("A", 0, 1);
    const int b = s.pass("B", 1, 1);
    s.edge(a, 0, t, 0);
    s.edge(a, 0, b, 0);
    s.up(b, 0, s.output());
    s.renderer.setTarget(t);
    s.setup();
    EXPECT_EQ(s.order(), "A B T");
}

TEST(Scheduling, TargetThatAnOutputNeedsRunsOnce)
{
    Scene s;
    const int a = s.chain(3);
    s.renderer.setTarget(a + 1);
    s.setup();
    EXPECT_EQ(s.order(), "A B C");
}

TEST(Scheduling, TargetTakesEffectAtTheNextSetupOnly)
{
    Scene s;
    const int a = s.pass("A", 0, 1);
    s.setup();
    s.renderer.setTarget(a);
    EXPECT_EQ(s.order(), "");
    s.setup();
    EXPECT_EQ(s.order(), "A");
    s.renderer.setTarget(-1);
    EXPECT_EQ(s.order(), "A");
    s.setup();
    EXPECT_EQ(s.order(), "");
}

TEST(Scheduling, TargetThatIsNoLiveNodeIsPassedOver)
{
    Scene s;
    const int a = s.pass("A", 0, 1);
    const int b = s.pass("B", 0, 1);
    s.up(a, 0, s.output());
    s.graph.removeNode(b);
    for (const int target : {-1, INT_MIN, INT_MAX, s.graph.numNodesGlobal(), b}) {
        s.renderer.setTarget(target);
        s.setup();
        EXPECT_EQ(s.order(), "A") << target;
    }
}

TEST(Scheduling, RootAsTargetIsPassedOver)
{
    Scene s;
    const int a = s.pass("A", 0, 1);
    s.pass("B", 0, 1);
    s.up(a, 0, s.output());
    // Were the root walked, its value would make it a pass.
    s.graph.setNodeValue(Graph::kRootNodeRef, 1);
    s.renderer.setTarget(Graph::kRootNodeRef);
    s.setup();
    EXPECT_EQ(s.order(), "A");
}

TEST(Scheduling, GroupAsTargetSchedulesWhatFeedsItsInputs)
{
    Scene s;
    const int a = s.pass("A", 0, 1);
    const int b = s.pass("B", 0, 1);
    const int g = s.group("G", 2, 1);
    const int x = s.pass("X", 1, 1, g);
    s.edge(a, 0, g, 0);
    s.edge(b, 0, g, 1);
    s.down(0, x, 0);
    s.up(x, 0, 0);
    s.renderer.setTarget(g);
    s.setup();
    EXPECT_EQ(s.order(), "A B") << "what lies inside the group is not upstream of it";
}

TEST(Scheduling, DisabledTargetStillSchedulesItsUpstream)
{
    Scene s;
    const int a = s.pass("A", 0, 1);
    const int b = s.pass("B", 1, 1);
    s.edge(a, 0, b, 0);
    s.renderer.setTarget(b);
    s.renderer.setEnabled(b, false);
    s.setup();
    EXPECT_EQ(s.order(), "A");
}

TEST(Scheduling, TargetInsideAGroupIsScheduled)
{
    Scene s;
    const int a = s.pass("A", 0, 1);
    const int g = s.group("G", 1, 0);
    const int x = s.pass("X", 1, 1, g);
    s.edge(a, 0, g, 0);
    s.down(0, x, 0);
    s.renderer.setTarget(x);
    s.setup();
    EXPECT_EQ(s.order(), "A X");
}

TEST(Scheduling, CycleThroughAGroupIsCutAtTheFirstVisitedNode)
{
    // The graph looks for the producing nodes and not for the groups between them, so it sees no
    // cycle in A -> G -> A, with X inside G.
    Scene s;
    const int g = s.group("G", 1, 1);
    const int x = s.pass("X", 1, 1, g);
    const int a = s.pass("A", 1, 1);
    s.up(x, 0, 0);
    ASSERT_GE(s.edge(g, 0, a, 0), 0);
    ASSERT_GE(s.edge(a, 0, g, 0), 0) << "the inner input is not wired yet";
    ASSERT_GE(s.down(0, x, 0), 0);
    s.up(a, 0, s.output());
    s.setup();
    EXPECT_EQ(s.order(), "X A") << "X was reached from A, so A is cut off there";
    s.graph.removeEdge(s.graph.outputSource(Graph::kRootNodeRef, 0));
    s.up(g, 0, 0);
    s.setup();
    EXPECT_EQ(s.order(), "A X");
}

TEST(Scheduling, PassOfACycleTakesTheOlderOutput)
{
    Scene s;
    const int g = s.group("G", 1, 1);
    const int x = s.pass("X", 1, 1, g);
    const int a = s.pass("A", 1, 1);
    s.up(x, 0, 0);
    s.edge(g, 0, a, 0);
    s.edge(a, 0, g, 0);
    s.down(0, x, 0);
    s.up(a, 0, s.output());
    s.setup();
    s.log.keepOnly("setInput");
    EXPECT_EQ(s.frame(), "X.setInput(0,invalid) A.setInput(0,X0#1)");
    EXPECT_EQ(s.frame(), "X.setInput(0,A0#1) A.setInput(0,X0#2)");
}

TEST(Scheduling, PassFedByItselfThroughGroupsIsScheduledOnce)
{
    Scene s;
    const int g = s.group("G", 1, 1);
    const int x = s.pass("X", 1, 1, g);
    const int hollow = s.group("H", 1, 1);
    s.up(x, 0, 0);
    s.down(0, x, 0);
    ASSERT_GE(s.edge(g, 0, hollow, 0), 0);
    ASSERT_GE(s.edge(hollow, 0, g, 0), 0);
    s.up(g, 0, s.output());
    s.setup();
    EXPECT_EQ(s.order(), "X");
}

TEST(Scheduling, NodeRunsThePassThatItsValueNames)
{
    Scene s;
    const int a = s.pass("A", 0, 1);
    const int g = s.group("G", 0, 1);
    s.up(g, 0, s.output());
    s.setup();
    EXPECT_EQ(s.order(), "");
    s.graph.setNodeValue(g, s.graph.nodeValue(a));
    s.setup();
    EXPECT_EQ(s.order(), "A");
}

TEST(Scheduling, OnePassAtTwoNodesRunsTwice)
{
    Scene s;
    const int a = s.pass("A", 0, 1);
    const int b = s.pass("B", 0, 1);
    s.up(a, 0, s.output());
    s.up(b, 0, s.output());
    s.graph.setNodeValue(b, s.graph.nodeValue(a));
    s.setup();
    EXPECT_EQ(s.order(), "A A");
}

TEST(Scheduling, RemovedNodeIsNoLongerScheduled)
{
    Scene s;
    const int a = s.chain(3);
    s.graph.removeNode(a + 1);
    s.setup();
    EXPECT_EQ(s.order(), "C");
}

TEST(Scheduling, RewiringTakesEffectAtTheNextSetup)
{
    Scene s;
    const int a = s.chain(2);
    s.setup();
    const int n = s.pass("N", 0, 1);
    s.graph.disconnectInput(a + 1, 0);
    s.edge(n, 0, a + 1, 0);
    EXPECT_EQ(s.order(), "A B");
    s.setup();
    EXPECT_EQ(s.order(), "N B");
}

TEST(Setup, FirstSetupTearsNothingDown)
{
    Scene s;
    s.chain(2);
    s.log.keepOnly("teardown setup");
    s.setup();
    EXPECT_EQ(s.log.take(), "A.setup(7) B.setup(7)");
}

TEST(Setup, RepeatedSetupTearsEveryRegisteredPassDownFirst)
{
    Scene s;
    s.pass("lone", 0, 0);
    const int a = s.chain(2);
    s.pass("other", 0, 0);
    s.renderer.setEnabled(a, false);
    s.setup();
    s.log.keepOnly("teardown setup");
    s.setup(9);
    EXPECT_EQ(s.log.take(),
              "lone.teardown(9) A.teardown(9) B.teardown(9) other.teardown(9) B.setup(9)");
}

TEST(Setup, SetupAfterATeardownTearsNothingDown)
{
    Scene s;
    s.chain(1);
    s.setup();
    s.teardown();
    s.log.keepOnly("teardown setup");
    s.setup();
    EXPECT_EQ(s.log.take(), "A.setup(7)");
}

TEST(Setup, SetupThatScheduledNothingIsNotTornDown)
{
    Scene s;
    s.pass("A", 0, 0);
    s.setup();
    s.setup();
    EXPECT_EQ(s.log.take(), "");
}

TEST(Setup, RepeatedSetupKeepsTheOrder)
{
    Scene s;
    s.chain(3);
    s.setup();
    s.setup();
    s.setup();
    EXPECT_EQ(s.order(), "A B C");
}

TEST(Setup, SetupThatSchedulesNothingAnyMoreEmptiesTheOrder)
{
    Scene s;
    s.chain(1);
    s.setup();
    s.graph.removeEdge(s.graph.outputSource(Graph::kRootNodeRef, 0));
    s.setup();
    EXPECT_EQ(s.order(), "");
}

TEST(Setup, TeardownIsCalledVirtually)
{
    struct Derived : Renderer
    {
        void teardown(RenderCallbacks* callbacks) override
        {
            ++teardowns;
            Renderer::teardown(callbacks);
        }
        int teardowns = 0;
    };
    BasicScene<Derived> s;
    s.chain(1);
    s.setup();
    EXPECT_EQ(s.renderer.teardowns, 0);
    s.setup();
    EXPECT_EQ(s.renderer.teardowns, 1);
}

TEST(Setup, TeardownThatKeepsTheOrderMakesPassesRunTwice)
{
    struct Derived : Renderer
    {
        void teardown(RenderCallbacks*) override { }
    };
    BasicScene<Derived> s;
    s.chain(2);
    s.setup();
    s.setup();
    EXPECT_EQ(s.order(), "A B A B");
}

TEST(Walk, AppendsInPostOrderAndMarksWhatItVisits)
{
    Scene s;
    const int a = s.chain(3);
    const int lone = s.pass("lone", 0, 0);
    QVector<bool> visited(s.graph.numNodesGlobal(), false);
    internals::walk(internals::of(s.renderer), a + 1, callbacksNo(7), visited);
    QVector<bool> expected(s.graph.numNodesGlobal(), false);
    expected[a] = true;
    expected[a + 1] = true;
    EXPECT_EQ(visited, expected);
    EXPECT_EQ(s.log.take(), "") << "the walk calls no pass";
    EXPECT_EQ(s.order(), "A B");

    internals::walk(internals::of(s.renderer), lone, callbacksNo(7), visited);
    internals::walk(internals::of(s.renderer), a + 2, callbacksNo(7), visited);
    EXPECT_EQ(s.order(), "A B lone C");
}

TEST(Walk, StopsAtVisitedNodes)
{
    Scene s;
    const int a = s.chain(3);
    QVector<bool> visited(s.graph.numNodesGlobal(), false);
    visited[a + 1] = true;
    internals::walk(internals::of(s.renderer), a + 2, callbacksNo(7), visited);
    EXPECT_FALSE(visited[a]);
    EXPECT_EQ(s.order(), "C");
    internals::walk(internals::of(s.renderer), a + 2, callbacksNo(7), visited);
    EXPECT_EQ(s.order(), "C");
}

TEST(Walk, MarksDisabledPassesAndGroups)
{
    Scene s;
    const int a = s.pass("A", 0, 1);
    const int g = s.group("G", 1, 1);
    s.edge(a, 0, g, 0);
    s.renderer.setEnabled(a, false);
    QVector<bool> visited(s.graph.numNodesGlobal(), false);
    internals::walk(internals::of(s.renderer), g, callbacksNo(7), visited);
    EXPECT_TRUE(visited[g]);
    EXPECT_TRUE(visited[a]);
}
