// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "support/SampleGraph.h"

#include <Kestrin/Orv/Graph.h>

#include <gtest/gtest.h>

#include <string>

using Kestrin::Orv::Graph;

namespace {

const int kRoot = Graph::kRootNodeRef;

// The outcome of one walk, "moved to NODE.PORT" or "stayed at NODE.PORT" by its answer.
using Walk = bool (Graph::*)(int&, int&) const;

std::string walked(const Graph& graph, Walk walk, int node, int port)
{
    const bool moved = (graph.*walk)(node, port);
    return (moved ? "moved to " : "stayed at ") + std::to_string(node) + '.' + std::to_string(port);
}

std::string moved(int node, int port)
{
    return "moved to " + std::to_string(node) + '.' + std::to_string(port);
}
std::string stayed(int node, int port)
{
    return "stayed at " + std::to_string(node) + '.' + std::to_string(port);
}

// Groups o, m and i, each in the one before, with a leaf in the innermost; every node has two
// inputs and two outputs, and what arrives at input 1 of o runs down to the leaf on alternating
// ports, as the leaf's result runs up to output 1 of o.
struct NestedGroups
{
    Graph graph;
    int before = graph.addNode(QStringLiteral("before"), 2, 2, kRoot);
    int o = graph.addNode(QStringLiteral("o"), 2, 2, kRoot);
    int after = graph.addNode(QStringLiteral("after"), 2, 2, kRoot);
    int m = graph.addNode(QStringLiteral("m"), 2, 2, o);
    int i = graph.addNode(QStringLiteral("i"), 2, 2, m);
    int leaf = graph.addNode(QStringLiteral("leaf"), 2, 2, i);
    int oToM = graph.addDownEdge(1, m, 0);
    int mToI = graph.addDownEdge(0, i, 1);
    int iToLeaf = graph.addDownEdge(1, leaf, 0);
    int leafToI = graph.addUpEdge(1, leaf, 0);
    int iToM = graph.addUpEdge(0, i, 1);
    int mToO = graph.addUpEdge(1, m, 0);
};

} // namespace

TEST(GraphNavigation, WalkUpClimbsOneGroup)
{
    const SampleGraph s;
    EXPECT_EQ(walked(s.graph, &Graph::walkUp, s.x, 0), moved(s.g, 0));
}

TEST(GraphNavigation, WalkUpClimbsEveryGroupInOneCall)
{
    const NestedGroups s;
    EXPECT_EQ(walked(s.graph, &Graph::walkUp, s.leaf, 0), moved(s.o, 1));
    EXPECT_EQ(walked(s.graph, &Graph::walkUp, s.i, 1), moved(s.o, 1));
    EXPECT_EQ(walked(s.graph, &Graph::walkUp, s.m, 0), moved(s.o, 1));
    EXPECT_EQ(walked(s.graph, &Graph::walkUp, s.o, 1), stayed(s.o, 1));
}

TEST(GraphNavigation, WalkUpDoesNotFollowARegularEdge)
{
    const SampleGraph s;
    EXPECT_EQ(walked(s.graph, &Graph::walkUp, s.y, 0), stayed(s.y, 0));
    EXPECT_EQ(walked(s.graph, &Graph::walkUp, s.g, 0), stayed(s.g, 0));
}

TEST(GraphNavigation, WalkUpStopsWhereARegularEdgeComesIn)
{
    NestedGroups s;
    s.graph.addEdge(s.before, 0, s.o, 1);
    EXPECT_EQ(walked(s.graph, &Graph::walkUp, s.leaf, 0), moved(s.o, 1));
}

TEST(GraphNavigation, WalkUpReachesTheRoot)
{
    NestedGroups s;
    s.graph.addInput(kRoot, QStringLiteral("first"), -1);
    s.graph.addInput(kRoot, QStringLiteral("second"), -1);
    s.graph.addDownEdge(1, s.o, 1);
    EXPECT_EQ(walked(s.graph, &Graph::walkUp, s.leaf, 0), moved(kRoot, 1));
}

TEST(GraphNavigation, WalkUpStaysAtAnUnfedInput)
{
    const SampleGraph s;
    EXPECT_EQ(walked(s.graph, &Graph::walkUp, s.a, 0), stayed(s.a, 0));
}

TEST(GraphNavigation, WalkAcrossFollowsOneRegularEdge)
{
    Graph graph;
    const int a = graph.addNode(QStringLiteral("a"), 1, 3, kRoot);
    const int b = graph.addNode(QStringLiteral("b"), 2, 1, kRoot);
    graph.addEdge(a, 2, b, 1);
    EXPECT_EQ(walked(graph, &Graph::walkAcross, b, 1), moved(a, 2));
    EXPECT_EQ(walked(graph, &Graph::walkAcross, b, 0), stayed(b, 0));
}

TEST(GraphNavigation, WalkAcrossStopsAtTheGroupThatItReaches)
{
    const SampleGraph s;
    EXPECT_EQ(walked(s.graph, &Graph::walkAcross, s.b, 0), moved(s.g, 0));
}

TEST(GraphNavigation, WalkAcrossDoesNotFollowADownEdge)
{
    const SampleGraph s;
    EXPECT_EQ(walked(s.graph, &Graph::walkAcross, s.x, 0), stayed(s.x, 0));
}

TEST(GraphNavigation, WalkDownDescendsIntoOneGroup)
{
    const SampleGraph s;
    EXPECT_EQ(walked(s.graph, &Graph::walkDown, s.g, 0), moved(s.y, 0));
}

TEST(GraphNavigation, WalkDownDescendsIntoEveryGroupInOneCall)
{
    const NestedGroups s;
    EXPECT_EQ(walked(s.graph, &Graph::walkDown, s.o, 1), moved(s.leaf, 0));
    EXPECT_EQ(walked(s.graph, &Graph::walkDown, s.m, 0), moved(s.leaf, 0));
    EXPECT_EQ(walked(s.graph, &Graph::walkDown, s.i, 1), moved(s.leaf, 0));
}

TEST(GraphNavigation, WalkDownStaysAtAnOutputThatNoUpEdgeFeeds)
{
    const SampleGraph s;
    EXPECT_EQ(walked(s.graph, &Graph::walkDown, s.a, 0), stayed(s.a, 0));
    EXPECT_EQ(walked(s.graph, &Graph::walkDown, s.y, 0), stayed(s.y, 0));
}

TEST(GraphNavigation, WalkDownStartsAtTheRootToo)
{
    NestedGroups s;
    s.graph.addOutput(kRoot, QStringLiteral("result"), -1);
    s.graph.addUpEdge(0, s.o, 1);
    EXPECT_EQ(walked(s.graph, &Graph::walkDown, kRoot, 0), moved(s.leaf, 0));
}

TEST(GraphNavigation, TheSourceOfAnInputFedByASiblingIsThatSibling)
{
    Graph graph;
    const int a = graph.addNode(QStringLiteral("a"), 1, 3, kRoot);
    const int b = graph.addNode(QStringLiteral("b"), 2, 1, kRoot);
    graph.addEdge(a, 2, b, 1);
    EXPECT_EQ(walked(graph, &Graph::walkToSourceNode, b, 1), moved(a, 2));
}

TEST(GraphNavigation, TheSourceBehindAGroupIsTheChildThatProduces)
{
    const SampleGraph s;
    EXPECT_EQ(walked(s.graph, &Graph::walkToSourceNode, s.b, 0), moved(s.y, 0));
}

TEST(GraphNavigation, TheSourceOfAChildsInputIsTheSiblingOfItsGroup)
{
    const SampleGraph s;
    EXPECT_EQ(walked(s.graph, &Graph::walkToSourceNode, s.x, 0), moved(s.a, 0));
}

TEST(GraphNavigation, TheSourceWithinAGroupIsTheSibling)
{
    const SampleGraph s;
    EXPECT_EQ(walked(s.graph, &Graph::walkToSourceNode, s.y, 0), moved(s.x, 0));
}

TEST(GraphNavigation, TheSourceIsFoundOutOfAndIntoNestedGroups)
{
    NestedGroups s;
    const int p = s.graph.addNode(QStringLiteral("p"), 2, 2, kRoot);
    const int q = s.graph.addNode(QStringLiteral("q"), 2, 2, p);
    s.graph.addDownEdge(0, q, 1);
    s.graph.addEdge(s.o, 1, p, 0);
    EXPECT_EQ(walked(s.graph, &Graph::walkToSourceNode, q, 1), moved(s.leaf, 0));
}

TEST(GraphNavigation, AnUnconnectedInputHasNoSource)
{
    const SampleGraph s;
    EXPECT_EQ(walked(s.graph, &Graph::walkToSourceNode, s.a, 0), stayed(s.a, 0));
}

TEST(GraphNavigation, WithoutASourceThePositionIsTheOutermostInput)
{
    const NestedGroups s;
    EXPECT_EQ(walked(s.graph, &Graph::walkToSourceNode, s.leaf, 0), stayed(s.o, 1));
}

TEST(GraphNavigation, WhatComesFromTheRootHasNoSourceAndEndsThere)
{
    SampleGraph s;
    s.graph.addInput(kRoot, QStringLiteral("other"), -1);
    s.graph.addInput(kRoot, QStringLiteral("parameter"), -1);
    s.graph.disconnectInput(s.g, 0);
    s.graph.addDownEdge(0, s.x, 0);
    s.graph.addDownEdge(1, s.g, 0);
    EXPECT_EQ(walked(s.graph, &Graph::walkToSourceNode, s.x, 0), stayed(kRoot, 1));
}

// A group whose input runs straight to its output has no up edge there, so the walk ends in it.
TEST(GraphNavigation, TheSourceMayBeAGroupWhoseOutputIsNotFed)
{
    SampleGraph s;
    s.graph.removeEdge(s.yToG);
    EXPECT_EQ(walked(s.graph, &Graph::walkToSourceNode, s.b, 0), moved(s.g, 0));
}

TEST(GraphNavigation, ARemovedEdgeEndsEveryWalk)
{
    NestedGroups s;
    const int regular = s.graph.addEdge(s.before, 0, s.o, 1);
    s.graph.removeEdge(s.mToI);
    EXPECT_EQ(walked(s.graph, &Graph::walkUp, s.leaf, 0), moved(s.i, 1));
    s.graph.removeEdge(s.iToM);
    EXPECT_EQ(walked(s.graph, &Graph::walkDown, s.o, 1), moved(s.m, 0));
    s.graph.removeEdge(regular);
    EXPECT_EQ(walked(s.graph, &Graph::walkAcross, s.o, 1), stayed(s.o, 1));
}

// The input in the place of a removed one still names the edge as its source, as the edge named the
// port by its old index when it was removed.
TEST(GraphNavigation, ARemovedEdgeThatAPortStillNamesIsNotFollowed)
{
    Graph graph;
    const int src = graph.addNode(QStringLiteral("src"), 0, 1, kRoot);
    const int dst = graph.addNode(QStringLiteral("dst"), 2, 0, kRoot);
    const int edge = graph.addEdge(src, 0, dst, 1);
    graph.removeInput(dst, 0);
    graph.removeEdge(edge);
    ASSERT_EQ(graph.inputSource(dst, 0), edge);
    EXPECT_EQ(walked(graph, &Graph::walkAcross, dst, 0), stayed(dst, 0));
    EXPECT_EQ(walked(graph, &Graph::walkToSourceNode, dst, 0), stayed(dst, 0));
}

TEST(GraphNavigation, NoWalkStartsFromAPortThatDoesNotExist)
{
    const SampleGraph s;
    for (const Walk walk :
         {&Graph::walkUp, &Graph::walkAcross, &Graph::walkDown, &Graph::walkToSourceNode}) {
        EXPECT_EQ(walked(s.graph, walk, s.b, 1), stayed(s.b, 1));
        EXPECT_EQ(walked(s.graph, walk, s.b, -1), stayed(s.b, -1));
        EXPECT_EQ(walked(s.graph, walk, -1, 0), stayed(-1, 0));
        EXPECT_EQ(walked(s.graph, walk, 6, 0), stayed(6, 0));
    }
}
