// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "support/GraphSnapshot.h"
#include "support/SampleGraph.h"

#include <Kestrin/Orv/Graph.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

using Kestrin::Orv::Graph;

namespace {

const int kRoot = Graph::kRootNodeRef;

std::vector<int> inputDestinations(const Graph& graph, int node, int input)
{
    std::vector<int> edges;
    for (int i = 0; i < graph.numInputDestinations(node, input); ++i)
        edges.push_back(graph.inputDestination(node, input, i));
    return edges;
}

std::vector<int> outputDestinations(const Graph& graph, int node, int output)
{
    std::vector<int> edges;
    for (int i = 0; i < graph.numOutputDestinations(node, output); ++i)
        edges.push_back(graph.outputDestination(node, output, i));
    return edges;
}

using Edges = std::vector<int>;

// Three siblings and a group with two children, all with three inputs and three outputs.
class GraphEdges : public testing::Test
{
protected:
    Graph graph;
    int a = graph.addNode(QStringLiteral("a"), 3, 3, kRoot);
    int b = graph.addNode(QStringLiteral("b"), 3, 3, kRoot);
    int c = graph.addNode(QStringLiteral("c"), 3, 3, kRoot);
    int g = graph.addNode(QStringLiteral("g"), 3, 3, kRoot);
    int x = graph.addNode(QStringLiteral("x"), 3, 3, g);
    int y = graph.addNode(QStringLiteral("y"), 3, 3, g);
};

} // namespace

// Regular edges

TEST_F(GraphEdges, ARegularEdgeJoinsAnOutputToAnInput)
{
    const int edge = graph.addEdge(a, 1, b, 2);
    EXPECT_EQ(edge, 0);
    EXPECT_EQ(graph.edgeSourceNode(edge), a);
    EXPECT_EQ(graph.edgeSourceIndex(edge), 1);
    EXPECT_EQ(graph.edgeDestNode(edge), b);
    EXPECT_EQ(graph.edgeDestIndex(edge), 2);
    EXPECT_EQ(graph.inputSource(b, 2), edge);
    EXPECT_EQ(outputDestinations(graph, a, 1), Edges{edge});
    EXPECT_TRUE(graph.isRegularEdge(edge));
}

TEST_F(GraphEdges, ARegularEdgeTouchesNoOtherPort)
{
    graph.addEdge(a, 1, b, 2);
    for (const int port : {0, 1, 2}) {
        EXPECT_EQ(graph.inputSource(a, port), -1);
        EXPECT_EQ(graph.outputSource(b, port), -1);
        EXPECT_EQ(graph.numInputDestinations(a, port), 0);
        EXPECT_EQ(graph.numInputDestinations(b, port), 0);
        EXPECT_EQ(graph.numOutputDestinations(b, port), 0);
    }
    EXPECT_EQ(graph.inputSource(b, 0), -1);
    EXPECT_EQ(graph.inputSource(b, 1), -1);
    EXPECT_EQ(graph.numOutputDestinations(a, 0), 0);
    EXPECT_EQ(graph.numOutputDestinations(a, 2), 0);
}

TEST_F(GraphEdges, RefsCountUpOverAllKindsOfEdge)
{
    EXPECT_EQ(graph.addEdge(a, 0, b, 0), 0);
    EXPECT_EQ(graph.addDownEdge(0, x, 0), 1);
    EXPECT_EQ(graph.addUpEdge(0, x, 0), 2);
    EXPECT_EQ(graph.addEdge(b, 0, c, 0), 3);
    EXPECT_EQ(graph.numEdgesGlobal(), 4);
}

TEST_F(GraphEdges, AFedInputTakesNoSecondEdgeEvenFromTheSameOutput)
{
    graph.addEdge(a, 0, b, 0);
    const std::string before = graphSnapshot(graph);
    EXPECT_EQ(graph.addEdge(a, 0, b, 0), -1);
    EXPECT_EQ(graph.addEdge(a, 1, b, 0), -1);
    EXPECT_EQ(graph.addEdge(c, 0, b, 0), -1);
    EXPECT_EQ(graphSnapshot(graph), before);
}

TEST_F(GraphEdges, ADisconnectedInputTakesANewEdgeOfAHigherRef)
{
    const int before = graph.addEdge(a, 0, b, 0);
    graph.disconnectInput(b, 0);
    const int after = graph.addEdge(a, 0, b, 0);
    EXPECT_GT(after, before);
    EXPECT_EQ(graph.inputSource(b, 0), after);
    EXPECT_EQ(outputDestinations(graph, a, 0), Edges{after});
}

TEST_F(GraphEdges, AnInputFedByADownEdgeTakesNoRegularEdge)
{
    graph.addDownEdge(0, x, 0);
    const std::string before = graphSnapshot(graph);
    EXPECT_EQ(graph.addEdge(y, 0, x, 0), -1);
    EXPECT_EQ(graphSnapshot(graph), before);
}

TEST_F(GraphEdges, AnOutputFeedsManyInputsInTheOrderOfTheEdges)
{
    const int first = graph.addEdge(a, 0, c, 1);
    const int second = graph.addEdge(a, 0, b, 2);
    const int third = graph.addEdge(a, 0, b, 0);
    EXPECT_EQ(graph.numOutputDestinations(a, 0), 3);
    EXPECT_EQ(outputDestinations(graph, a, 0), (Edges{first, second, third}));
}

TEST_F(GraphEdges, AnOutputWhoseOldestEdgeIsAnUpEdgeTakesNoRegularOne)
{
    graph.addUpEdge(0, x, 0);
    const std::string before = graphSnapshot(graph);
    EXPECT_EQ(graph.addEdge(x, 0, y, 0), -1);
    EXPECT_EQ(graphSnapshot(graph), before);
    EXPECT_NE(graph.addEdge(x, 1, y, 0), -1);
}

TEST_F(GraphEdges, AnOutputWhoseOldestEdgeIsRegularTakesMoreInSpiteOfAYoungerUpEdge)
{
    const int first = graph.addEdge(x, 0, y, 0);
    const int up = graph.addUpEdge(0, x, 0);
    const int second = graph.addEdge(x, 0, y, 1);
    EXPECT_EQ(outputDestinations(graph, x, 0), (Edges{first, up, second}));
}

TEST_F(GraphEdges, RemovingTheOldestRegularEdgeMayLeaveAnUpEdgeInItsPlace)
{
    const int first = graph.addEdge(x, 0, y, 0);
    graph.addUpEdge(0, x, 0);
    graph.addEdge(x, 0, y, 1);
    graph.removeEdge(first);
    EXPECT_EQ(graph.addEdge(x, 0, y, 2), -1);
}

TEST_F(GraphEdges, RemovingTheUpEdgeInFrontLetsRegularOnesInAgain)
{
    const int up = graph.addUpEdge(0, x, 0);
    ASSERT_EQ(graph.addEdge(x, 0, y, 0), -1);
    graph.removeEdge(up);
    EXPECT_NE(graph.addEdge(x, 0, y, 0), -1);
}

TEST_F(GraphEdges, ANodeDoesNotFeedItself)
{
    const std::string before = graphSnapshot(graph);
    EXPECT_EQ(graph.addEdge(a, 0, a, 0), -1);
    EXPECT_EQ(graph.addEdge(a, 1, a, 2), -1);
    EXPECT_EQ(graphSnapshot(graph), before);
}

TEST_F(GraphEdges, AnEdgeBackToTheFeedingNodeIsRefused)
{
    graph.addEdge(a, 0, b, 0);
    const std::string before = graphSnapshot(graph);
    EXPECT_EQ(graph.addEdge(b, 0, a, 0), -1);
    EXPECT_EQ(graphSnapshot(graph), before);
}

TEST_F(GraphEdges, AnEdgeThatWouldCloseALongerCycleIsRefused)
{
    graph.addEdge(a, 0, b, 1);
    graph.addEdge(b, 2, c, 2);
    const std::string before = graphSnapshot(graph);
    EXPECT_EQ(graph.addEdge(c, 0, a, 0), -1);
    EXPECT_EQ(graphSnapshot(graph), before);
    EXPECT_NE(graph.addEdge(a, 0, c, 0), -1);
}

TEST_F(GraphEdges, RemovingAnEdgeOfTheCycleMakesRoomForTheOther)
{
    const int edge = graph.addEdge(a, 0, b, 0);
    graph.removeEdge(edge);
    EXPECT_NE(graph.addEdge(b, 0, a, 0), -1);
}

TEST_F(GraphEdges, AnEdgeThatWouldCloseACycleThroughAGroupIsRefused)
{
    graph.addEdge(a, 0, g, 0);
    graph.addDownEdge(0, x, 0);
    graph.addUpEdge(0, x, 0);
    graph.addEdge(g, 0, b, 0);
    EXPECT_EQ(graph.addEdge(b, 0, a, 0), -1);
}

TEST_F(GraphEdges, AnEdgeIntoAGroupIsNotSeenAsACycleWhenAChildProducesTheGroupsOutput)
{
    graph.addUpEdge(0, x, 0);
    graph.addEdge(g, 0, b, 0);
    EXPECT_NE(graph.addEdge(b, 0, g, 0), -1);
}

TEST_F(GraphEdges, AnEdgeIntoAGroupIsSeenAsACycleWhenTheGroupsOutputIsNotFed)
{
    graph.addEdge(g, 0, b, 0);
    EXPECT_EQ(graph.addEdge(b, 0, g, 0), -1);
}

TEST_F(GraphEdges, NodesThatAreNoSiblingsCanBeJoined)
{
    const int edge = graph.addEdge(x, 0, b, 0);
    EXPECT_EQ(edge, 0);
    EXPECT_EQ(graph.inputSource(b, 0), edge);
    EXPECT_EQ(outputDestinations(graph, x, 0), Edges{edge});
    EXPECT_FALSE(graph.isRegularEdge(edge));
}

// An up edge enters an output, so it is an output that is unhooked and the input keeps its source.
TEST_F(GraphEdges, AnEdgeBetweenUnrelatedNodesIsUnhookedLikeAnUpEdge)
{
    const int edge = graph.addEdge(x, 0, b, 0);
    graph.removeEdge(edge);
    EXPECT_FALSE(graph.isValidEdge(edge));
    EXPECT_EQ(graph.numOutputDestinations(x, 0), 0);
    EXPECT_EQ(graph.inputSource(b, 0), edge);
}

// A down edge leaves an input, so the output keeps the removed edge among its destinations.
TEST_F(GraphEdges, AnEdgeFromTheParentsOutputIsUnhookedLikeADownEdge)
{
    const int edge = graph.addEdge(g, 0, x, 0);
    ASSERT_TRUE(graph.isDownEdge(edge));
    graph.removeEdge(edge);
    EXPECT_FALSE(graph.isValidEdge(edge));
    EXPECT_EQ(graph.inputSource(x, 0), -1);
    EXPECT_EQ(outputDestinations(graph, g, 0), Edges{edge});
}

// Up edges

TEST_F(GraphEdges, AnUpEdgeJoinsAChildsOutputToAnOutputOfItsParent)
{
    const int edge = graph.addUpEdge(2, x, 1);
    EXPECT_EQ(edge, 0);
    EXPECT_EQ(graph.edgeSourceNode(edge), x);
    EXPECT_EQ(graph.edgeSourceIndex(edge), 1);
    EXPECT_EQ(graph.edgeDestNode(edge), g);
    EXPECT_EQ(graph.edgeDestIndex(edge), 2);
    EXPECT_EQ(graph.outputSource(g, 2), edge);
    EXPECT_EQ(outputDestinations(graph, x, 1), Edges{edge});
    EXPECT_TRUE(graph.isUpEdge(edge));
    EXPECT_EQ(graph.inputSource(g, 2), -1);
    EXPECT_EQ(graph.numOutputDestinations(g, 2), 0);
    EXPECT_EQ(graph.outputSource(x, 1), -1);
}

TEST_F(GraphEdges, AFedParentOutputTakesNoSecondUpEdge)
{
    graph.addUpEdge(0, x, 0);
    const std::string before = graphSnapshot(graph);
    EXPECT_EQ(graph.addUpEdge(0, x, 0), -1);
    EXPECT_EQ(graph.addUpEdge(0, x, 1), -1);
    EXPECT_EQ(graph.addUpEdge(0, y, 0), -1);
    EXPECT_EQ(graphSnapshot(graph), before);
}

TEST_F(GraphEdges, AChildOutputFeedsSeveralParentOutputsAndSiblings)
{
    const int regular = graph.addEdge(x, 0, y, 0);
    const int first = graph.addUpEdge(0, x, 0);
    const int second = graph.addUpEdge(1, x, 0);
    EXPECT_EQ(outputDestinations(graph, x, 0), (Edges{regular, first, second}));
    EXPECT_EQ(graph.outputSource(g, 0), first);
    EXPECT_EQ(graph.outputSource(g, 1), second);
}

TEST_F(GraphEdges, AnUpEdgeReachesTheOutputsOfTheRoot)
{
    graph.addOutput(kRoot, QStringLiteral("result"), -1);
    const int edge = graph.addUpEdge(0, a, 0);
    EXPECT_EQ(graph.outputSource(kRoot, 0), edge);
    EXPECT_TRUE(graph.isUpEdge(edge));
}

TEST_F(GraphEdges, AnUpEdgeMayFollowRegularEdgesOfTheParentsOutput)
{
    graph.addEdge(g, 0, b, 0);
    EXPECT_NE(graph.addUpEdge(0, x, 0), -1);
}

// Down edges

TEST_F(GraphEdges, ADownEdgeJoinsAnInputOfTheParentToAChildsInput)
{
    const int edge = graph.addDownEdge(2, x, 1);
    EXPECT_EQ(edge, 0);
    EXPECT_EQ(graph.edgeSourceNode(edge), g);
    EXPECT_EQ(graph.edgeSourceIndex(edge), 2);
    EXPECT_EQ(graph.edgeDestNode(edge), x);
    EXPECT_EQ(graph.edgeDestIndex(edge), 1);
    EXPECT_EQ(graph.inputSource(x, 1), edge);
    EXPECT_EQ(inputDestinations(graph, g, 2), Edges{edge});
    EXPECT_TRUE(graph.isDownEdge(edge));
    EXPECT_EQ(graph.numOutputDestinations(g, 2), 0);
    EXPECT_EQ(graph.inputSource(g, 2), -1);
}

TEST_F(GraphEdges, AFedChildInputTakesNoDownEdge)
{
    graph.addDownEdge(0, x, 0);
    graph.addEdge(x, 0, y, 0);
    const std::string before = graphSnapshot(graph);
    EXPECT_EQ(graph.addDownEdge(0, x, 0), -1);
    EXPECT_EQ(graph.addDownEdge(1, x, 0), -1);
    EXPECT_EQ(graph.addDownEdge(0, y, 0), -1);
    EXPECT_EQ(graphSnapshot(graph), before);
}

TEST_F(GraphEdges, AnInputFeedsManyChildInputsInTheOrderOfTheEdges)
{
    const int first = graph.addDownEdge(0, y, 1);
    const int second = graph.addDownEdge(0, x, 0);
    const int third = graph.addDownEdge(0, y, 0);
    EXPECT_EQ(graph.numInputDestinations(g, 0), 3);
    EXPECT_EQ(inputDestinations(graph, g, 0), (Edges{first, second, third}));
}

TEST_F(GraphEdges, UpAndDownEdgesMayCloseACycle)
{
    graph.addEdge(g, 0, b, 0);
    EXPECT_NE(graph.addUpEdge(0, x, 0), -1);
    EXPECT_NE(graph.addEdge(b, 0, g, 0), -1);
    EXPECT_NE(graph.addDownEdge(0, x, 0), -1);
    EXPECT_EQ(graph.numEdgesGlobal(), 4);
}

TEST_F(GraphEdges, TheRootHasNoParentToJoin)
{
    graph.addInput(kRoot, QStringLiteral("in"), -1);
    graph.addOutput(kRoot, QStringLiteral("out"), -1);
    const std::string before = graphSnapshot(graph);
    EXPECT_EQ(graph.addUpEdge(0, kRoot, 0), -1);
    EXPECT_EQ(graph.addDownEdge(0, kRoot, 0), -1);
    EXPECT_EQ(graphSnapshot(graph), before);
}

// Removal

TEST_F(GraphEdges, ARemovedEdgeStillKnowsItsEnds)
{
    const int edge = graph.addEdge(a, 1, b, 2);
    graph.removeEdge(edge);
    EXPECT_FALSE(graph.isValidEdge(edge));
    EXPECT_EQ(graph.edgeSourceNode(edge), a);
    EXPECT_EQ(graph.edgeSourceIndex(edge), 1);
    EXPECT_EQ(graph.edgeDestNode(edge), b);
    EXPECT_EQ(graph.edgeDestIndex(edge), 2);
}

TEST_F(GraphEdges, RemovingARegularEdgeUnhooksBothPorts)
{
    const int edge = graph.addEdge(a, 1, b, 2);
    graph.removeEdge(edge);
    EXPECT_EQ(graph.inputSource(b, 2), -1);
    EXPECT_EQ(graph.numOutputDestinations(a, 1), 0);
    EXPECT_EQ(graph.numEdgesGlobal(), 1);
}

TEST_F(GraphEdges, RemovingADownEdgeUnhooksBothPorts)
{
    const int edge = graph.addDownEdge(2, x, 1);
    graph.removeEdge(edge);
    EXPECT_FALSE(graph.isValidEdge(edge));
    EXPECT_EQ(graph.inputSource(x, 1), -1);
    EXPECT_EQ(graph.numInputDestinations(g, 2), 0);
}

TEST_F(GraphEdges, RemovingAnUpEdgeUnhooksBothPorts)
{
    const int edge = graph.addUpEdge(2, x, 1);
    graph.removeEdge(edge);
    EXPECT_FALSE(graph.isValidEdge(edge));
    EXPECT_EQ(graph.outputSource(g, 2), -1);
    EXPECT_EQ(graph.numOutputDestinations(x, 1), 0);
}

TEST_F(GraphEdges, TheYoungerEdgesOfThePortMoveUpOnePosition)
{
    Edges edges;
    for (const int input : {0, 1, 2})
        edges.push_back(graph.addEdge(a, 0, b, input));
    edges.push_back(graph.addEdge(a, 0, c, 0));
    graph.removeEdge(edges[1]);
    EXPECT_EQ(outputDestinations(graph, a, 0), (Edges{edges[0], edges[2], edges[3]}));
    graph.removeEdge(edges[3]);
    EXPECT_EQ(outputDestinations(graph, a, 0), (Edges{edges[0], edges[2]}));
    graph.removeEdge(edges[0]);
    EXPECT_EQ(outputDestinations(graph, a, 0), Edges{edges[2]});
    EXPECT_EQ(graph.inputSource(b, 2), edges[2]);
}

TEST_F(GraphEdges, TheYoungerDownEdgesOfAnInputMoveUpOnePosition)
{
    const int first = graph.addDownEdge(0, x, 0);
    const int second = graph.addDownEdge(0, x, 1);
    const int third = graph.addDownEdge(0, y, 0);
    graph.removeEdge(first);
    EXPECT_EQ(inputDestinations(graph, g, 0), (Edges{second, third}));
}

TEST_F(GraphEdges, RemovingWhatIsNoEdgeChangesNothing)
{
    const int edge = graph.addEdge(a, 0, b, 0);
    graph.addEdge(a, 0, c, 0);
    graph.removeEdge(edge);
    const int again = graph.addEdge(a, 0, b, 0);
    const std::string before = graphSnapshot(graph);
    graph.removeEdge(edge);
    graph.removeEdge(-1);
    graph.removeEdge(graph.numEdgesGlobal());
    EXPECT_EQ(graphSnapshot(graph), before);
    EXPECT_EQ(graph.inputSource(b, 0), again);
}

// Compaction leaves the parents as the numbers that they were, so a down edge ceases to be one.
TEST(GraphEdgeKinds, AnEdgeIsUnhookedAsTheKindThatItIsNow)
{
    Graph graph;
    const int gone = graph.addNode(QStringLiteral("gone"), 0, 0, kRoot);
    const int outer = graph.addNode(QStringLiteral("outer"), 1, 1, kRoot);
    const int middle = graph.addNode(QStringLiteral("middle"), 1, 1, outer);
    const int inner = graph.addNode(QStringLiteral("inner"), 1, 1, middle);
    const int down = graph.addDownEdge(0, middle, 0);
    const int up = graph.addUpEdge(0, inner, 0);
    graph.removeNode(gone);
    graph.purge();
    const int newOuter = outer - 1;
    const int newMiddle = middle - 1;
    ASSERT_EQ(graph.edgeDestNode(down), newMiddle);
    ASSERT_TRUE(graph.isValidEdge(down));
    ASSERT_FALSE(graph.isRegularEdge(down));
    ASSERT_FALSE(graph.isDownEdge(down));
    ASSERT_EQ(graph.outputSource(newMiddle, 0), up);
    graph.removeEdge(down);
    EXPECT_FALSE(graph.isValidEdge(down));
    EXPECT_EQ(graph.outputSource(newMiddle, 0), -1);
    EXPECT_EQ(graph.inputSource(newMiddle, 0), down);
    EXPECT_EQ(inputDestinations(graph, newOuter, 0), Edges{down});
}

// Disconnecting

TEST_F(GraphEdges, DisconnectingAnInputRemovesTheEdgeThatFeedsIt)
{
    const int edge = graph.addEdge(a, 0, b, 0);
    const int other = graph.addEdge(a, 0, b, 1);
    const int onward = graph.addEdge(b, 0, c, 0);
    graph.disconnectInput(b, 0);
    EXPECT_FALSE(graph.isValidEdge(edge));
    EXPECT_TRUE(graph.isValidEdge(other));
    EXPECT_TRUE(graph.isValidEdge(onward));
    EXPECT_EQ(graph.inputSource(b, 0), -1);
}

TEST_F(GraphEdges, DisconnectingAnInputThatIsNotConnectedChangesNothing)
{
    graph.addEdge(a, 0, b, 0);
    const std::string before = graphSnapshot(graph);
    graph.disconnectInput(b, 1);
    EXPECT_EQ(graphSnapshot(graph), before);
}

TEST_F(GraphEdges, DisconnectingAnInputOfAGroupCutsItsDownEdgesToo)
{
    const int feeding = graph.addEdge(a, 0, g, 0);
    const int toX = graph.addDownEdge(0, x, 0);
    const int toY = graph.addDownEdge(0, y, 0);
    const int other = graph.addDownEdge(1, y, 1);
    graph.disconnectInput(g, 0);
    EXPECT_FALSE(graph.isValidEdge(feeding));
    EXPECT_FALSE(graph.isValidEdge(toX));
    EXPECT_FALSE(graph.isValidEdge(toY));
    EXPECT_TRUE(graph.isValidEdge(other));
    EXPECT_EQ(graph.numInputDestinations(g, 0), 0);
    EXPECT_EQ(graph.inputSource(x, 0), -1);
    EXPECT_EQ(graph.inputSource(y, 0), -1);
}

TEST_F(GraphEdges, DisconnectingAnUnfedInputOfAGroupCutsItsDownEdges)
{
    const int toX = graph.addDownEdge(0, x, 0);
    graph.disconnectInput(g, 0);
    EXPECT_FALSE(graph.isValidEdge(toX));
}

TEST_F(GraphEdges, DisconnectingAnInputFedByADownEdgeRemovesIt)
{
    const int toX = graph.addDownEdge(0, x, 0);
    const int toY = graph.addDownEdge(0, y, 0);
    graph.disconnectInput(x, 0);
    EXPECT_FALSE(graph.isValidEdge(toX));
    EXPECT_EQ(inputDestinations(graph, g, 0), Edges{toY});
}

TEST_F(GraphEdges, DisconnectingAnInputLeavesTheOutputsOfTheNode)
{
    const int up = graph.addUpEdge(0, x, 0);
    const int regular = graph.addEdge(g, 0, b, 0);
    graph.disconnectInput(g, 0);
    EXPECT_TRUE(graph.isValidEdge(up));
    EXPECT_TRUE(graph.isValidEdge(regular));
}

// The edges that left an input before it moved still name its old index, so removing them does not
// shorten its list.
TEST_F(GraphEdges, DisconnectingAnInputThatHasMovedRemovesTheEdgesThatItLists)
{
    const int toX = graph.addDownEdge(2, x, 0);
    const int toY = graph.addDownEdge(2, y, 0);
    graph.removeInput(g, 0);
    ASSERT_EQ(inputDestinations(graph, g, 1), (Edges{toX, toY}));
    graph.disconnectInput(g, 1);
    EXPECT_FALSE(graph.isValidEdge(toX));
    EXPECT_FALSE(graph.isValidEdge(toY));
    EXPECT_EQ(graph.inputSource(x, 0), -1);
    EXPECT_EQ(inputDestinations(graph, g, 1), (Edges{toX, toY}));
}

TEST_F(GraphEdges, DisconnectingAGroupTakesItsInputsOnly)
{
    const int in = graph.addInput(b, QStringLiteral("in"), 4);
    const int other = graph.addInput(b, QStringLiteral("other"), 5);
    const int too = graph.addInput(b, QStringLiteral("too"), 4);
    const int first = graph.addEdge(a, 0, b, in);
    const int second = graph.addEdge(a, 1, b, too);
    const int kept = graph.addEdge(a, 0, b, other);
    const int ungrouped = graph.addEdge(a, 0, b, 0);
    graph.disconnectInputGroup(b, 4);
    EXPECT_FALSE(graph.isValidEdge(first));
    EXPECT_FALSE(graph.isValidEdge(second));
    EXPECT_TRUE(graph.isValidEdge(kept));
    EXPECT_TRUE(graph.isValidEdge(ungrouped));
}

TEST_F(GraphEdges, DisconnectingTheInvalidGroupTakesTheUngroupedInputs)
{
    const int grouped = graph.addInput(b, QStringLiteral("in"), 0);
    const int first = graph.addEdge(a, 0, b, 0);
    const int last = graph.addEdge(a, 0, b, 2);
    const int kept = graph.addEdge(a, 0, b, grouped);
    graph.disconnectInputGroup(b, Graph::kInvalidGroupRef);
    EXPECT_FALSE(graph.isValidEdge(first));
    EXPECT_FALSE(graph.isValidEdge(last));
    EXPECT_TRUE(graph.isValidEdge(kept));
}

TEST_F(GraphEdges, DisconnectingAGroupCutsTheDownEdgesOfItsInputs)
{
    const int in = graph.addInput(g, QStringLiteral("in"), 0);
    const int child = graph.addDownEdge(in, x, 0);
    graph.disconnectInputGroup(g, 0);
    EXPECT_FALSE(graph.isValidEdge(child));
}

TEST_F(GraphEdges, DisconnectingAGroupWithoutInputsChangesNothing)
{
    graph.addEdge(a, 0, b, 0);
    const std::string before = graphSnapshot(graph);
    graph.disconnectInputGroup(b, 7);
    EXPECT_EQ(graphSnapshot(graph), before);
}

// Queries

TEST_F(GraphEdges, DestinationsAreValidWithinTheirList)
{
    graph.addEdge(a, 0, b, 0);
    graph.addEdge(a, 0, b, 1);
    graph.addDownEdge(0, x, 0);
    for (const int index : {-1, 2, 3}) {
        EXPECT_FALSE(graph.isValidOutputDestination(a, 0, index)) << index;
        EXPECT_EQ(graph.outputDestination(a, 0, index), -1) << index;
    }
    EXPECT_TRUE(graph.isValidOutputDestination(a, 0, 0));
    EXPECT_TRUE(graph.isValidOutputDestination(a, 0, 1));
    for (const int index : {-1, 1, 2}) {
        EXPECT_FALSE(graph.isValidInputDestination(g, 0, index)) << index;
        EXPECT_EQ(graph.inputDestination(g, 0, index), -1) << index;
    }
    EXPECT_TRUE(graph.isValidInputDestination(g, 0, 0));
}

TEST_F(GraphEdges, DestinationsOfPortsThatAreNotValidAreNotValid)
{
    graph.addEdge(a, 0, b, 0);
    graph.addDownEdge(0, x, 0);
    EXPECT_FALSE(graph.isValidOutputDestination(a, -1, 0));
    EXPECT_FALSE(graph.isValidOutputDestination(a, 3, 0));
    EXPECT_FALSE(graph.isValidOutputDestination(-1, 0, 0));
    EXPECT_FALSE(graph.isValidInputDestination(g, -1, 0));
    EXPECT_FALSE(graph.isValidInputDestination(g, 3, 0));
    EXPECT_FALSE(graph.isValidInputDestination(-1, 0, 0));
}

// A port can keep a removed edge in its list, but is not valid itself once its node is removed.
TEST_F(GraphEdges, DestinationsOfRemovedNodesAreNotValid)
{
    const int edge = graph.addEdge(g, 0, x, 0);
    graph.removeEdge(edge);
    ASSERT_EQ(outputDestinations(graph, g, 0), Edges{edge});
    ASSERT_TRUE(graph.isValidOutputDestination(g, 0, 0));
    graph.removeNode(g);
    EXPECT_FALSE(graph.isValidOutputDestination(g, 0, 0));
}

TEST_F(GraphEdges, DestinationsOfInputsOfRemovedNodesAreNotValid)
{
    const int edge = graph.addDownEdge(1, x, 0);
    graph.removeInput(g, 0);
    graph.removeEdge(edge);
    ASSERT_EQ(inputDestinations(graph, g, 0), Edges{edge});
    ASSERT_TRUE(graph.isValidInputDestination(g, 0, 0));
    graph.removeNode(g);
    EXPECT_FALSE(graph.isValidInputDestination(g, 0, 0));
}

TEST_F(GraphEdges, InputsAndOutputsOfOneIndexAreDistinctPorts)
{
    const int in = graph.addEdge(a, 0, g, 0);
    const int up = graph.addUpEdge(0, x, 0);
    const int down = graph.addDownEdge(0, x, 0);
    const int out = graph.addEdge(g, 0, b, 0);
    EXPECT_EQ(graph.inputSource(g, 0), in);
    EXPECT_EQ(graph.outputSource(g, 0), up);
    EXPECT_EQ(inputDestinations(graph, g, 0), Edges{down});
    EXPECT_EQ(outputDestinations(graph, g, 0), Edges{out});
}
