// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "support/SampleGraph.h"

#include <Kestrin/Orv/Graph.h>

#include <gtest/gtest.h>

#include <limits>
#include <type_traits>

using Kestrin::Orv::Graph;

namespace {

const int kRoot = Graph::kRootNodeRef;
const int kMin = std::numeric_limits<int>::min();
const int kMax = std::numeric_limits<int>::max();

} // namespace

TEST(GraphTables, TheConstantsHaveTheirValues)
{
    static_assert(Graph::kRootNodeRef == 0, "");
    static_assert(Graph::kInvalidNodeRef == -1, "");
    static_assert(Graph::kInvalidEdgeRef == -1, "");
    static_assert(Graph::kInvalidGroupRef == -1, "");
}

TEST(GraphTables, AGraphIsOnePointerWithoutVirtualFunctions)
{
    static_assert(sizeof(Graph) == sizeof(void*), "");
    static_assert(!std::is_polymorphic<Graph>::value, "");
}

TEST(GraphTables, AGraphCanNotBeCopied)
{
    static_assert(!std::is_copy_constructible<Graph>::value, "");
    static_assert(!std::is_copy_assignable<Graph>::value, "");
}

TEST(GraphTables, ANewGraphHoldsTheRootAlone)
{
    const Graph graph;
    EXPECT_EQ(graph.numNodesGlobal(), 1);
    EXPECT_EQ(graph.numEdgesGlobal(), 0);
    EXPECT_TRUE(graph.isValidNode(kRoot));
}

TEST(GraphTables, TheRootIsNamelessAndHasNothing)
{
    const Graph graph;
    EXPECT_EQ(graph.parentNode(kRoot), Graph::kInvalidNodeRef);
    EXPECT_EQ(graph.nodeValue(kRoot), -1);
    EXPECT_TRUE(graph.nodeName(kRoot).isEmpty());
    EXPECT_EQ(graph.numNodes(kRoot), 0);
    EXPECT_EQ(graph.numInputs(kRoot), 0);
    EXPECT_EQ(graph.numOutputs(kRoot), 0);
    EXPECT_EQ(graph.numInputGroups(kRoot), 0);
    EXPECT_EQ(graph.numOutputGroups(kRoot), 0);
}

TEST(GraphTables, TheRootTakesPortsLikeAnyNode)
{
    Graph graph;
    EXPECT_EQ(graph.addInput(kRoot, QStringLiteral("in"), -1), 0);
    EXPECT_EQ(graph.addOutput(kRoot, QStringLiteral("out"), -1), 0);
    EXPECT_TRUE(graph.isValidInput(kRoot, 0));
    EXPECT_TRUE(graph.isValidOutput(kRoot, 0));
}

TEST(GraphTables, TheCountsIncludeWhatIsRemoved)
{
    SampleGraph sample;
    ASSERT_EQ(sample.graph.numNodesGlobal(), 6);
    ASSERT_EQ(sample.graph.numEdgesGlobal(), 5);
    sample.graph.removeNode(sample.g);
    EXPECT_EQ(sample.graph.numNodesGlobal(), 6);
    EXPECT_EQ(sample.graph.numEdgesGlobal(), 5);
}

TEST(GraphTables, ASlotIsItsOwnRefInRangeOrNot)
{
    SampleGraph sample;
    sample.graph.removeNode(sample.g);
    for (const int index : {kMin, -1, 0, 1, 2, 5, 6, 1000, kMax}) {
        EXPECT_EQ(sample.graph.getNodeGlobal(index), index);
        EXPECT_EQ(sample.graph.getEdgeGlobal(index), index);
    }
}

TEST(GraphTables, NodesOutsideTheTableAreNotValid)
{
    SampleGraph sample;
    for (const int node : {kMin, -2, -1, sample.graph.numNodesGlobal(), kMax})
        EXPECT_FALSE(sample.graph.isValidNode(node)) << node;
    for (int node = 0; node < sample.graph.numNodesGlobal(); ++node)
        EXPECT_TRUE(sample.graph.isValidNode(node)) << node;
}

TEST(GraphTables, ARemovedNodeIsNotValid)
{
    SampleGraph sample;
    sample.graph.removeNode(sample.a);
    EXPECT_FALSE(sample.graph.isValidNode(sample.a));
}

TEST(GraphTables, TheOtherRefsKeepTheirMeaningWhenANodeIsRemoved)
{
    SampleGraph sample;
    sample.graph.removeNode(sample.a);
    EXPECT_EQ(sample.graph.nodeName(sample.g), QStringLiteral("g"));
    EXPECT_EQ(sample.graph.nodeName(sample.b), QStringLiteral("b"));
    EXPECT_EQ(sample.graph.nodeName(sample.x), QStringLiteral("x"));
    EXPECT_EQ(sample.graph.nodeName(sample.y), QStringLiteral("y"));
    for (const int node : {kRoot, sample.g, sample.b, sample.x, sample.y})
        EXPECT_TRUE(sample.graph.isValidNode(node)) << node;
    EXPECT_EQ(sample.graph.edgeSourceNode(sample.gToB), sample.g);
    EXPECT_EQ(sample.graph.edgeDestNode(sample.gToB), sample.b);
}

TEST(GraphTables, ARemovedNodeKeepsItsFields)
{
    Graph graph;
    const int parent = graph.addNode(QStringLiteral("parent"), 0, 0, kRoot);
    const int node = graph.addNode(QStringLiteral("node"), 0, 0, parent);
    graph.setNodeValue(node, 42);
    graph.addInputGroup(node, QStringLiteral("group"));
    graph.addInput(node, QStringLiteral("in"), 0);
    graph.addOutput(node, QStringLiteral("out"), 3);
    graph.removeNode(node);
    EXPECT_EQ(graph.nodeName(node), QStringLiteral("node"));
    EXPECT_EQ(graph.nodeValue(node), 42);
    EXPECT_EQ(graph.parentNode(node), parent);
    EXPECT_EQ(graph.numInputs(node), 1);
    EXPECT_EQ(graph.inputName(node, 0), QStringLiteral("in"));
    EXPECT_EQ(graph.inputGroup(node, 0), 0);
    EXPECT_EQ(graph.findInput(node, QStringLiteral("in")), 0);
    EXPECT_EQ(graph.numOutputs(node), 1);
    EXPECT_EQ(graph.outputName(node, 0), QStringLiteral("out"));
    EXPECT_EQ(graph.outputGroup(node, 0), 3);
    EXPECT_EQ(graph.findOutput(node, QStringLiteral("out")), 0);
    EXPECT_EQ(graph.numInputGroups(node), 1);
    EXPECT_EQ(graph.inputGroupName(node, 0), QStringLiteral("group"));
    EXPECT_EQ(graph.findInputGroup(node, QStringLiteral("group")), 0);
}

TEST(GraphTables, SlotsAreNotReused)
{
    SampleGraph sample;
    sample.graph.removeNode(sample.b);
    sample.graph.removeEdge(sample.xToY);
    EXPECT_EQ(sample.graph.addNode(QStringLiteral("c"), 1, 1, kRoot), 6);
    EXPECT_EQ(sample.graph.addEdge(sample.x, 0, sample.y, 0), 5);
}

TEST(GraphTables, PortsAreValidWithinTheirLists)
{
    Graph graph;
    const int node = graph.addNode(QString(), 2, 3, kRoot);
    for (const int port : {kMin, -1, 2, 3, kMax})
        EXPECT_FALSE(graph.isValidInput(node, port)) << port;
    for (const int port : {0, 1})
        EXPECT_TRUE(graph.isValidInput(node, port)) << port;
    for (const int port : {kMin, -1, 3, 4, kMax})
        EXPECT_FALSE(graph.isValidOutput(node, port)) << port;
    for (const int port : {0, 1, 2})
        EXPECT_TRUE(graph.isValidOutput(node, port)) << port;
}

TEST(GraphTables, PortsOfNodesThatAreNotValidAreNotValid)
{
    Graph graph;
    const int node = graph.addNode(QString(), 1, 1, kRoot);
    graph.removeNode(node);
    ASSERT_EQ(graph.numInputs(node), 1);
    ASSERT_EQ(graph.numOutputs(node), 1);
    for (const int bad : {kMin, -1, node, node + 1, kMax}) {
        EXPECT_FALSE(graph.isValidInput(bad, 0)) << bad;
        EXPECT_FALSE(graph.isValidOutput(bad, 0)) << bad;
    }
}

TEST(GraphTables, InputGroupsAreValidWithinTheirList)
{
    Graph graph;
    const int node = graph.addNode(QString(), 0, 0, kRoot);
    graph.addInputGroup(node, QStringLiteral("first"));
    graph.addInputGroup(node, QStringLiteral("second"));
    for (const int group : {kMin, -1, 2, kMax})
        EXPECT_FALSE(graph.isValidInputGroup(node, group)) << group;
    EXPECT_TRUE(graph.isValidInputGroup(node, 0));
    EXPECT_TRUE(graph.isValidInputGroup(node, 1));
    graph.removeNode(node);
    EXPECT_FALSE(graph.isValidInputGroup(node, 0));
}

TEST(GraphTables, NoOutputGroupIsValid)
{
    Graph graph;
    const int node = graph.addNode(QString(), 0, 0, kRoot);
    graph.addOutputGroup(node, QStringLiteral("group"));
    graph.addOutput(node, QStringLiteral("out"), 0);
    for (const int group : {kMin, -1, 0, 1, kMax})
        EXPECT_FALSE(graph.isValidOutputGroup(node, group)) << group;
}

TEST(GraphTables, EdgesAreValidWithinTheTableUntilRemoved)
{
    SampleGraph sample;
    for (const int edge : {kMin, -1, sample.graph.numEdgesGlobal(), kMax})
        EXPECT_FALSE(sample.graph.isValidEdge(edge)) << edge;
    for (int edge = 0; edge < sample.graph.numEdgesGlobal(); ++edge)
        EXPECT_TRUE(sample.graph.isValidEdge(edge)) << edge;
    sample.graph.removeEdge(sample.gToX);
    EXPECT_FALSE(sample.graph.isValidEdge(sample.gToX));
    EXPECT_TRUE(sample.graph.isValidEdge(sample.aToG));
    EXPECT_TRUE(sample.graph.isValidEdge(sample.xToY));
}

TEST(GraphTables, AnEdgeBetweenSiblingsIsRegularOnly)
{
    const SampleGraph sample;
    for (const int edge : {sample.aToG, sample.xToY, sample.gToB}) {
        EXPECT_TRUE(sample.graph.isRegularEdge(edge)) << edge;
        EXPECT_FALSE(sample.graph.isDownEdge(edge)) << edge;
        EXPECT_FALSE(sample.graph.isUpEdge(edge)) << edge;
    }
}

TEST(GraphTables, AnEdgeFromTheParentIsADownEdgeOnly)
{
    const SampleGraph sample;
    EXPECT_FALSE(sample.graph.isRegularEdge(sample.gToX));
    EXPECT_TRUE(sample.graph.isDownEdge(sample.gToX));
    EXPECT_FALSE(sample.graph.isUpEdge(sample.gToX));
}

TEST(GraphTables, AnEdgeToTheParentIsAnUpEdgeOnly)
{
    const SampleGraph sample;
    EXPECT_FALSE(sample.graph.isRegularEdge(sample.yToG));
    EXPECT_FALSE(sample.graph.isDownEdge(sample.yToG));
    EXPECT_TRUE(sample.graph.isUpEdge(sample.yToG));
}

TEST(GraphTables, AnEdgeBetweenUnrelatedNodesIsOfNoKind)
{
    SampleGraph sample;
    Graph& graph = sample.graph;
    graph.disconnectInput(sample.b, 0);
    const int edge = graph.addEdge(sample.x, 0, sample.b, 0);
    ASSERT_TRUE(graph.isValidEdge(edge));
    EXPECT_FALSE(graph.isRegularEdge(edge));
    EXPECT_FALSE(graph.isDownEdge(edge));
    EXPECT_FALSE(graph.isUpEdge(edge));
}

TEST(GraphTables, AnEdgeThatIsNotValidIsOfNoKind)
{
    SampleGraph sample;
    Graph& graph = sample.graph;
    for (const int edge : {sample.aToG, sample.gToX, sample.yToG})
        graph.removeEdge(edge);
    for (const int edge : {sample.aToG, sample.gToX, sample.yToG, kMin, -1, 5, kMax}) {
        EXPECT_FALSE(graph.isRegularEdge(edge)) << edge;
        EXPECT_FALSE(graph.isDownEdge(edge)) << edge;
        EXPECT_FALSE(graph.isUpEdge(edge)) << edge;
    }
}

TEST(GraphTables, GraphsAreIndependentOfEachOther)
{
    SampleGraph first;
    const SampleGraph second;
    first.graph.removeNode(Graph::kRootNodeRef);
    EXPECT_TRUE(second.graph.isValidNode(Graph::kRootNodeRef));
    EXPECT_TRUE(second.graph.isValidEdge(second.aToG));
}
