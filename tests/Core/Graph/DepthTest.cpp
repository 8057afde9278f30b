// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

// Depth and size are no limits. The tests run on the default stack of 8 MiB, which a recursion of
// one call per level would not fit into.

#include <Kestrin/Orv/Graph.h>

#include "support/Growth.h"

#include <gtest/gtest.h>

using Kestrin::Orv::Graph;

namespace {

const int kRoot = Graph::kRootNodeRef;
const int kDepth = 100000;
const int kChainLength = 1000000;

// Groups one within the other, every one with an input that runs down into the next and an output
// that runs up out of it.
class NestedGroups
{
public:
    explicit NestedGroups(int depth)
    {
        int parent = kRoot;
        for (int i = 0; i < depth; ++i) {
            const int node = graph.addNode(QString(), 1, 1, parent);
            if (parent != kRoot) {
                graph.addDownEdge(0, node, 0);
                graph.addUpEdge(0, node, 0);
            }
            parent = node;
        }
        innermost = parent;
    }

    Graph graph;
    const int outermost = 1;
    int innermost;
};

// A chain of siblings wired sink first, so that the search for cycles finds nothing upstream.
class Chain
{
public:
    explicit Chain(int length)
        : first(1)
        , last(length)
    {
        for (int i = 0; i < length; ++i)
            graph.addNode(QString(), 1, 1, kRoot);
        for (int node = last; node > first; --node)
            graph.addEdge(node - 1, 0, node, 0);
    }

    Graph graph;
    int first;
    int last;
};

// One output that feeds inputs of as many siblings.
struct FanOut
{
    explicit FanOut(int size)
    {
        for (int i = 0; i < size; ++i)
            graph.addEdge(source, 0, graph.addNode(QString(), 1, 0, kRoot), 0);
    }

    Graph graph;
    int source = graph.addNode(QString(), 0, 1, kRoot);
};

// One input that feeds inputs of as many children.
struct DownFanOut
{
    explicit DownFanOut(int size)
    {
        for (int i = 0; i < size; ++i)
            graph.addDownEdge(0, graph.addNode(QString(), 1, 0, group), 0);
    }

    Graph graph;
    int group = graph.addNode(QString(), 1, 0, kRoot);
};

} // namespace

TEST(GraphDepth, ContainsReachesThroughEveryLevel)
{
    const NestedGroups s(kDepth);
    EXPECT_TRUE(s.graph.contains(kRoot, s.innermost));
    EXPECT_TRUE(s.graph.contains(s.outermost, s.innermost));
    EXPECT_FALSE(s.graph.contains(s.innermost, s.outermost));
}

TEST(GraphDepth, WalkUpClimbsEveryLevel)
{
    const NestedGroups s(kDepth);
    int node = s.innermost;
    int port = 0;
    EXPECT_TRUE(s.graph.walkUp(node, port));
    EXPECT_EQ(node, s.outermost);
    EXPECT_EQ(port, 0);
}

TEST(GraphDepth, WalkDownDescendsEveryLevel)
{
    const NestedGroups s(kDepth);
    int node = s.outermost;
    int port = 0;
    EXPECT_TRUE(s.graph.walkDown(node, port));
    EXPECT_EQ(node, s.innermost);
    EXPECT_EQ(port, 0);
}

TEST(GraphDepth, RemovingTheOutermostGroupRemovesEveryLevel)
{
    NestedGroups s(10 * kDepth);
    s.graph.removeNode(s.outermost);
    EXPECT_FALSE(s.graph.isValidNode(s.outermost));
    EXPECT_FALSE(s.graph.isValidNode(s.innermost));
    EXPECT_EQ(s.graph.numNodes(kRoot), 0);
    int left = 0;
    for (int node = 1; node < s.graph.numNodesGlobal(); ++node)
        left += s.graph.isValidNode(node) || s.graph.numNodes(node) != 0;
    for (int edge = 0; edge < s.graph.numEdgesGlobal(); ++edge)
        left += s.graph.isValidEdge(edge);
    EXPECT_EQ(left, 0);
}

TEST(GraphDepth, TheRootIsRemovedFromAboveEveryLevel)
{
    NestedGroups s(kDepth);
    s.graph.removeChildNode(kRoot);
    EXPECT_FALSE(s.graph.isValidNode(kRoot));
    EXPECT_FALSE(s.graph.isValidNode(s.innermost));
}

TEST(GraphDepth, PrecedesSearchesALongChain)
{
    const Chain s(kChainLength);
    ASSERT_EQ(s.graph.numEdgesGlobal(), kChainLength - 1);
    for (const bool followHierarchy : {false, true}) {
        EXPECT_TRUE(s.graph.precedes(s.first, s.last, followHierarchy));
        EXPECT_FALSE(s.graph.precedes(s.last, s.first, followHierarchy));
        EXPECT_FALSE(s.graph.precedes(kRoot, s.last, followHierarchy));
    }
}

TEST(GraphDepth, AnEdgeThatWouldCloseALongCycleIsRefused)
{
    Chain s(kChainLength);
    EXPECT_EQ(s.graph.addEdge(s.last, 0, s.first, 0), -1);
}

TEST(GraphDepth, PrecedesSearchesThroughNestedGroups)
{
    NestedGroups s(kDepth);
    const int before = s.graph.addNode(QString(), 0, 1, kRoot);
    const int after = s.graph.addNode(QString(), 1, 0, kRoot);
    s.graph.addEdge(before, 0, s.outermost, 0);
    s.graph.addEdge(s.outermost, 0, after, 0);
    EXPECT_TRUE(s.graph.precedes(before, s.innermost, true));
    EXPECT_TRUE(s.graph.precedes(s.innermost, after, true));
    EXPECT_TRUE(s.graph.precedes(before, after, true));
    EXPECT_FALSE(s.graph.precedes(after, before, true));
}

TEST(GraphDepth, AFanOutIsRemovedWithItsNode)
{
    FanOut s(kChainLength);
    ASSERT_EQ(s.graph.numOutputDestinations(s.source, 0), kChainLength);
    s.graph.removeNode(s.source);
    EXPECT_EQ(s.graph.numOutputDestinations(s.source, 0), 0);
    int left = 0;
    for (int edge = 0; edge < s.graph.numEdgesGlobal(); ++edge)
        left += s.graph.isValidEdge(edge);
    EXPECT_EQ(left, 0);
    EXPECT_EQ(s.graph.inputSource(s.source + 1, 0), -1);
    EXPECT_EQ(s.graph.inputSource(s.source + kChainLength, 0), -1);
}

// A quadratic removal of a million would take minutes, so growth is measured on less, where even
// that ends soon.
TEST(GraphGrowth, RemovingANodeIsLinearInTheEdgesThatLeaveAnOutput)
{
    expectLinear<FanOut>(30000, [](FanOut& s) { s.graph.removeNode(s.source); });
}

TEST(GraphGrowth, RemovingANodeIsLinearInTheEdgesThatLeaveAnInput)
{
    expectLinear<DownFanOut>(30000, [](DownFanOut& s) { s.graph.removeNode(s.group); });
}

TEST(GraphGrowth, DisconnectingAnInputIsLinearInItsEdges)
{
    expectLinear<DownFanOut>(30000, [](DownFanOut& s) { s.graph.disconnectInput(s.group, 0); });
}

TEST(GraphGrowth, WiringAChainSinkFirstIsLinear)
{
    struct Unwired
    {
        explicit Unwired(int size)
        {
            for (int i = 0; i < size; ++i)
                graph.addNode(QString(), 1, 1, kRoot);
        }
        Graph graph;
    };
    expectLinear<Unwired>(100000, [](Unwired& s) {
        for (int node = s.graph.numNodesGlobal() - 1; node > 1; --node)
            s.graph.addEdge(node - 1, 0, node, 0);
    });
}
