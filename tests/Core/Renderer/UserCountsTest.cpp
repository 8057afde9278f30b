// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "support/RecordingPass.h"
#include "support/RendererInternals.h"

#include <gtest/gtest.h>

#include <initializer_list>

using namespace Kestrin::Orv;

namespace {

/// The count of an output when just these nodes have been visited.
int users(Scene& s, int node, int output, std::initializer_list<int> visitedNodes)
{
    QVector<bool> visited(s.graph.numNodesGlobal(), false);
    for (const int visitedNode : visitedNodes)
        visited[visitedNode] = true;
    return internals::getActiveOutputUsers(internals::of(s.renderer), node, output, visited);
}

} // namespace

TEST(UserCounts, OutputConnectedToNothingHasNone)
{
    Scene s;
    const int a = s.pass("A", 0, 1);
    s.renderer.setTarget(a);
    s.setup();
    EXPECT_EQ(s.at(a).users, QVector<int>({0}));
}

TEST(UserCounts, EachScheduledConsumerCounts)
{
    Scene s;
    const int a = s.pass("A", 0, 1);
    const int b = s.pass("B", 1, 1);
    const int c = s.pass("C", 1, 1);
    s.edge(a, 0, b, 0);
    s.edge(a, 0, c, 0);
    s.up(b, 0, s.output());
    s.up(c, 0, s.output());
    s.setup();
    EXPECT_EQ(s.at(a).users, QVector<int>({2}));
    EXPECT_EQ(s.at(b).users, QVector<int>({1}));
}

TEST(UserCounts, TwoInputsOfOnePassCountTwice)
{
    Scene s;
    const int a = s.pass("A", 0, 1);
    const int b = s.pass("B", 2, 1);
    s.edge(a, 0, b, 0);
    s.edge(a, 0, b, 1);
    s.up(b, 0, s.output());
    s.setup();
    EXPECT_EQ(s.at(a).users, QVector<int>({2}));
}

TEST(UserCounts, UnscheduledConsumerDoesNotCount)
{
    Scene s;
    const int a = s.pass("A", 0, 1);
    const int b = s.pass("B", 1, 1);
    const int unneeded = s.pass("N", 1, 1);
    s.edge(a, 0, unneeded, 0);
    s.edge(a, 0, b, 0);
    s.up(b, 0, s.output());
    s.setup();
    EXPECT_EQ(s.at(a).users, QVector<int>({1}));
}

TEST(UserCounts, DisabledConsumerThatWasVisitedCounts)
{
    Scene s;
    const int a = s.chain(2);
    s.renderer.setEnabled(a + 1, false);
    s.setup();
    EXPECT_EQ(s.at(a).users, QVector<int>({1}));
}

TEST(UserCounts, EveryRendererOutputCounts)
{
    Scene s;
    const int a = s.pass("A", 0, 2);
    const int b = s.pass("B", 1, 1);
    s.edge(a, 0, b, 0);
    s.up(a, 0, s.output());
    s.up(a, 0, s.output());
    s.up(b, 0, s.output());
    s.setup();
    EXPECT_EQ(s.at(a).users, QVector<int>({3, 0}));
}

TEST(UserCounts, RendererOutputCountsThoughTheRootIsNeverVisited)
{
    Scene s;
    const int a = s.pass("A", 0, 1);
    s.up(a, 0, s.output());
    EXPECT_EQ(users(s, a, 0, {}), 1);
}

TEST(UserCounts, RemovedEdgeDoesNotCount)
{
    Scene s;
    const int a = s.pass("A", 0, 1);
    const int b = s.pass("B", 2, 1);
    const int first = s.edge(a, 0, b, 0);
    s.edge(a, 0, b, 1);
    EXPECT_EQ(users(s, a, 0, {b}), 2);
    s.graph.removeEdge(first);
    EXPECT_EQ(users(s, a, 0, {b}), 1);
}

TEST(UserCounts, OutputsThatTheHostAddedToTheNodeAreCountedToo)
{
    Scene s;
    const int a = s.chain(1);
    s.graph.addOutput(a, QStringLiteral("extra"), Graph::kInvalidGroupRef);
    s.up(a, 1, s.output());
    s.log.keepOnly("setNumOutputUsers");
    s.setup();
    EXPECT_EQ(s.log.take(), "A.setNumOutputUsers(0,1) A.setNumOutputUsers(1,1)");
}

TEST(UserCounts, OutputsRemovedFromTheNodeAreNotCounted)
{
    Scene s;
    const int a = s.pass("A", 0, 2);
    s.up(a, 0, s.output());
    s.graph.removeOutput(a, 1);
    s.log.keepOnly("setNumOutputUsers");
    s.setup();
    EXPECT_EQ(s.log.take(), "A.setNumOutputUsers(0,1)");
}

TEST(UserCounts, AreWorkedOutBySetupOnly)
{
    Scene s;
    const int a = s.chain(1);
    s.setup();
    s.up(a, 0, s.output());
    s.log.keepOnly("resetNumOutputUsers setNumOutputUsers");
    s.render();
    EXPECT_EQ(s.log.take(), "");
    s.setup();
    EXPECT_EQ(s.at(a).users, QVector<int>({2}));
}

// An edge from outside into a group.

TEST(UserCounts, EdgeIntoAGroupCountsTheVisitedInnerConsumers)
{
    Scene s;
    const int a = s.pass("A", 0, 1);
    const int g = s.group("G", 1, 1);
    const int x = s.pass("X", 1, 1, g);
    const int y = s.pass("Y", 1, 1, g);
    s.edge(a, 0, g, 0);
    s.down(0, x, 0);
    s.down(0, y, 0);
    EXPECT_EQ(users(s, a, 0, {}), 0);
    EXPECT_EQ(users(s, a, 0, {x}), 1);
    EXPECT_EQ(users(s, a, 0, {y}), 1);
    EXPECT_EQ(users(s, a, 0, {x, y}), 2);
}

TEST(UserCounts, EdgeIntoAVisitedGroupCountsTheGroupToo)
{
    Scene s;
    const int a = s.pass("A", 0, 1);
    const int g = s.group("G", 1, 1);
    const int x = s.pass("X", 1, 1, g);
    s.edge(a, 0, g, 0);
    s.down(0, x, 0);
    EXPECT_EQ(users(s, a, 0, {g}), 1);
    EXPECT_EQ(users(s, a, 0, {g, x}), 2);
    s.up(x, 0, 0);
    s.up(g, 0, s.output());
    s.setup();
    EXPECT_EQ(s.at(a).users, QVector<int>({1}));
    s.renderer.setTarget(g);
    s.setup();
    EXPECT_EQ(s.at(a).users, QVector<int>({2}));
}

TEST(UserCounts, EachInputOfAGroupCountsItsOwnInnerConsumers)
{
    Scene s;
    const int a = s.pass("A", 0, 2);
    const int g = s.group("G", 2, 1);
    const int x = s.pass("X", 2, 1, g);
    s.edge(a, 0, g, 1);
    s.edge(a, 1, g, 0);
    s.down(1, x, 0);
    EXPECT_EQ(users(s, a, 0, {x}), 1);
    EXPECT_EQ(users(s, a, 1, {x}), 0);
    s.down(1, x, 1);
    EXPECT_EQ(users(s, a, 0, {x}), 2);
}

TEST(UserCounts, GroupWithoutChildrenCountsWhenVisited)
{
    Scene s;
    const int a = s.pass("A", 0, 1);
    const int g = s.group("G", 1, 1);
    s.edge(a, 0, g, 0);
    EXPECT_EQ(users(s, a, 0, {}), 0);
    EXPECT_EQ(users(s, a, 0, {g}), 1);
}

TEST(UserCounts, ConsumersTwoGroupsDeepAreNotSeen)
{
    Scene s;
    const int a = s.pass("A", 0, 1);
    const int g = s.group("G", 1, 1);
    const int h = s.group("H", 1, 1, g);
    const int x = s.pass("X", 1, 1, h);
    s.edge(a, 0, g, 0);
    s.down(0, h, 0);
    s.down(0, x, 0);
    EXPECT_EQ(users(s, a, 0, {x}), 0) << "the inner consumer of G is H";
    EXPECT_EQ(users(s, a, 0, {h, x}), 1);
    s.up(x, 0, 0);
    s.up(h, 0, 0);
    s.up(g, 0, s.output());
    s.setup();
    EXPECT_EQ(s.at(a).users, QVector<int>({0}));
    EXPECT_EQ(s.order(), "A X");
}

TEST(UserCounts, PassWithChildrenCountsAsAGroup)
{
    Scene s;
    const int a = s.pass("A", 0, 1);
    const int p = s.pass("P", 1, 1);
    const int x = s.pass("X", 1, 1, p);
    s.edge(a, 0, p, 0);
    s.down(0, x, 0);
    EXPECT_EQ(users(s, a, 0, {p, x}), 2);
    EXPECT_EQ(users(s, a, 0, {p}), 1);
}

TEST(UserCounts, EdgeFromInsideAGroupDoesNotEnterItFromOutside)
{
    // The group's input 0 feeds Y; the output of X goes to the group's output 0, which must not be
    // taken for that input.
    Scene s;
    const int g = s.group("G", 1, 1);
    const int x = s.pass("X", 0, 1, g);
    const int y = s.pass("Y", 1, 1, g);
    s.down(0, y, 0);
    s.up(x, 0, 0);
    EXPECT_EQ(users(s, x, 0, {x, y}), 0);
}

// An edge out of a group.

TEST(UserCounts, OutputOfAGroupCountsItsVisitedConsumers)
{
    Scene s;
    const int g = s.group("G", 0, 1);
    const int x = s.pass("X", 0, 1, g);
    const int b = s.pass("B", 1, 1);
    s.up(x, 0, 0);
    EXPECT_EQ(users(s, x, 0, {}), 0) << "the group's output feeds nothing yet";
    s.edge(g, 0, b, 0);
    EXPECT_EQ(users(s, x, 0, {b}), 1);
    EXPECT_EQ(users(s, x, 0, {}), 0);
    s.up(b, 0, s.output());
    s.setup();
    EXPECT_EQ(s.at(x).users, QVector<int>({1}));
}

TEST(UserCounts, OutputOfAGroupThatFeedsTheRendererCounts)
{
    Scene s;
    const int g = s.group("G", 0, 1);
    const int x = s.pass("X", 0, 1, g);
    s.up(x, 0, 0);
    s.up(g, 0, s.output());
    EXPECT_EQ(users(s, x, 0, {}), 1);
    s.setup();
    EXPECT_EQ(s.at(x).users, QVector<int>({1}));
}

TEST(UserCounts, VisitedGroupCountsOnceMore)
{
    Scene s;
    const int g = s.group("G", 0, 1);
    const int x = s.pass("X", 0, 1, g);
    const int b = s.pass("B", 1, 1);
    s.up(x, 0, 0);
    s.edge(g, 0, b, 0);
    EXPECT_EQ(users(s, x, 0, {g}), 1);
    EXPECT_EQ(users(s, x, 0, {g, b}), 2);
}

TEST(UserCounts, OnlyAsManyConsumersOfTheGroupAreSeenAsThePassHasItself)
{
    Scene s;
    const int g = s.group("G", 0, 1);
    const int x = s.pass("X", 0, 1, g);
    const int b = s.pass("B", 1, 1);
    const int c = s.pass("C", 1, 1);
    const int d = s.pass("D", 1, 1);
    s.up(x, 0, 0);
    s.edge(g, 0, b, 0);
    s.edge(g, 0, c, 0);
    s.edge(g, 0, d, 0);
    EXPECT_EQ(users(s, x, 0, {b, c, d}), 1);
    EXPECT_EQ(users(s, x, 0, {c, d}), 0) << "only the oldest is looked at";

    const int y = s.pass("Y", 1, 1, g);
    s.graph.addEdge(x, 0, y, 0);
    EXPECT_EQ(s.graph.numOutputDestinations(x, 0), 1) << "refused: the oldest edge is an up edge";
}

TEST(UserCounts, MoreDestinationsOfThePassSeeMoreConsumersOfTheGroup)
{
    Scene s;
    const int g = s.group("G", 0, 1);
    const int x = s.pass("X", 0, 1, g);
    const int y = s.pass("Y", 1, 1, g);
    const int b = s.pass("B", 1, 1);
    const int c = s.pass("C", 1, 1);
    const int d = s.pass("D", 1, 1);
    s.edge(x, 0, y, 0);
    s.up(x, 0, 0);
    s.edge(g, 0, b, 0);
    s.edge(g, 0, c, 0);
    s.edge(g, 0, d, 0);
    EXPECT_EQ(users(s, x, 0, {b, c, d}), 2);
    EXPECT_EQ(users(s, x, 0, {c, d}), 1);
    EXPECT_EQ(users(s, x, 0, {y, b, c, d}), 3);
    EXPECT_EQ(users(s, x, 0, {g, y, b, c, d}), 4);
}

TEST(UserCounts, LookUpsBeyondTheConsumersOfTheGroupCountNothing)
{
    Scene s;
    const int g = s.group("G", 0, 1);
    const int x = s.pass("X", 0, 1, g);
    const int y = s.pass("Y", 2, 1, g);
    const int b = s.pass("B", 1, 1);
    s.edge(x, 0, y, 0);
    s.edge(x, 0, y, 1);
    s.up(x, 0, 0);
    s.edge(g, 0, b, 0);
    EXPECT_EQ(users(s, x, 0, {b}), 1);
    EXPECT_EQ(users(s, x, 0, {y, b}), 3);
    s.graph.disconnectInput(b, 0);
    EXPECT_EQ(users(s, x, 0, {y, b}), 2) << "the group's output feeds nothing at all";
}

TEST(UserCounts, TwoOutputsOfOneGroupAreCountedEach)
{
    Scene s;
    const int g = s.group("G", 0, 2);
    const int x = s.pass("X", 0, 1, g);
    const int b = s.pass("B", 2, 1);
    s.up(x, 0, 0);
    s.up(x, 0, 1);
    s.edge(g, 0, b, 0);
    s.edge(g, 1, b, 1);
    EXPECT_EQ(users(s, x, 0, {b}), 2);
    EXPECT_EQ(users(s, x, 0, {b, g}), 4) << "the group counts for each of the two edges";
}

TEST(UserCounts, OnlyTheOutputOfTheGroupThatIsFedIsLookedAt)
{
    Scene s;
    const int g = s.group("G", 0, 2);
    const int x = s.pass("X", 0, 1, g);
    const int b = s.pass("B", 1, 1);
    const int c = s.pass("C", 1, 1);
    s.up(x, 0, 1);
    s.edge(g, 0, b, 0);
    s.edge(g, 1, c, 0);
    EXPECT_EQ(users(s, x, 0, {b}), 0);
    EXPECT_EQ(users(s, x, 0, {c}), 1);
}

TEST(UserCounts, ConsumersBeyondTheSecondGroupAreNotSeen)
{
    Scene s;
    const int g = s.group("G", 0, 1);
    const int h = s.group("H", 0, 1, g);
    const int x = s.pass("X", 0, 1, h);
    const int b = s.pass("B", 1, 1);
    s.up(x, 0, 0);
    s.up(h, 0, 0);
    s.edge(g, 0, b, 0);
    s.up(b, 0, s.output());
    EXPECT_EQ(users(s, x, 0, {x, b}), 0) << "the consumer of H is G";
    EXPECT_EQ(users(s, x, 0, {x, b, g}), 1);
    s.setup();
    EXPECT_EQ(s.at(x).users, QVector<int>({0}));
    EXPECT_EQ(s.order(), "X B");
}

TEST(UserCounts, ConsumersInsideTheSameGroupCount)
{
    Scene s;
    const int g = s.group("G", 0, 1);
    const int x = s.pass("X", 0, 1, g);
    const int y = s.pass("Y", 1, 1, g);
    s.edge(x, 0, y, 0);
    s.up(y, 0, 0);
    s.up(g, 0, s.output());
    s.setup();
    EXPECT_EQ(s.at(x).users, QVector<int>({1}));
    EXPECT_EQ(s.at(y).users, QVector<int>({1}));
}

TEST(UserCounts, GroupToGroupCountsTheGroupOnlyWhenVisited)
{
    // X -> G.out -> H.in -> Y: H itself is looked up, not what lies inside.
    Scene s;
    const int g = s.group("G", 0, 1);
    const int x = s.pass("X", 0, 1, g);
    const int h = s.group("H", 1, 1);
    const int y = s.pass("Y", 1, 1, h);
    s.up(x, 0, 0);
    s.edge(g, 0, h, 0);
    s.down(0, y, 0);
    EXPECT_EQ(users(s, x, 0, {y}), 0);
    EXPECT_EQ(users(s, x, 0, {y, h}), 1);
}

// The graph does not test whether the ends of a regular edge are siblings.

TEST(UserCounts, EdgeStraightToTheRootCounts)
{
    Scene s;
    const int g = s.group("G", 0, 1);
    const int x = s.pass("X", 0, 1, g);
    const int parameter = s.parameter(1);
    ASSERT_GE(s.edge(x, 0, Graph::kRootNodeRef, parameter), 0);
    EXPECT_EQ(users(s, x, 0, {}), 1);
    const int y = s.pass("Y", 1, 1);
    s.down(parameter, y, 0);
    EXPECT_EQ(users(s, x, 0, {y}), 1) << "the root contains X, so X does not enter it";
}

TEST(UserCounts, EdgeStraightOutOfAGroupCountsItsEnd)
{
    Scene s;
    const int g = s.group("G", 0, 1);
    const int x = s.pass("X", 0, 1, g);
    const int b = s.pass("B", 1, 1);
    ASSERT_GE(s.edge(x, 0, b, 0), 0);
    EXPECT_EQ(users(s, x, 0, {}), 0);
    EXPECT_EQ(users(s, x, 0, {b}), 1);
}

TEST(UserCounts, NothingIsCountedForNodesWithoutTheOutput)
{
    Scene s;
    const int a = s.chain(1);
    for (const int output : {-1, 1, 1000})
        EXPECT_EQ(users(s, a, output, {a}), 0);
}
