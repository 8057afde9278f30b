// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "support/SampleGraph.h"

#include <Kestrin/Orv/Graph.h>

#include <gtest/gtest.h>

#include <limits>
#include <vector>

using Kestrin::Orv::Graph;

namespace {

const int kRoot = Graph::kRootNodeRef;

// What holds whether or not the search follows the hierarchy.
class GraphPrecedesEitherWay : public testing::TestWithParam<bool>
{
protected:
    bool precedes(int upstream, int downstream) const
    {
        return graph.precedes(upstream, downstream, GetParam());
    }
    int addNode() { return graph.addNode(QString(), 2, 2, kRoot); }

    Graph graph;
};

INSTANTIATE_TEST_SUITE_P(Search, GraphPrecedesEitherWay, testing::Bool(), [](const auto& flag) {
    return flag.param ? std::string("FollowingTheHierarchy") : std::string("AmongSiblings");
});

} // namespace

TEST_P(GraphPrecedesEitherWay, ANodePrecedesItself)
{
    const int node = addNode();
    EXPECT_TRUE(precedes(node, node));
    EXPECT_TRUE(precedes(kRoot, kRoot));
}

TEST_P(GraphPrecedesEitherWay, ANodeWithoutInputsIsDownstreamOfItselfOnly)
{
    const int source = graph.addNode(QString(), 0, 1, kRoot);
    const int other = addNode();
    graph.addEdge(source, 0, other, 0);
    EXPECT_TRUE(precedes(source, source));
    EXPECT_FALSE(precedes(other, source));
    EXPECT_FALSE(precedes(kRoot, source));
}

TEST_P(GraphPrecedesEitherWay, AChainIsOrdered)
{
    const int p = addNode();
    const int q = addNode();
    const int r = addNode();
    graph.addEdge(p, 0, q, 0);
    graph.addEdge(q, 0, r, 0);
    EXPECT_TRUE(precedes(p, q));
    EXPECT_TRUE(precedes(q, r));
    EXPECT_TRUE(precedes(p, r));
    EXPECT_FALSE(precedes(q, p));
    EXPECT_FALSE(precedes(r, q));
    EXPECT_FALSE(precedes(r, p));
}

TEST_P(GraphPrecedesEitherWay, EveryInputIsSearched)
{
    const int target = graph.addNode(QString(), 4, 0, kRoot);
    for (int input = 0; input < 4; ++input) {
        const int source = addNode();
        graph.addEdge(source, 1, target, input);
        EXPECT_TRUE(precedes(source, target)) << input;
    }
}

TEST_P(GraphPrecedesEitherWay, BranchesThatJoinAgainAreAllSearched)
{
    const int first = addNode();
    const int source = addNode();
    const int left = addNode();
    const int right = addNode();
    const int sink = addNode();
    graph.addEdge(first, 0, source, 1);
    graph.addEdge(source, 0, left, 0);
    graph.addEdge(source, 0, right, 1);
    graph.addEdge(left, 0, sink, 0);
    graph.addEdge(right, 0, sink, 1);
    for (const int node : {first, source, left, right})
        EXPECT_TRUE(precedes(node, sink)) << node;
    EXPECT_FALSE(precedes(left, right));
    EXPECT_FALSE(precedes(right, left));
}

TEST_P(GraphPrecedesEitherWay, NodesThatAreNotConnectedAreNotOrdered)
{
    const int p = addNode();
    const int q = addNode();
    EXPECT_FALSE(precedes(p, q));
    EXPECT_FALSE(precedes(q, p));
}

TEST_P(GraphPrecedesEitherWay, NeitherParentsNorChildrenAreOrderedByTheTreeAlone)
{
    const int group = addNode();
    const int child = graph.addNode(QString(), 2, 2, group);
    EXPECT_FALSE(precedes(group, child));
    EXPECT_FALSE(precedes(child, group));
    EXPECT_FALSE(precedes(kRoot, group));
    EXPECT_FALSE(precedes(group, kRoot));
}

TEST_P(GraphPrecedesEitherWay, ADownEdgeAloneDoesNotOrderParentAndChild)
{
    const int group = addNode();
    const int child = graph.addNode(QString(), 2, 2, group);
    graph.addDownEdge(0, child, 0);
    EXPECT_FALSE(precedes(group, child));
    EXPECT_FALSE(precedes(child, group));
}

TEST_P(GraphPrecedesEitherWay, TheInputsOfChildrenAreNotSearched)
{
    const int group = addNode();
    const int source = graph.addNode(QString(), 2, 2, group);
    const int child = graph.addNode(QString(), 2, 2, group);
    graph.addEdge(source, 0, child, 0);
    graph.addUpEdge(0, child, 0);
    EXPECT_FALSE(precedes(source, group));
    EXPECT_FALSE(precedes(child, group));
}

TEST_P(GraphPrecedesEitherWay, ARemovedEdgeIsNotFollowed)
{
    const int p = addNode();
    const int q = addNode();
    const int edge = graph.addEdge(p, 0, q, 0);
    graph.removeEdge(edge);
    EXPECT_FALSE(precedes(p, q));
}

TEST_P(GraphPrecedesEitherWay, ARemovedNodeOrdersNothingButItself)
{
    const int p = addNode();
    const int q = addNode();
    const int r = addNode();
    graph.addEdge(p, 0, q, 0);
    graph.addEdge(q, 0, r, 0);
    graph.removeNode(q);
    EXPECT_FALSE(precedes(p, r));
    EXPECT_FALSE(precedes(q, r));
    EXPECT_FALSE(precedes(p, q));
    EXPECT_TRUE(precedes(q, q));
}

TEST_P(GraphPrecedesEitherWay, ANodeOutsideTheTableIsNotEvenUpstreamOfItself)
{
    const int node = addNode();
    for (const int bad : {-1, graph.numNodesGlobal(), std::numeric_limits<int>::min(),
                          std::numeric_limits<int>::max()}) {
        EXPECT_FALSE(precedes(bad, bad)) << bad;
        EXPECT_FALSE(precedes(bad, node)) << bad;
        EXPECT_FALSE(precedes(node, bad)) << bad;
    }
}

TEST_P(GraphPrecedesEitherWay, AnsweringLeavesNoTraceInLaterAnswers)
{
    const int p = addNode();
    const int q = addNode();
    const int r = addNode();
    graph.addEdge(p, 0, q, 0);
    for (int i = 0; i < 3; ++i) {
        EXPECT_FALSE(precedes(r, q));
        EXPECT_TRUE(precedes(p, q));
        EXPECT_FALSE(precedes(q, p));
    }
    graph.addEdge(q, 0, r, 0);
    EXPECT_TRUE(precedes(p, r));
}

// Up and down edges are not tested for cycles: g feeds b, whose output comes back into g and down
// to x, which produces the output of g.
TEST_P(GraphPrecedesEitherWay, ACycleEndsTheSearch)
{
    const int g = addNode();
    const int b = addNode();
    const int x = graph.addNode(QString(), 2, 2, g);
    const int other = addNode();
    graph.addUpEdge(0, x, 0);
    graph.addEdge(g, 0, b, 0);
    ASSERT_NE(graph.addEdge(b, 0, g, 0), -1);
    ASSERT_NE(graph.addDownEdge(0, x, 0), -1);
    for (const int node : {g, b, x})
        EXPECT_FALSE(precedes(other, node)) << node;
}

TEST(GraphPrecedes, AnInputFedFromOutsideIsFollowedThroughTheHierarchyOnly)
{
    Graph graph;
    const int p = graph.addNode(QStringLiteral("p"), 0, 1, kRoot);
    const int q = graph.addNode(QStringLiteral("q"), 1, 0, kRoot);
    const int k = graph.addNode(QStringLiteral("k"), 1, 0, q);
    graph.addEdge(p, 0, q, 0);
    graph.addDownEdge(0, k, 0);
    EXPECT_TRUE(graph.precedes(p, k, true));
    EXPECT_FALSE(graph.precedes(p, k, false));
    EXPECT_FALSE(graph.precedes(q, k, true));
    EXPECT_FALSE(graph.precedes(q, k, false));
}

TEST(GraphPrecedes, TheNodeUpstreamIsTheProducingChildOrTheGroup)
{
    Graph graph;
    const int g = graph.addNode(QStringLiteral("g"), 0, 1, kRoot);
    const int k = graph.addNode(QStringLiteral("k"), 0, 1, g);
    const int s = graph.addNode(QStringLiteral("s"), 1, 0, kRoot);
    graph.addUpEdge(0, k, 0);
    graph.addEdge(g, 0, s, 0);
    EXPECT_TRUE(graph.precedes(k, s, true));
    EXPECT_FALSE(graph.precedes(g, s, true));
    EXPECT_FALSE(graph.precedes(k, s, false));
    EXPECT_TRUE(graph.precedes(g, s, false));
}

TEST(GraphPrecedes, FollowingTheHierarchyCrossesGroupsFromEndToEnd)
{
    const SampleGraph s;
    for (const int node : {s.a, s.x, s.y})
        EXPECT_TRUE(s.graph.precedes(node, s.b, true)) << node;
    EXPECT_FALSE(s.graph.precedes(s.g, s.b, true));
    EXPECT_TRUE(s.graph.precedes(s.a, s.x, true));
    EXPECT_TRUE(s.graph.precedes(s.a, s.y, true));
}

TEST(GraphPrecedes, AmongSiblingsTheGroupIsANodeLikeAnyOther)
{
    const SampleGraph s;
    EXPECT_TRUE(s.graph.precedes(s.a, s.b, false));
    EXPECT_TRUE(s.graph.precedes(s.g, s.b, false));
    EXPECT_TRUE(s.graph.precedes(s.x, s.y, false));
    EXPECT_FALSE(s.graph.precedes(s.x, s.b, false));
    EXPECT_FALSE(s.graph.precedes(s.y, s.b, false));
    EXPECT_FALSE(s.graph.precedes(s.a, s.x, false));
}

TEST(GraphPrecedes, AnInputOfTheRootLeadsNowhere)
{
    Graph graph;
    graph.addInput(kRoot, QStringLiteral("in"), -1);
    const int node = graph.addNode(QStringLiteral("node"), 1, 1, kRoot);
    graph.addDownEdge(0, node, 0);
    EXPECT_FALSE(graph.precedes(kRoot, node, true));
    EXPECT_FALSE(graph.precedes(kRoot, node, false));
}

TEST(GraphPrecedes, OutputsAreNotSearched)
{
    const SampleGraph s;
    EXPECT_FALSE(s.graph.precedes(s.y, s.g, true));
    EXPECT_FALSE(s.graph.precedes(s.b, s.g, true));
    EXPECT_TRUE(s.graph.precedes(s.a, s.g, true));
}

TEST(GraphPrecedes, ACycleIsSearchedAllAround)
{
    Graph graph;
    const int g = graph.addNode(QStringLiteral("g"), 1, 1, kRoot);
    const int b = graph.addNode(QStringLiteral("b"), 1, 1, kRoot);
    const int x = graph.addNode(QStringLiteral("x"), 1, 1, g);
    graph.addUpEdge(0, x, 0);
    graph.addEdge(g, 0, b, 0);
    graph.addEdge(b, 0, g, 0);
    graph.addDownEdge(0, x, 0);
    EXPECT_TRUE(graph.precedes(b, x, true));
    EXPECT_TRUE(graph.precedes(x, b, true));
    EXPECT_TRUE(graph.precedes(g, b, false));
    EXPECT_TRUE(graph.precedes(b, g, false));
}

// A search remembers of a group which output it traced last, in few bits.
TEST(GraphPrecedes, FindsTheProducerOfEachOfManyOutputsOfAGroup)
{
    constexpr int numOutputs = 300;
    Graph graph;
    const int group = graph.addNode(QString(), 0, numOutputs, Graph::kRootNodeRef);
    const int reader = graph.addNode(QString(), 2, 0, Graph::kRootNodeRef);
    std::vector<int> producers;
    for (int output = 0; output < numOutputs; ++output) {
        producers.push_back(graph.addNode(QString(), 0, 1, group));
        graph.addUpEdge(output, producers.back(), 0);
    }
    for (const int first : {0, 126, 127, 128, 255, 256, 299}) {
        for (int second = 0; second < numOutputs; ++second) {
            graph.disconnectInput(reader, 0);
            graph.disconnectInput(reader, 1);
            graph.addEdge(group, first, reader, 0);
            graph.addEdge(group, second, reader, 1);
            EXPECT_TRUE(graph.precedes(producers[static_cast<std::size_t>(first)], reader, true));
            EXPECT_TRUE(graph.precedes(producers[static_cast<std::size_t>(second)], reader, true))
                << "output " << second << " after output " << first;
        }
    }
}
