// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "support/GraphInvariants.h"

#include "support/GraphSnapshot.h"
#include "support/SampleGraph.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

using Kestrin::Orv::Graph;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

namespace {

const int kRoot = Graph::kRootNodeRef;

} // namespace

// The checker itself: what it accepts.

TEST(GraphInvariants, HoldInANewGraph)
{
    const Graph graph;
    EXPECT_THAT(graphViolations(graph), IsEmpty());
}

TEST(GraphInvariants, HoldWithEveryKindOfEdge)
{
    const SampleGraph sample;
    EXPECT_THAT(graphViolations(sample.graph), IsEmpty());
}

TEST(GraphInvariants, HoldWhenNodesAndEdgesAreRemoved)
{
    SampleGraph sample;
    GraphInvariants invariants(sample.graph);
    sample.graph.removeEdge(sample.gToX);
    EXPECT_THAT(invariants.check(), IsEmpty());
    sample.graph.removeChildNode(sample.y);
    EXPECT_THAT(invariants.check(), IsEmpty());
    sample.graph.removeNode(sample.g);
    EXPECT_THAT(invariants.check(), IsEmpty());
}

// The checker itself: what it finds. Only the operations with known side effects can bring it
// about.

TEST(GraphInvariants, AreBrokenByRemovingAConnectedInput)
{
    SampleGraph sample;
    sample.graph.removeInput(sample.b, 0);
    EXPECT_THAT(graphViolations(sample.graph),
                ElementsAre("1: edge 4 is not the source of input 0 of node 3"));
}

TEST(GraphInvariants, AreBrokenByRemovingAConnectedOutput)
{
    SampleGraph sample;
    sample.graph.removeOutput(sample.a, 0);
    EXPECT_THAT(graphViolations(sample.graph),
                ElementsAre("1: edge 0 stands 0 times in the destinations of output 0 of node 1"));
}

TEST(GraphInvariants, AreBrokenByAnInputThatMovesWithItsEdge)
{
    Graph graph;
    const int src = graph.addNode(QStringLiteral("src"), 0, 1, kRoot);
    const int dst = graph.addNode(QStringLiteral("dst"), 2, 0, kRoot);
    graph.addEdge(src, 0, dst, 1);
    graph.removeInput(dst, 0);
    EXPECT_THAT(graphViolations(graph),
                Contains("1: input 0 of node 2 names the source 0, which does not enter it"));
}

TEST(GraphInvariants, AreBrokenByAnOutputThatMovesWithItsEdge)
{
    Graph graph;
    const int src = graph.addNode(QStringLiteral("src"), 0, 2, kRoot);
    const int dst = graph.addNode(QStringLiteral("dst"), 1, 0, kRoot);
    graph.addEdge(src, 1, dst, 0);
    graph.removeOutput(src, 0);
    EXPECT_THAT(graphViolations(graph),
                Contains("1: output 0 of node 1 names the destination 0, which does not leave it"));
}

TEST(GraphInvariants, AreBrokenByASecondEdgeIntoOnePort)
{
    Graph graph;
    const int src = graph.addNode(QStringLiteral("src"), 0, 1, kRoot);
    const int dst = graph.addNode(QStringLiteral("dst"), 2, 0, kRoot);
    const int first = graph.addEdge(src, 0, dst, 1);
    graph.removeInput(dst, 0);
    graph.addInput(dst, QString(), -1);
    const int second = graph.addEdge(src, 0, dst, 1);
    ASSERT_EQ(graph.edgeDestIndex(first), graph.edgeDestIndex(second));
    EXPECT_THAT(graphViolations(graph), Contains("2: edges 0 and 1 enter input 1 of node 2"));
}

TEST(GraphInvariants, AreBrokenByAnEdgeBetweenUnrelatedNodes)
{
    Graph graph;
    const int group = graph.addNode(QStringLiteral("group"), 0, 0, kRoot);
    const int src = graph.addNode(QStringLiteral("src"), 0, 1, group);
    const int dst = graph.addNode(QStringLiteral("dst"), 1, 0, kRoot);
    graph.addEdge(src, 0, dst, 0);
    EXPECT_THAT(graphViolations(graph),
                Contains("1: edge 0 is not the source of output 0 of node 3"));
}

TEST(GraphInvariants, AreBrokenInTheTreeByCompaction)
{
    SampleGraph sample;
    sample.graph.purge();
    EXPECT_THAT(graphViolations(sample.graph),
                Contains("3: node 0 stands among the children of 0, which is not its parent"));
    EXPECT_THAT(graphViolations(sample.graph),
                Contains("3: node 3 stands 0 times among the children of 0"));
}

TEST(GraphInvariants, AreBrokenByAnEdgeOfARemovedNode)
{
    SampleGraph sample;
    sample.graph.removeInput(sample.b, 0);
    sample.graph.removeNode(sample.b);
    EXPECT_THAT(graphViolations(sample.graph), Contains("4: the removed node 3 has the edge 4"));
}

// Compaction leaves the parents as the numbers that they were, here of a slot that goes afterwards.
TEST(GraphInvariants, AreBrokenByANodeUnderARemovedOne)
{
    Graph graph;
    const int gone = graph.addNode(QStringLiteral("gone"), 0, 0, kRoot);
    const int parent = graph.addNode(QStringLiteral("parent"), 0, 0, kRoot);
    graph.addNode(QStringLiteral("child"), 0, 0, parent);
    const int bystander = graph.addNode(QStringLiteral("bystander"), 0, 0, kRoot);
    graph.addNode(QStringLiteral("nephew"), 0, 0, bystander);
    graph.removeNode(gone);
    graph.purge();
    const int newChild = 2;
    ASSERT_EQ(graph.nodeName(newChild), QStringLiteral("child"));
    const int newNephew = 4;
    ASSERT_EQ(graph.parentNode(newNephew), 4);
    const int orphan = graph.addNode(QStringLiteral("orphan"), 0, 0, newNephew);
    ASSERT_EQ(graph.parentNode(orphan), newNephew);
    graph.purge();
    ASSERT_EQ(graph.getNode(0, newNephew), 0);
    graph.removeChildNode(newNephew);
    EXPECT_THAT(graphViolations(graph), Contains("4: node 5 lives under the removed node 4"));
}

TEST(GraphInvariants, AreBrokenByTablesThatShrink)
{
    SampleGraph sample;
    sample.graph.removeNode(sample.g);
    GraphInvariants invariants(sample.graph);
    sample.graph.purge();
    const auto violations = invariants.check();
    EXPECT_THAT(violations, Contains("5: the node table has shrunk"));
    EXPECT_THAT(violations, Contains("5: the edge table has shrunk"));
    EXPECT_THAT(violations, Contains("5: the removed node 2 lives again"));
    EXPECT_THAT(violations, Not(Contains(StartsWith("1:"))));
}

// The editing operations

namespace {

const unsigned kSeeds = 20;
const int kSteps = 300;

// Picks operations at random, only such as keep the invariants.
class Editor
{
public:
    Editor(Graph& editedGraph, unsigned seed)
        : graph(editedGraph)
        , random(seed)
    {
    }

    // Returns what was done, for the report of a failure.
    std::string step()
    {
        switch (below(16)) {
        case 0:
        case 1:
        case 2:
            return call("addNode", graph.addNode(QString(), below(5), below(5), node()));
        case 3:
            return call("addInput", graph.addInput(node(), QString(), below(3) - 1));
        case 4:
            return call("addOutput", graph.addOutput(node(), QString(), below(3) - 1));
        case 5:
        case 6:
        case 7:
        case 8:
            return addEdge();
        case 9:
        case 10:
            return call("addUpEdge", graph.addUpEdge(below(4), node(), below(4)));
        case 11:
        case 12:
            return call("addDownEdge", graph.addDownEdge(below(4), node(), below(4)));
        case 13:
            graph.removeEdge(below(graph.numEdgesGlobal() + 2) - 1);
            return "removeEdge";
        case 14:
            if (below(2) == 0) {
                graph.disconnectInputGroup(node(), below(3) - 1);
                return "disconnectInputGroup";
            }
            graph.disconnectInput(node(), below(4));
            return "disconnectInput";
        default:
            return removeNode();
        }
    }

private:
    int below(int end) { return std::uniform_int_distribution<int>(0, end - 1)(random); }
    // In the table, removed or not.
    int node() { return below(graph.numNodesGlobal()); }

    static std::string call(const char* name, int result)
    {
        return std::string(name) + " gave " + std::to_string(result);
    }

    std::string addEdge()
    {
        const int src = node();
        const int parent = graph.parentNode(src);
        if (parent == -1 || graph.numNodes(parent) == 0)
            return "nothing";
        const int dst = graph.getNode(below(graph.numNodes(parent)), parent);
        return call("addEdge", graph.addEdge(src, below(4), dst, below(4)));
    }
    std::string removeNode()
    {
        const int victim = node();
        if (victim == kRoot || below(3) != 0)
            return "nothing";
        if (below(2) == 0) {
            graph.removeChildNode(victim);
            return "removeChildNode";
        }
        graph.removeNode(victim);
        return "removeNode";
    }

    Graph& graph;
    std::mt19937 random;
};

} // namespace

TEST(GraphInvariants, HoldAfterEveryStepOfRandomEditing)
{
    for (unsigned seed = 0; seed < kSeeds; ++seed) {
        Graph graph;
        Editor editor(graph, seed);
        GraphInvariants invariants(graph);
        for (int step = 0; step < kSteps; ++step) {
            const std::string done = editor.step();
            const auto violations = invariants.check();
            ASSERT_THAT(violations, IsEmpty())
                << "seed " << seed << ", step " << step << ", " << done << '\n'
                << graphSnapshot(graph);
        }
    }
}

// Guards the test above against an editor that is refused everything.
TEST(GraphInvariants, RandomEditingMakesAndRemovesEveryKindOfEdge)
{
    int regular = 0;
    int down = 0;
    int up = 0;
    int removed = 0;
    for (unsigned seed = 0; seed < kSeeds; ++seed) {
        Graph graph;
        Editor editor(graph, seed);
        for (int step = 0; step < kSteps; ++step) {
            const int newEdge = graph.numEdgesGlobal();
            editor.step();
            regular += graph.isRegularEdge(newEdge);
            down += graph.isDownEdge(newEdge);
            up += graph.isUpEdge(newEdge);
        }
        for (int edge = 0; edge < graph.numEdgesGlobal(); ++edge)
            removed += !graph.isValidEdge(edge);
    }
    EXPECT_GE(regular, 50);
    EXPECT_GE(down, 50);
    EXPECT_GE(up, 50);
    EXPECT_GE(removed, 50);
}
