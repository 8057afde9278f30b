// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include <Kestrin/Orv/Graph.h>

#include "support/GraphLists.h"
#include "support/GraphSnapshot.h"
#include "support/Growth.h"
#include "support/SmallStack.h"

#include <gtest/gtest.h>

#include <climits>

using Kestrin::Orv::Graph;

namespace {

const int kRoot = Graph::kRootNodeRef;

//          +-------- g --------+
//     a -> | -> x ----> y ->   |
//          +-------------------+
class GraphRemoval : public testing::Test
{
protected:
    Graph graph;
    const int a = graph.addNode(QStringLiteral("a"), 1, 1, kRoot);
    const int g = graph.addNode(QStringLiteral("g"), 1, 1, kRoot);
    const int x = graph.addNode(QStringLiteral("x"), 1, 1, g);
    const int y = graph.addNode(QStringLiteral("y"), 1, 1, g);
    const int aToG = graph.addEdge(a, 0, g, 0);
    const int gToX = graph.addDownEdge(0, x, 0);
    const int xToY = graph.addEdge(x, 0, y, 0);
    const int yToG = graph.addUpEdge(0, y, 0);
};

int nodeWithValue(Graph& graph, const QString& name, int value, int parent)
{
    const int node = graph.addNode(name, 0, 0, parent);
    graph.setNodeValue(node, value);
    return node;
}

} // namespace

TEST_F(GraphRemoval, TakesOutTheNodeAndEverythingBelow)
{
    graph.removeNode(g);
    EXPECT_EQ(validNodes(graph), (Refs{kRoot, a}));
    EXPECT_EQ(children(graph, kRoot), Refs{a});
}

TEST_F(GraphRemoval, EmptiesTheChildrenListsOfAllThatItRemoves)
{
    const int z = graph.addNode(QStringLiteral("z"), 0, 0, x);
    graph.removeNode(g);
    EXPECT_EQ(children(graph, g), Refs{});
    EXPECT_EQ(children(graph, x), Refs{});
    EXPECT_EQ(graph.indexOfNode(z), -1);
    EXPECT_EQ(graph.indexOfNode(y), -1);
    EXPECT_EQ(graph.indexOfNode(g), -1);
}

TEST_F(GraphRemoval, KeepsEverySlotOfBothTables)
{
    graph.removeNode(g);
    EXPECT_EQ(graph.numNodesGlobal(), 5);
    EXPECT_EQ(graph.numEdgesGlobal(), 4);
}

TEST_F(GraphRemoval, RemovesTheEdgesAtTheNodeAndBelow)
{
    graph.removeNode(g);
    EXPECT_EQ(validEdges(graph), Refs{});
    EXPECT_EQ(outputDestinations(graph, a, 0), Refs{});
}

TEST_F(GraphRemoval, UnhooksThePortsOfTheRemovedNodes)
{
    graph.removeNode(g);
    EXPECT_EQ(graph.inputSource(g, 0), -1);
    EXPECT_EQ(inputDestinations(graph, g, 0), Refs{});
    EXPECT_EQ(graph.outputSource(g, 0), -1);
    EXPECT_EQ(graph.inputSource(x, 0), -1);
    EXPECT_EQ(outputDestinations(graph, x, 0), Refs{});
    EXPECT_EQ(graph.inputSource(y, 0), -1);
    EXPECT_EQ(outputDestinations(graph, y, 0), Refs{});
}

TEST_F(GraphRemoval, RemovesNoOtherEdge)
{
    const int b = graph.addNode(QStringLiteral("b"), 2, 1, kRoot);
    const int c = graph.addNode(QStringLiteral("c"), 2, 1, kRoot);
    graph.addOutput(kRoot, QStringLiteral("out"), -1);
    const int aToB = graph.addEdge(a, 0, b, 0);
    const int gToC = graph.addEdge(g, 0, c, 0);
    const int bToC = graph.addEdge(b, 0, c, 1);
    const int cToRoot = graph.addUpEdge(0, c, 0);
    graph.removeNode(g);
    EXPECT_FALSE(graph.isValidEdge(gToC));
    EXPECT_EQ(validEdges(graph), (Refs{aToB, bToC, cToRoot}));
    EXPECT_EQ(outputDestinations(graph, a, 0), Refs{aToB});
    EXPECT_EQ(graph.inputSource(c, 0), -1);
    EXPECT_EQ(graph.inputSource(c, 1), bToC);
    EXPECT_EQ(graph.outputSource(kRoot, 0), cToRoot);
}

TEST_F(GraphRemoval, OfAChildCutsItsEdgesToTheParent)
{
    graph.removeNode(y);
    EXPECT_EQ(validEdges(graph), (Refs{aToG, gToX}));
    EXPECT_EQ(graph.outputSource(g, 0), -1);
    EXPECT_EQ(outputDestinations(graph, x, 0), Refs{});
    EXPECT_EQ(inputDestinations(graph, g, 0), Refs{gToX});
}

TEST_F(GraphRemoval, CutsAllEdgesOfEveryPort)
{
    const int hub = graph.addNode(QStringLiteral("hub"), 2, 2, kRoot);
    const int in0 = graph.addNode(QStringLiteral("in0"), 0, 1, hub);
    const int sink = graph.addNode(QStringLiteral("sink"), 4, 0, kRoot);
    graph.addInput(in0, QStringLiteral("i"), -1);
    graph.addInput(in0, QStringLiteral("j"), -1);
    graph.addEdge(a, 0, hub, 1);
    graph.addDownEdge(1, in0, 0);
    graph.addDownEdge(1, in0, 1);
    graph.addUpEdge(1, in0, 0);
    for (int i = 0; i < 4; ++i)
        graph.addEdge(hub, i / 2, sink, i);
    graph.removeNode(hub);
    EXPECT_EQ(validEdges(graph), (Refs{aToG, gToX, xToY, yToG}));
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(graph.inputSource(sink, i), -1) << i;
    EXPECT_EQ(outputDestinations(graph, hub, 0), Refs{});
    EXPECT_EQ(outputDestinations(graph, hub, 1), Refs{});
    EXPECT_EQ(inputDestinations(graph, hub, 1), Refs{});
}

TEST_F(GraphRemoval, OfTheReadingNodeKeepsTheOrderOfTheOtherReaders)
{
    Refs readers;
    Refs edges;
    for (int i = 0; i < 4; ++i) {
        readers.push_back(graph.addNode(QStringLiteral("reader"), 1, 0, kRoot));
        edges.push_back(graph.addEdge(a, 0, readers.back(), 0));
    }
    graph.removeNode(readers[1]);
    EXPECT_EQ(outputDestinations(graph, a, 0), (Refs{aToG, edges[0], edges[2], edges[3]}));
}

TEST_F(GraphRemoval, KeepsWhatTheSlotSaysOfTheNode)
{
    graph.setNodeValue(x, 7);
    graph.setInputName(x, 0, QStringLiteral("in"));
    graph.setOutputName(x, 0, QStringLiteral("out"));
    graph.addInput(x, QStringLiteral("grouped"), 3);
    graph.addInputGroup(x, QStringLiteral("group"));
    graph.removeNode(x);
    EXPECT_FALSE(graph.isValidNode(x));
    EXPECT_EQ(graph.nodeName(x), QStringLiteral("x"));
    EXPECT_EQ(graph.nodeValue(x), 7);
    EXPECT_EQ(graph.parentNode(x), g);
    EXPECT_EQ(graph.numInputs(x), 2);
    EXPECT_EQ(graph.numOutputs(x), 1);
    EXPECT_EQ(graph.inputName(x, 0), QStringLiteral("in"));
    EXPECT_EQ(graph.outputName(x, 0), QStringLiteral("out"));
    EXPECT_EQ(graph.inputGroup(x, 1), 3);
    EXPECT_EQ(graph.inputGroupName(x, 0), QStringLiteral("group"));
}

TEST_F(GraphRemoval, KeepsTheParentsOfAWholeSubtree)
{
    graph.removeNode(g);
    EXPECT_EQ(graph.parentNode(g), kRoot);
    EXPECT_EQ(graph.parentNode(x), g);
    EXPECT_TRUE(graph.contains(kRoot, x));
}

TEST_F(GraphRemoval, KeepsTheEndsOfTheEdges)
{
    graph.removeNode(g);
    EXPECT_EQ(edgeEnds(graph, aToG), (Refs{a, 0, g, 0}));
    EXPECT_EQ(edgeEnds(graph, gToX), (Refs{g, 0, x, 0}));
    EXPECT_EQ(edgeEnds(graph, xToY), (Refs{x, 0, y, 0}));
    EXPECT_EQ(edgeEnds(graph, yToG), (Refs{y, 0, g, 0}));
}

TEST_F(GraphRemoval, ItsSlotsAreNeverReused)
{
    graph.removeNode(x);
    EXPECT_EQ(graph.addNode(QStringLiteral("new"), 0, 0, g), 5);
    EXPECT_EQ(graph.addEdge(a, 0, graph.addNode(QStringLiteral("new"), 1, 0, kRoot), 0), 4);
    EXPECT_FALSE(graph.isValidNode(x));
    EXPECT_FALSE(graph.isValidEdge(gToX));
}

TEST(GraphRemovalOfSiblings, LaterSiblingsMoveUpOnePosition)
{
    Graph graph;
    for (int i = 1; i <= 5; ++i)
        nodeWithValue(graph, QString::number(i), i, kRoot);
    graph.removeNode(2);
    EXPECT_EQ(graph.numNodes(kRoot), 4);
    EXPECT_EQ(children(graph, kRoot), (Refs{1, 3, 4, 5}));
    EXPECT_EQ(graph.indexOfNode(1), 0);
    EXPECT_EQ(graph.indexOfNode(3), 1);
    EXPECT_EQ(graph.indexOfNode(5), 3);
    EXPECT_EQ(graph.nodeName(3), QStringLiteral("3"));
    EXPECT_EQ(graph.findNode(QStringLiteral("2"), kRoot), -1);
    EXPECT_EQ(graph.findNodeFromValue(2, kRoot), -1);
}

TEST(GraphRemovalOfSiblings, TheFirstAndTheLastCanGo)
{
    Graph graph;
    for (int i = 1; i <= 4; ++i)
        nodeWithValue(graph, QString::number(i), i, kRoot);
    graph.removeNode(1);
    graph.removeNode(4);
    EXPECT_EQ(children(graph, kRoot), (Refs{2, 3}));
}

TEST(GraphRemovalOfSiblings, TheOnlyOneCanGo)
{
    Graph graph;
    const int node = graph.addNode(QString(), 0, 0, kRoot);
    graph.removeNode(node);
    EXPECT_EQ(graph.numNodes(kRoot), 0);
    EXPECT_EQ(graph.getNode(0, kRoot), -1);
}

TEST_F(GraphRemoval, OfTheRootLeavesNoValidNode)
{
    graph.removeNode(kRoot);
    EXPECT_EQ(validNodes(graph), Refs{});
    EXPECT_EQ(validEdges(graph), Refs{});
    EXPECT_EQ(graph.numNodesGlobal(), 5);
    EXPECT_EQ(graph.numNodes(kRoot), 0);
    EXPECT_EQ(graph.parentNode(kRoot), -1);
}

TEST_F(GraphRemoval, OfTheRootLetsNothingBeMadeAnyMore)
{
    graph.removeNode(kRoot);
    const std::string before = graphSnapshot(graph);
    EXPECT_EQ(graph.addNode(QString(), 0, 0, kRoot), -1);
    EXPECT_EQ(graph.addInput(kRoot, QString(), -1), -1);
    EXPECT_EQ(graph.addEdge(a, 0, g, 0), -1);
    EXPECT_EQ(graphSnapshot(graph), before);
}

TEST_F(GraphRemoval, RepeatedChangesNothing)
{
    graph.removeNode(g);
    const std::string before = graphSnapshot(graph);
    graph.removeNode(g);
    graph.removeChildNode(g);
    EXPECT_EQ(graphSnapshot(graph), before);
}

TEST_F(GraphRemoval, OfANodeThatIsListedNoMoreChangesNothing)
{
    const int z = graph.addNode(QStringLiteral("z"), 0, 0, kRoot);
    graph.removeNode(g);
    const std::string before = graphSnapshot(graph);
    graph.removeNode(x);
    graph.removeNode(g);
    EXPECT_EQ(graphSnapshot(graph), before);
    EXPECT_EQ(children(graph, kRoot), (Refs{a, z}));
}

TEST_F(GraphRemoval, OfWhatDoesNotExistChangesNothing)
{
    const std::string before = graphSnapshot(graph);
    for (const int node : {-1, INT_MIN, INT_MAX, graph.numNodesGlobal()}) {
        graph.removeNode(node);
        graph.removeChildNode(node);
        EXPECT_EQ(graphSnapshot(graph), before) << node;
    }
}

TEST_F(GraphRemoval, OfAChildOnlyLeavesItListed)
{
    graph.setNodeValue(g, 9);
    const int z = graph.addNode(QStringLiteral("z"), 0, 0, kRoot);
    graph.removeChildNode(g);
    EXPECT_FALSE(graph.isValidNode(g));
    EXPECT_EQ(graph.numNodes(kRoot), 3);
    EXPECT_EQ(children(graph, kRoot), (Refs{a, g, z}));
    EXPECT_EQ(graph.indexOfNode(g), 1);
    EXPECT_EQ(graph.findNode(QStringLiteral("g"), kRoot), g);
    EXPECT_EQ(graph.findNodeFromValue(9, kRoot), g);
    EXPECT_EQ(graph.parentNode(g), kRoot);
}

TEST_F(GraphRemoval, OfAChildOnlyTakesTheSubtreeAndTheEdgesToo)
{
    graph.removeChildNode(g);
    EXPECT_EQ(validNodes(graph), (Refs{kRoot, a}));
    EXPECT_EQ(validEdges(graph), Refs{});
    EXPECT_EQ(children(graph, g), Refs{});
    EXPECT_EQ(outputDestinations(graph, a, 0), Refs{});
}

TEST_F(GraphRemoval, OfAChildOnlyMayBeRepeated)
{
    graph.removeChildNode(g);
    const std::string before = graphSnapshot(graph);
    graph.removeChildNode(g);
    graph.removeChildNode(x);
    EXPECT_EQ(graphSnapshot(graph), before);
}

TEST_F(GraphRemoval, UnlistsWhatRemoveChildNodeLeftListed)
{
    const int z = graph.addNode(QStringLiteral("z"), 0, 0, kRoot);
    graph.removeChildNode(g);
    graph.removeNode(g);
    EXPECT_EQ(children(graph, kRoot), (Refs{a, z}));
    EXPECT_FALSE(graph.isValidNode(g));
}

TEST_F(GraphRemoval, OfAGroupTakesAChildThatIsRemovedButListed)
{
    graph.removeChildNode(x);
    graph.removeNode(g);
    EXPECT_EQ(validNodes(graph), (Refs{kRoot, a}));
    EXPECT_EQ(children(graph, g), Refs{});
    EXPECT_EQ(children(graph, kRoot), Refs{a});
}

TEST_F(GraphRemoval, OfTheRootAsAChildLeavesNoValidNode)
{
    graph.removeChildNode(kRoot);
    EXPECT_EQ(validNodes(graph), Refs{});
    EXPECT_EQ(graph.numNodes(kRoot), 0);
    EXPECT_EQ(graph.numNodesGlobal(), 5);
}

TEST_F(GraphRemoval, LeavesANodeThatTakesNothingNew)
{
    graph.removeNode(x);
    const std::string before = graphSnapshot(graph);
    EXPECT_EQ(graph.addNode(QStringLiteral("n"), 1, 1, x), -1);
    EXPECT_EQ(graph.addInput(x, QStringLiteral("n"), -1), -1);
    EXPECT_EQ(graph.addOutput(x, QStringLiteral("n"), -1), -1);
    EXPECT_EQ(graph.addInputGroup(x, QStringLiteral("n")), -1);
    EXPECT_EQ(graph.addOutputGroup(x, QStringLiteral("n")), -1);
    EXPECT_EQ(graph.addEdge(x, 0, y, 0), -1);
    EXPECT_EQ(graph.addDownEdge(0, x, 0), -1);
    graph.setNodeName(x, QStringLiteral("n"));
    graph.setNodeValue(x, 5);
    graph.removeInput(x, 0);
    EXPECT_EQ(graphSnapshot(graph), before);
}

TEST(GraphRemovalAtScale, DepthIsNoLimit)
{
    const int depth = 100000;
    Graph graph;
    int deepest = kRoot;
    for (int i = 0; i < depth; ++i)
        deepest = graph.addNode(QString(), 1, 1, deepest);
    for (int node = 2; node <= depth; ++node)
        graph.addDownEdge(0, node, 0);
    runOnSmallStack([&graph] { graph.removeNode(1); });
    EXPECT_EQ(validNodes(graph), Refs{kRoot});
    EXPECT_EQ(validEdges(graph), Refs{});
    EXPECT_EQ(graph.numNodes(kRoot), 0);
}

// The order shows where a port has moved: the removal of an edge that still names the old place
// then frees the port that took it, whose own edge is not found any more.
TEST(GraphRemovalOrder, ChildrenGoInTheirOrder)
{
    Graph graph;
    const int outside = graph.addNode(QString(), 0, 1, kRoot);
    const int group = graph.addNode(QString(), 0, 0, kRoot);
    const int first = graph.addNode(QString(), 0, 1, group);
    const int second = graph.addNode(QString(), 2, 0, group);
    const int stale = graph.addEdge(first, 0, second, 0);
    graph.removeInput(second, 0);
    const int kept = graph.addEdge(outside, 0, second, 0);
    graph.removeNode(group);
    EXPECT_FALSE(graph.isValidEdge(stale));
    EXPECT_EQ(validEdges(graph), Refs{kept});
}

TEST(GraphRemovalGrowth, TheLastSiblingsGoFirstWithoutAScanOfTheList)
{
    struct Siblings
    {
        explicit Siblings(int count)
        {
            for (int i = 0; i < count; ++i)
                graph.addNode(QString(), 0, 0, kRoot);
        }
        Graph graph;
    };
    expectLinear<Siblings>(30000, [](Siblings& s) {
        for (int node = s.graph.numNodesGlobal() - 1; node > kRoot; --node)
            s.graph.removeNode(node);
    });
}
