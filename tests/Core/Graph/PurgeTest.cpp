// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include <Kestrin/Orv/Graph.h>

#include "support/GraphLists.h"
#include "support/GraphSnapshot.h"
#include "support/MessageRecorder.h"

#include <gtest/gtest.h>

#include <vector>

using Kestrin::Orv::Graph;

namespace {

const int kRoot = Graph::kRootNodeRef;

Refs parents(const Graph& graph)
{
    Refs refs;
    for (int node = 0; node < graph.numNodesGlobal(); ++node)
        refs.push_back(graph.parentNode(node));
    return refs;
}

std::string names(const Graph& graph)
{
    std::string text;
    for (int node = 0; node < graph.numNodesGlobal(); ++node)
        text += graph.nodeName(node).toStdString() + " ";
    return text;
}

} // namespace

TEST(GraphPurge, OfANewGraphChangesNothing)
{
    Graph graph;
    const std::string before = graphSnapshot(graph);
    graph.purge();
    EXPECT_EQ(graphSnapshot(graph), before);
}

TEST(GraphPurge, WithoutRemovedSlotsKeepsAllNumbersButTheChildren)
{
    Graph graph;
    graph.addOutput(kRoot, QStringLiteral("out"), -1);
    const int g = graph.addNode(QStringLiteral("g"), 1, 1, kRoot);
    const int b = graph.addNode(QStringLiteral("b"), 1, 1, kRoot);
    const int c = graph.addNode(QStringLiteral("c"), 1, 1, kRoot);
    const int x = graph.addNode(QStringLiteral("x"), 1, 1, g);
    const int down = graph.addDownEdge(0, x, 0);
    const int up = graph.addUpEdge(0, x, 0);
    const int gToB = graph.addEdge(g, 0, b, 0);
    const int gToC = graph.addEdge(g, 0, c, 0);
    const int cToRoot = graph.addUpEdge(0, c, 0);
    graph.purge();
    EXPECT_EQ(graph.numNodesGlobal(), 5);
    EXPECT_EQ(names(graph), " g b c x ");
    EXPECT_EQ(parents(graph), (Refs{-1, 0, 0, 0, g}));
    EXPECT_EQ(children(graph, kRoot), (Refs{0, 1, 2}));
    EXPECT_EQ(children(graph, g), Refs{0});
    EXPECT_EQ(children(graph, b), Refs{});
    EXPECT_EQ(edgeEnds(graph, down), (Refs{g, 0, x, 0}));
    EXPECT_EQ(edgeEnds(graph, up), (Refs{x, 0, g, 0}));
    EXPECT_EQ(edgeEnds(graph, gToB), (Refs{g, 0, b, 0}));
    EXPECT_EQ(edgeEnds(graph, gToC), (Refs{g, 0, c, 0}));
    EXPECT_EQ(edgeEnds(graph, cToRoot), (Refs{c, 0, kRoot, 0}));
    EXPECT_EQ(inputDestinations(graph, g, 0), Refs{down});
    EXPECT_EQ(graph.inputSource(x, 0), down);
    EXPECT_EQ(outputDestinations(graph, x, 0), Refs{up});
    EXPECT_EQ(graph.outputSource(g, 0), up);
    EXPECT_EQ(outputDestinations(graph, g, 0), (Refs{gToB, gToC}));
    EXPECT_EQ(graph.outputSource(kRoot, 0), cToRoot);
}

TEST(GraphPurge, MovesLaterNodesDownInTheTableAndInTheEdges)
{
    Graph graph;
    for (const char* name : {"1", "2", "3"})
        graph.addNode(QString::fromLatin1(name), 2, 2, kRoot);
    graph.addNode(QStringLiteral("4"), 2, 2, 3);
    const int edge = graph.addDownEdge(1, 4, 0);
    graph.addEdge(1, 1, 3, 1);
    graph.removeNode(2);
    graph.purge();
    EXPECT_EQ(names(graph), " 1 3 4 ");
    EXPECT_EQ(edgeEnds(graph, edge), (Refs{2, 1, 3, 0}));
    EXPECT_EQ(edgeEnds(graph, 1), (Refs{1, 1, 2, 1}));
}

TEST(GraphPurge, LeavesParentsAsTheyAre)
{
    Graph graph;
    for (int i = 1; i <= 3; ++i)
        graph.addNode(QString(), 0, 0, kRoot);
    graph.addNode(QString(), 0, 0, 3);
    graph.removeNode(2);
    graph.purge();
    EXPECT_EQ(parents(graph), (Refs{-1, 0, 0, 3}));
}

TEST(GraphPurge, SetsChildrenByTheirPositions)
{
    Graph graph;
    for (int i = 1; i <= 5; ++i)
        graph.addNode(QString(), 0, 0, kRoot);
    for (int i = 0; i < 3; ++i)
        graph.addNode(QString(), 0, 0, 5);
    graph.removeNode(2);
    graph.purge();
    // Slots 0, 1, 2, 3 had become 0, 1, none, 2.
    EXPECT_EQ(children(graph, kRoot), (Refs{0, 1, -1, 2}));
    EXPECT_EQ(children(graph, 4), (Refs{0, 1, -1}));
}

TEST(GraphPurge, CountsChildrenThatAreRemovedButListed)
{
    Graph graph;
    for (int i = 1; i <= 3; ++i)
        graph.addNode(QString(), 0, 0, kRoot);
    graph.removeChildNode(1);
    graph.purge();
    EXPECT_EQ(graph.numNodesGlobal(), 3);
    EXPECT_EQ(children(graph, kRoot), (Refs{0, -1, 1}));
}

TEST(GraphPurge, MovesLaterEdgesDownInTheTableAndInThePorts)
{
    Graph graph;
    const int a = graph.addNode(QString(), 0, 1, kRoot);
    const int b = graph.addNode(QString(), 6, 0, kRoot);
    for (int i = 0; i < 6; ++i)
        ASSERT_EQ(graph.addEdge(a, 0, b, i), i);
    graph.removeEdge(1);
    graph.removeEdge(3);
    graph.purge();
    EXPECT_EQ(graph.numEdgesGlobal(), 4);
    EXPECT_EQ(validEdges(graph), (Refs{0, 1, 2, 3}));
    EXPECT_EQ(outputDestinations(graph, a, 0), (Refs{0, 1, 2, 3}));
    EXPECT_EQ(graph.inputSource(b, 0), 0);
    EXPECT_EQ(graph.inputSource(b, 1), -1);
    EXPECT_EQ(graph.inputSource(b, 2), 1);
    EXPECT_EQ(graph.inputSource(b, 3), -1);
    EXPECT_EQ(graph.inputSource(b, 4), 2);
    EXPECT_EQ(graph.inputSource(b, 5), 3);
    EXPECT_EQ(edgeEnds(graph, 3), (Refs{a, 0, b, 5}));
}

TEST(GraphPurge, RewritesEveryKindOfPortEntry)
{
    Graph graph;
    const int g = graph.addNode(QString(), 1, 1, kRoot);
    const int x = graph.addNode(QString(), 2, 1, g);
    const int y = graph.addNode(QString(), 1, 1, kRoot);
    const int dropped = graph.addDownEdge(0, x, 0);
    const int down = graph.addDownEdge(0, x, 1);
    const int up = graph.addUpEdge(0, x, 0);
    const int regular = graph.addEdge(g, 0, y, 0);
    graph.removeEdge(dropped);
    graph.purge();
    EXPECT_EQ(inputDestinations(graph, g, 0), Refs{down - 1});
    EXPECT_EQ(graph.inputSource(x, 1), down - 1);
    EXPECT_EQ(outputDestinations(graph, x, 0), Refs{up - 1});
    EXPECT_EQ(graph.outputSource(g, 0), up - 1);
    EXPECT_EQ(outputDestinations(graph, g, 0), Refs{regular - 1});
    EXPECT_EQ(graph.inputSource(y, 0), regular - 1);
    EXPECT_EQ(graph.inputSource(x, 0), -1);
    EXPECT_EQ(graph.outputSource(y, 0), -1);
}

TEST(GraphPurge, KeepsAllElseOfANode)
{
    Graph graph;
    const int dropped = graph.addNode(QString(), 0, 0, kRoot);
    const int node = graph.addNode(QStringLiteral("node"), 0, 0, kRoot);
    graph.setNodeValue(node, 42);
    graph.addInput(node, QStringLiteral("in"), 7);
    graph.addOutput(node, QStringLiteral("out"), 8);
    graph.addInputGroup(node, QStringLiteral("group 0"));
    graph.addOutputGroup(node, QStringLiteral("group 1"));
    graph.removeNode(dropped);
    graph.purge();
    const int moved = node - 1;
    EXPECT_TRUE(graph.isValidNode(moved));
    EXPECT_EQ(graph.nodeName(moved), QStringLiteral("node"));
    EXPECT_EQ(graph.nodeValue(moved), 42);
    EXPECT_EQ(graph.numInputs(moved), 1);
    EXPECT_EQ(graph.inputName(moved, 0), QStringLiteral("in"));
    EXPECT_EQ(graph.inputGroup(moved, 0), 7);
    EXPECT_EQ(graph.numOutputs(moved), 1);
    EXPECT_EQ(graph.outputName(moved, 0), QStringLiteral("out"));
    EXPECT_EQ(graph.outputGroup(moved, 0), 8);
    EXPECT_EQ(graph.numInputGroups(moved), 2);
    EXPECT_EQ(graph.inputGroupName(moved, 1), QStringLiteral("group 1"));
    EXPECT_EQ(graph.numOutputGroups(moved), 0);
}

TEST(GraphPurge, WithoutEdgesCompactsTheNodes)
{
    Graph graph;
    graph.addNode(QStringLiteral("a"), 1, 1, kRoot);
    graph.addNode(QStringLiteral("b"), 1, 1, kRoot);
    graph.removeNode(1);
    graph.purge();
    EXPECT_EQ(names(graph), " b ");
    EXPECT_EQ(graph.numEdgesGlobal(), 0);
}

TEST(GraphPurge, OfEdgesAloneLeavesTheNodeTable)
{
    Graph graph;
    const int a = graph.addNode(QString(), 1, 1, kRoot);
    const int b = graph.addNode(QString(), 1, 1, kRoot);
    graph.removeEdge(graph.addEdge(a, 0, b, 0));
    graph.purge();
    EXPECT_EQ(graph.numNodesGlobal(), 3);
    EXPECT_EQ(graph.numEdgesGlobal(), 0);
    EXPECT_EQ(graph.inputSource(b, 0), -1);
    EXPECT_EQ(outputDestinations(graph, a, 0), Refs{});
}

TEST(GraphPurge, RepeatedChangesOnlyTheChildren)
{
    Graph graph;
    for (int i = 1; i <= 4; ++i)
        graph.addNode(QString(), 1, 1, kRoot);
    graph.addEdge(1, 0, 3, 0);
    graph.addEdge(1, 0, 4, 0);
    graph.removeEdge(0);
    graph.removeNode(2);
    graph.purge();
    EXPECT_EQ(children(graph, kRoot), (Refs{0, 1, -1}));
    const Refs ends = edgeEnds(graph, 0);
    graph.purge();
    EXPECT_EQ(children(graph, kRoot), (Refs{0, 1, 2}));
    EXPECT_EQ(graph.numNodesGlobal(), 4);
    EXPECT_EQ(graph.numEdgesGlobal(), 1);
    EXPECT_EQ(edgeEnds(graph, 0), ends);
    EXPECT_EQ(graph.inputSource(3, 0), 0);
    EXPECT_EQ(parents(graph), (Refs{-1, 0, 0, 0}));
    const std::string before = graphSnapshot(graph);
    graph.purge();
    EXPECT_EQ(graphSnapshot(graph), before);
}

TEST(GraphPurge, NewSlotsFollowTheSurvivors)
{
    Graph graph;
    graph.addNode(QString(), 1, 1, kRoot);
    graph.addNode(QString(), 1, 1, kRoot);
    graph.addNode(QString(), 1, 1, kRoot);
    graph.removeEdge(graph.addEdge(2, 0, 3, 0));
    graph.removeNode(1);
    graph.purge();
    EXPECT_EQ(graph.addNode(QString(), 1, 1, kRoot), 3);
    EXPECT_EQ(graph.addEdge(1, 0, 2, 0), 0);
}

TEST(GraphPurge, SaysNothing)
{
    const MessageRecorder recorder;
    Graph graph;
    graph.removeNode(graph.addNode(QString(), 1, 1, kRoot));
    graph.purge();
    EXPECT_TRUE(recorder.messages().empty());
}

// Odd tables

TEST(GraphPurgeOfOddTables, AnEdgeToARemovedNodeNamesNoNode)
{
    Graph graph;
    const int a = graph.addNode(QString(), 0, 1, kRoot);
    const int b = graph.addNode(QString(), 1, 0, kRoot);
    const int edge = graph.addEdge(a, 0, b, 0);
    graph.removeInput(b, 0); // takes the port away and leaves the edge
    graph.removeNode(b);
    ASSERT_TRUE(graph.isValidEdge(edge));
    graph.purge();
    EXPECT_EQ(edgeEnds(graph, edge), (Refs{a, 0, -1, 0}));
    EXPECT_EQ(outputDestinations(graph, a, 0), Refs{edge});
    graph.purge();
    EXPECT_EQ(edgeEnds(graph, edge), (Refs{a, 0, -1, 0}));
    EXPECT_TRUE(graph.isValidEdge(edge));
}

TEST(GraphPurgeOfOddTables, AnEdgeFromARemovedNodeNamesNoNode)
{
    Graph graph;
    const int a = graph.addNode(QString(), 0, 1, kRoot);
    const int b = graph.addNode(QString(), 1, 0, kRoot);
    const int edge = graph.addEdge(a, 0, b, 0);
    graph.removeOutput(a, 0);
    graph.removeNode(a);
    graph.purge();
    EXPECT_EQ(edgeEnds(graph, edge), (Refs{-1, 0, 1, 0}));
    EXPECT_EQ(graph.inputSource(1, 0), edge);
    graph.purge();
    EXPECT_EQ(edgeEnds(graph, edge), (Refs{-1, 0, 1, 0}));
}

TEST(GraphPurgeOfOddTables, ASourceThatIsRemovedBecomesNone)
{
    Graph graph;
    const int a = graph.addNode(QString(), 0, 2, kRoot);
    const int b = graph.addNode(QString(), 2, 0, kRoot);
    graph.addEdge(a, 0, b, 0);
    const int second = graph.addEdge(a, 1, b, 1);
    graph.removeInput(b, 0);
    graph.removeEdge(second); // its input has moved away from index 1
    ASSERT_EQ(graph.inputSource(b, 0), second);
    graph.purge();
    EXPECT_EQ(graph.inputSource(b, 0), -1);
}

TEST(GraphPurgeOfOddTables, ADestinationThatIsRemovedStaysAsNone)
{
    Graph graph;
    const int a = graph.addNode(QString(), 0, 2, kRoot);
    const int b = graph.addNode(QString(), 3, 0, kRoot);
    graph.addEdge(a, 0, b, 0);
    const int second = graph.addEdge(a, 1, b, 1);
    graph.addEdge(a, 1, b, 2);
    graph.removeOutput(a, 0);
    graph.removeEdge(second); // its output has moved away from index 1
    ASSERT_EQ(outputDestinations(graph, a, 0), (Refs{1, 2}));
    graph.purge();
    EXPECT_EQ(outputDestinations(graph, a, 0), (Refs{-1, 1}));
    EXPECT_EQ(graph.numOutputDestinations(a, 0), 2);
    EXPECT_TRUE(graph.isValidOutputDestination(a, 0, 0));
    graph.purge();
    EXPECT_EQ(outputDestinations(graph, a, 0), (Refs{-1, 1}));
}

TEST(GraphPurgeOfOddTables, MoreChildrenThanNodesBecomeNone)
{
    Graph graph;
    for (int i = 1; i <= 3; ++i)
        graph.addNode(QString(), 0, 0, kRoot);
    for (int i = 1; i <= 3; ++i)
        graph.removeChildNode(i);
    graph.purge();
    EXPECT_EQ(graph.numNodesGlobal(), 1);
    EXPECT_EQ(children(graph, kRoot), (Refs{0, -1, -1}));
    graph.purge();
    EXPECT_EQ(children(graph, kRoot), (Refs{0, -1, -1}));
}

TEST(GraphPurgeOfOddTables, WithoutARootLeavesTwoEmptyTables)
{
    Graph graph;
    graph.addNode(QString(), 1, 1, kRoot);
    graph.addNode(QString(), 1, 1, kRoot);
    graph.addEdge(1, 0, 2, 0);
    graph.removeNode(kRoot);
    graph.purge();
    EXPECT_EQ(graph.numNodesGlobal(), 0);
    EXPECT_EQ(graph.numEdgesGlobal(), 0);
    graph.purge();
    EXPECT_EQ(graph.numNodesGlobal(), 0);
    EXPECT_EQ(graph.addNode(QString(), 0, 0, kRoot), -1);
    EXPECT_EQ(graph.numNodesGlobal(), 0);
}
