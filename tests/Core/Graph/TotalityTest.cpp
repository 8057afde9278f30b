// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

// Every operation takes every int: what does not exist answers as nothing, nothing is made of it,
// nothing is changed by it, and no word is said about it but where the operation promises one.

#include "support/GraphSnapshot.h"
#include "support/MessageRecorder.h"
#include "support/RefusedAllocations.h"
#include "support/SampleGraph.h"

#include <Kestrin/Orv/Graph.h>

#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <new>
#include <ostream>
#include <string>
#include <vector>

using Kestrin::Orv::Graph;

namespace {

const int kRoot = Graph::kRootNodeRef;
const int kMin = std::numeric_limits<int>::min();
const int kMax = std::numeric_limits<int>::max();

// The sample graph, where every node has the ports 0 and 1 (named "port", free on the sample's
// nodes) on both sides and one group name; a node and an edge are removed.
struct Sample : SampleGraph
{
    Sample()
    {
        graph.addInput(kRoot, port, -1);
        graph.addOutput(kRoot, port, -1);
        for (const int node : {kRoot, a, g, b, x, y, removedNode}) {
            graph.addInput(node, port, 0);
            graph.addOutput(node, port, 0);
            graph.addInputGroup(node, group);
        }
        removedEdge = graph.addEdge(a, 1, removedNode, 1);
        graph.removeNode(removedNode);
    }

    QString port = QStringLiteral("port");
    QString group = QStringLiteral("group");
    int removedNode = graph.addNode(QStringLiteral("removed"), 1, 1, kRoot);
    int removedEdge;
};

// What a bad number stands for, and so which numbers are bad.
enum Kind {
    OutsideNode, // a node, for queries: a removed one is not bad
    RemovedNode, // the removed node alone
    LiveNode,    // a node, for what needs a live one
    OutsideEdge,
    LiveEdge,
    Port,
    Group,
    Position, // in a list of one entry
};

std::vector<int> badNumbers(const Sample& s, Kind kind)
{
    switch (kind) {
    case OutsideNode:
        return {-1, kMin, kMax, s.graph.numNodesGlobal()};
    case RemovedNode:
        return {s.removedNode};
    case LiveNode:
        return {-1, kMin, kMax, s.graph.numNodesGlobal(), s.removedNode};
    case OutsideEdge:
        return {-1, kMin, kMax, s.graph.numEdgesGlobal()};
    case LiveEdge:
        return {-1, kMin, kMax, s.graph.numEdgesGlobal(), s.removedEdge};
    case Port:
        return {-1, kMin, kMax, 2};
    case Group:
    case Position:
        return {-1, kMin, kMax, 1};
    }
    return {};
}

// One operation with a bad number in one place; the call expects its answer itself.
struct Call
{
    const char* name;
    Kind kind;
    std::function<void(Sample& s, int bad)> make;
    int messages = 0;
};

#define ORV_EXPECT(expected, operation)                                                            \
    [](Sample& s, int bad) {                                                                       \
        Q_UNUSED(s)                                                                                \
        EXPECT_EQ(s.graph.operation, expected);                                                    \
    }
#define ORV_CALL(operation) [](Sample& s, int bad) { s.graph.operation; }

using Walk = bool (Graph::*)(int&, int&) const;

void expectStay(const Graph& graph, Walk walk, int node, int port)
{
    int nodeAfter = node;
    int portAfter = port;
    EXPECT_FALSE((graph.*walk)(nodeAfter, portAfter));
    EXPECT_EQ(nodeAfter, node);
    EXPECT_EQ(portAfter, port);
}
#define ORV_STAY(walk, node, port)                                                                 \
    [](Sample& s, int bad) { expectStay(s.graph, &Graph::walk, node, port); }

const Call kTables[] = {
    {"isValidNode", LiveNode, ORV_EXPECT(false, isValidNode(bad))},
    {"isValidInput_node", LiveNode, ORV_EXPECT(false, isValidInput(bad, 0))},
    {"isValidInput_port", Port, ORV_EXPECT(false, isValidInput(s.a, bad))},
    {"isValidOutput_node", LiveNode, ORV_EXPECT(false, isValidOutput(bad, 0))},
    {"isValidOutput_port", Port, ORV_EXPECT(false, isValidOutput(s.a, bad))},
    {"isValidInputGroup_node", LiveNode, ORV_EXPECT(false, isValidInputGroup(bad, 0))},
    {"isValidInputGroup_group", Group, ORV_EXPECT(false, isValidInputGroup(s.a, bad))},
    {"isValidOutputGroup_node", LiveNode, ORV_EXPECT(false, isValidOutputGroup(bad, 0))},
    {"isValidOutputGroup_group", Group, ORV_EXPECT(false, isValidOutputGroup(s.a, bad))},
    {"isValidEdge", LiveEdge, ORV_EXPECT(false, isValidEdge(bad))},
    {"isRegularEdge", LiveEdge, ORV_EXPECT(false, isRegularEdge(bad))},
    {"isDownEdge", LiveEdge, ORV_EXPECT(false, isDownEdge(bad))},
    {"isUpEdge", LiveEdge, ORV_EXPECT(false, isUpEdge(bad))},
};

const Call kNodes[] = {
    {"addNode", LiveNode, ORV_EXPECT(-1, addNode(s.port, 1, 1, bad))},
    {"addNode_withoutPorts", LiveNode, ORV_EXPECT(-1, addNode(s.port, kMin, -1, bad))},
    {"addNode_withManyPorts", LiveNode, ORV_EXPECT(-1, addNode(s.port, kMax, kMax, bad))},
    {"removeNode", LiveNode, ORV_CALL(removeNode(bad))},
    {"removeChildNode", LiveNode, ORV_CALL(removeChildNode(bad))},
    {"parentNode", OutsideNode, ORV_EXPECT(-1, parentNode(bad))},
    {"contains_ancestor", LiveNode, ORV_EXPECT(false, contains(bad, s.x))},
    {"contains_node", OutsideNode, ORV_EXPECT(false, contains(kRoot, bad))},
    {"contains_both", LiveNode, ORV_EXPECT(false, contains(bad, bad))},
    {"numNodes", LiveNode, ORV_EXPECT(0, numNodes(bad))},
    {"getNode_index", Port, ORV_EXPECT(-1, getNode(bad, s.g))},
    {"getNode_parent", LiveNode, ORV_EXPECT(-1, getNode(0, bad))},
    {"indexOfNode", LiveNode, ORV_EXPECT(-1, indexOfNode(bad))},
    {"findNode", LiveNode, ORV_EXPECT(-1, findNode(QString(), bad))},
    {"findNodeFromValue", LiveNode, ORV_EXPECT(-1, findNodeFromValue(-1, bad))},
    {"nodeName", OutsideNode, ORV_EXPECT(QString(), nodeName(bad))},
    {"setNodeName", LiveNode, ORV_CALL(setNodeName(bad, s.port))},
    {"nodeValue", OutsideNode, ORV_EXPECT(-1, nodeValue(bad))},
    {"setNodeValue", LiveNode, ORV_CALL(setNodeValue(bad, 7))},
};

const Call kInputs[] = {
    {"addInput", LiveNode, ORV_EXPECT(-1, addInput(bad, s.port, 0))},
    {"removeInput_node", LiveNode, ORV_CALL(removeInput(bad, 0))},
    {"removeInput_port", Port, ORV_CALL(removeInput(s.a, bad))},
    {"numInputs", OutsideNode, ORV_EXPECT(0, numInputs(bad))},
    {"findInput", OutsideNode, ORV_EXPECT(-1, findInput(bad, s.port))},
    {"inputName_node", OutsideNode, ORV_EXPECT(QString(), inputName(bad, 1))},
    {"inputName_port", Port, ORV_EXPECT(QString(), inputName(s.a, bad))},
    {"setInputName_node", LiveNode, ORV_CALL(setInputName(bad, 0, s.port))},
    {"setInputName_port", Port, ORV_CALL(setInputName(s.a, bad, s.port))},
    {"inputGroup_node", OutsideNode, ORV_EXPECT(-1, inputGroup(bad, 1))},
    {"inputGroup_port", Port, ORV_EXPECT(-1, inputGroup(s.a, bad))},
    {"addInputGroup", LiveNode, ORV_EXPECT(-1, addInputGroup(bad, s.group))},
    {"removeInputGroup_node", LiveNode, ORV_CALL(removeInputGroup(bad, 0))},
    {"removeInputGroup_group", Group, ORV_CALL(removeInputGroup(s.a, bad))},
    {"numInputGroups", OutsideNode, ORV_EXPECT(0, numInputGroups(bad))},
    {"findInputGroup", OutsideNode, ORV_EXPECT(-1, findInputGroup(bad, s.group))},
    {"inputGroupName_node", OutsideNode, ORV_EXPECT(QString(), inputGroupName(bad, 0))},
    {"inputGroupName_group", Group, ORV_EXPECT(QString(), inputGroupName(s.a, bad))},
    {"setInputGroupName_node", LiveNode, ORV_CALL(setInputGroupName(bad, 0, s.port))},
    {"setInputGroupName_group", Group, ORV_CALL(setInputGroupName(s.a, bad, s.port))},
};

const Call kOutputs[] = {
    {"addOutput", LiveNode, ORV_EXPECT(-1, addOutput(bad, s.port, 0))},
    {"removeOutput_node", LiveNode, ORV_CALL(removeOutput(bad, 0))},
    {"removeOutput_port", Port, ORV_CALL(removeOutput(s.a, bad))},
    {"numOutputs", OutsideNode, ORV_EXPECT(0, numOutputs(bad))},
    {"findOutput", OutsideNode, ORV_EXPECT(-1, findOutput(bad, s.port))},
    {"outputName_node", OutsideNode, ORV_EXPECT(QString(), outputName(bad, 1))},
    {"outputName_port", Port, ORV_EXPECT(QString(), outputName(s.a, bad))},
    {"setOutputName_node", LiveNode, ORV_CALL(setOutputName(bad, 0, s.port))},
    {"setOutputName_port", Port, ORV_CALL(setOutputName(s.a, bad, s.port))},
    {"outputGroup_node", OutsideNode, ORV_EXPECT(-1, outputGroup(bad, 1))},
    {"outputGroup_port", Port, ORV_EXPECT(-1, outputGroup(s.a, bad))},
    {"addOutputGroup", LiveNode, ORV_EXPECT(-1, addOutputGroup(bad, s.group))},
    {"removeOutputGroup_node", LiveNode, ORV_CALL(removeOutputGroup(bad, 0))},
    {"removeOutputGroup_group", Group, ORV_CALL(removeOutputGroup(s.a, bad))},
    {"numOutputGroups", LiveNode, ORV_EXPECT(0, numOutputGroups(bad))},
    {"findOutputGroup", LiveNode, ORV_EXPECT(-1, findOutputGroup(bad, s.group))},
    {"outputGroupName_node", LiveNode, ORV_EXPECT(QString(), outputGroupName(bad, 0))},
    {"outputGroupName_group", Group, ORV_EXPECT(QString(), outputGroupName(s.a, bad))},
    {"setOutputGroupName_node", LiveNode, ORV_CALL(setOutputGroupName(bad, 0, s.port))},
    {"setOutputGroupName_group", Group, ORV_CALL(setOutputGroupName(s.a, bad, s.port))},
};

const Call kEdges[] = {
    {"addEdge_srcNode", LiveNode, ORV_EXPECT(-1, addEdge(bad, 1, s.b, 1))},
    {"addEdge_srcOutput", Port, ORV_EXPECT(-1, addEdge(s.a, bad, s.b, 1))},
    {"addEdge_dstNode", LiveNode, ORV_EXPECT(-1, addEdge(s.a, 1, bad, 1))},
    {"addEdge_dstInput", Port, ORV_EXPECT(-1, addEdge(s.a, 1, s.b, bad))},
    {"addEdge_all", LiveNode, ORV_EXPECT(-1, addEdge(bad, bad, bad, bad))},
    {"addUpEdge_parentOutput", Port, ORV_EXPECT(-1, addUpEdge(bad, s.x, 1))},
    {"addUpEdge_childNode", LiveNode, ORV_EXPECT(-1, addUpEdge(1, bad, 1))},
    {"addUpEdge_childOutput", Port, ORV_EXPECT(-1, addUpEdge(1, s.x, bad))},
    {"addUpEdge_all", LiveNode, ORV_EXPECT(-1, addUpEdge(bad, bad, bad))},
    {"addDownEdge_parentInput", Port, ORV_EXPECT(-1, addDownEdge(bad, s.x, 1))},
    {"addDownEdge_childNode", LiveNode, ORV_EXPECT(-1, addDownEdge(1, bad, 1))},
    {"addDownEdge_childInput", Port, ORV_EXPECT(-1, addDownEdge(1, s.x, bad))},
    {"addDownEdge_all", LiveNode, ORV_EXPECT(-1, addDownEdge(bad, bad, bad))},
    {"removeEdge", LiveEdge, ORV_CALL(removeEdge(bad))},
    {"disconnectInput_node", LiveNode, ORV_CALL(disconnectInput(bad, 0))},
    {"disconnectInput_port", Port, ORV_CALL(disconnectInput(s.g, bad))},
    {"disconnectInputGroup_node", LiveNode, ORV_CALL(disconnectInputGroup(bad, 0))},
    // The input 0 of the sample's nodes is in the group -1: 0 holds the free input alone.
    {"disconnectInputGroup_group", Group,
     [](Sample& s, int bad) { s.graph.disconnectInputGroup(s.g, bad == -1 ? 0 : bad); }},
    {"edgeSourceNode", OutsideEdge, ORV_EXPECT(-1, edgeSourceNode(bad))},
    {"edgeSourceIndex", OutsideEdge, ORV_EXPECT(-1, edgeSourceIndex(bad))},
    {"edgeDestNode", OutsideEdge, ORV_EXPECT(-1, edgeDestNode(bad))},
    {"edgeDestIndex", OutsideEdge, ORV_EXPECT(-1, edgeDestIndex(bad))},
    {"inputSource_node", LiveNode, ORV_EXPECT(-1, inputSource(bad, 0))},
    {"inputSource_port", Port, ORV_EXPECT(-1, inputSource(s.g, bad))},
    {"outputSource_node", LiveNode, ORV_EXPECT(-1, outputSource(bad, 0))},
    {"outputSource_port", Port, ORV_EXPECT(-1, outputSource(s.g, bad))},
    {"numInputDestinations_node", LiveNode, ORV_EXPECT(0, numInputDestinations(bad, 0))},
    {"numInputDestinations_port", Port, ORV_EXPECT(0, numInputDestinations(s.g, bad))},
    {"inputDestination_node", LiveNode, ORV_EXPECT(-1, inputDestination(bad, 0, 0))},
    {"inputDestination_port", Port, ORV_EXPECT(-1, inputDestination(s.g, bad, 0))},
    {"inputDestination_index", Position, ORV_EXPECT(-1, inputDestination(s.g, 0, bad))},
    {"isValidInputDestination_node", LiveNode,
     ORV_EXPECT(false, isValidInputDestination(bad, 0, 0))},
    {"isValidInputDestination_port", Port, ORV_EXPECT(false, isValidInputDestination(s.g, bad, 0))},
    {"isValidInputDestination_index", Position,
     ORV_EXPECT(false, isValidInputDestination(s.g, 0, bad))},
    {"numOutputDestinations_node", LiveNode, ORV_EXPECT(0, numOutputDestinations(bad, 0))},
    {"numOutputDestinations_port", Port, ORV_EXPECT(0, numOutputDestinations(s.g, bad))},
    {"outputDestination_node", LiveNode, ORV_EXPECT(-1, outputDestination(bad, 0, 0))},
    {"outputDestination_port", Port, ORV_EXPECT(-1, outputDestination(s.g, bad, 0))},
    {"outputDestination_index", Position, ORV_EXPECT(-1, outputDestination(s.g, 0, bad))},
    {"isValidOutputDestination_node", LiveNode,
     ORV_EXPECT(false, isValidOutputDestination(bad, 0, 0))},
    {"isValidOutputDestination_port", Port,
     ORV_EXPECT(false, isValidOutputDestination(s.g, bad, 0))},
    {"isValidOutputDestination_index", Position,
     ORV_EXPECT(false, isValidOutputDestination(s.g, 0, bad))},
};

const Call kConnecting[] = {
    {"addEdgeByName_srcNode", LiveNode, ORV_EXPECT(-1, addEdgeByName(bad, s.port, s.b, s.port)), 1},
    {"addEdgeByName_dstNode", LiveNode, ORV_EXPECT(-1, addEdgeByName(s.a, s.port, bad, s.port)), 1},
    {"addEdgeByName_both", LiveNode, ORV_EXPECT(-1, addEdgeByName(bad, s.port, bad, s.port)), 2},
    {"addUpEdgeByName", LiveNode, ORV_EXPECT(-1, addUpEdgeByName(s.port, bad, s.port))},
    {"addDownEdgeByName", OutsideNode, ORV_EXPECT(-1, addDownEdgeByName(s.port, bad, s.port)), 3},
    {"addDownEdgeByName_removed", RemovedNode,
     ORV_EXPECT(-1, addDownEdgeByName(s.port, bad, s.port)), 2},
    {"connectByName_srcNode", LiveNode, ORV_CALL(connectByName(bad, s.b))},
    {"connectByName_dstNode", LiveNode, ORV_CALL(connectByName(s.a, bad))},
    {"connectUpByName", LiveNode, ORV_CALL(connectUpByName(bad))},
    {"connectDownByName", LiveNode, ORV_CALL(connectDownByName(bad))},
    {"connectGroups_srcNode", LiveNode, ORV_CALL(connectGroups(bad, 0, s.b, 0))},
    {"connectGroups_srcGroup", Group,
     [](Sample& s, int bad) { s.graph.connectGroups(s.a, bad == -1 ? 2 : bad, s.b, 0); }},
    {"connectGroups_dstNode", LiveNode, ORV_CALL(connectGroups(s.a, 0, bad, 0))},
    {"connectGroups_dstGroup", Group,
     [](Sample& s, int bad) { s.graph.connectGroups(s.a, 0, s.b, bad == -1 ? 2 : bad); }},
    {"connectNamedGroups_srcNode", LiveNode,
     ORV_CALL(connectNamedGroups(bad, s.group, s.b, s.group))},
    {"connectNamedGroups_dstNode", LiveNode,
     ORV_CALL(connectNamedGroups(s.a, s.group, bad, s.group))},
};

const Call kWalks[] = {
    {"walkUp_node", LiveNode, ORV_STAY(walkUp, bad, 0)},
    {"walkUp_port", Port, ORV_STAY(walkUp, s.x, bad)},
    {"walkAcross_node", LiveNode, ORV_STAY(walkAcross, bad, 0)},
    {"walkAcross_port", Port, ORV_STAY(walkAcross, s.b, bad)},
    {"walkDown_node", LiveNode, ORV_STAY(walkDown, bad, 0)},
    {"walkDown_port", Port, ORV_STAY(walkDown, s.g, bad)},
    {"walkToSourceNode_node", LiveNode, ORV_STAY(walkToSourceNode, bad, 0)},
    {"walkToSourceNode_port", Port, ORV_STAY(walkToSourceNode, s.b, bad)},
    {"precedes_upstream", LiveNode, ORV_EXPECT(false, precedes(bad, s.b, true))},
    {"precedes_upstream_flat", LiveNode, ORV_EXPECT(false, precedes(bad, s.b, false))},
    {"precedes_downstream", LiveNode, ORV_EXPECT(false, precedes(s.b, bad, true))},
    {"precedes_downstream_flat", LiveNode, ORV_EXPECT(false, precedes(s.b, bad, false))},
    {"precedes_both", OutsideNode, ORV_EXPECT(false, precedes(bad, bad, true))},
    {"precedes_both_flat", OutsideNode, ORV_EXPECT(false, precedes(bad, bad, false))},
};

#undef ORV_EXPECT
#undef ORV_CALL
#undef ORV_STAY

// Found by GoogleTest, which would print the record's bytes, padding and all.
void PrintTo(const Call& call, std::ostream* stream)
{
    *stream << call.name;
}

class GraphTotality : public testing::TestWithParam<Call>
{
};

std::string callName(const testing::TestParamInfo<Call>& info)
{
    return info.param.name;
}

INSTANTIATE_TEST_SUITE_P(Tables, GraphTotality, testing::ValuesIn(kTables), callName);
INSTANTIATE_TEST_SUITE_P(Nodes, GraphTotality, testing::ValuesIn(kNodes), callName);
INSTANTIATE_TEST_SUITE_P(Inputs, GraphTotality, testing::ValuesIn(kInputs), callName);
INSTANTIATE_TEST_SUITE_P(Outputs, GraphTotality, testing::ValuesIn(kOutputs), callName);
INSTANTIATE_TEST_SUITE_P(Edges, GraphTotality, testing::ValuesIn(kEdges), callName);
INSTANTIATE_TEST_SUITE_P(Connecting, GraphTotality, testing::ValuesIn(kConnecting), callName);
INSTANTIATE_TEST_SUITE_P(Walks, GraphTotality, testing::ValuesIn(kWalks), callName);

} // namespace

TEST_P(GraphTotality, TakesBadNumbersAndChangesNothing)
{
    Sample sample;
    const std::string before = graphSnapshot(sample.graph);
    for (const int bad : badNumbers(sample, GetParam().kind)) {
        SCOPED_TRACE(bad);
        const MessageRecorder recorder;
        GetParam().make(sample, bad);
        EXPECT_EQ(recorder.messages().size(), size_t(GetParam().messages));
        ASSERT_EQ(graphSnapshot(sample.graph), before);
    }
}

// Compaction after the root's removal leaves two empty tables, where no number is good.
TEST_P(GraphTotality, TakesBadNumbersWhenNotEvenTheRootIsLeft)
{
    Sample sample;
    const std::vector<int> bads = badNumbers(sample, GetParam().kind);
    sample.graph.removeNode(kRoot);
    sample.graph.purge();
    ASSERT_EQ(sample.graph.numNodesGlobal(), 0);
    ASSERT_EQ(sample.graph.numEdgesGlobal(), 0);
    const MessageRecorder recorder;
    for (const int bad : bads) {
        SCOPED_TRACE(bad);
        GetParam().make(sample, bad);
    }
    EXPECT_EQ(graphSnapshot(sample.graph), "");
    if (GetParam().messages == 0) {
        EXPECT_TRUE(recorder.messages().empty());
    }
}

TEST(GraphTotalityOfNames, AnEdgeBetweenPortsThatAreNotFoundIsNotMade)
{
    Sample s;
    const std::string before = graphSnapshot(s.graph);
    const MessageRecorder recorder;
    const QString none = QStringLiteral("none");
    EXPECT_EQ(s.graph.addEdgeByName(s.a, none, s.b, s.port), -1);
    EXPECT_EQ(s.graph.addEdgeByName(s.a, s.port, s.b, none), -1);
    EXPECT_EQ(s.graph.addDownEdgeByName(none, s.x, s.port), -1);
    EXPECT_EQ(s.graph.addDownEdgeByName(s.port, s.x, none), -1);
    EXPECT_EQ(recorder.messages().size(), 4u);
    EXPECT_EQ(s.graph.addUpEdgeByName(none, s.x, s.port), -1);
    EXPECT_EQ(s.graph.addUpEdgeByName(s.port, s.x, none), -1);
    EXPECT_EQ(recorder.messages().size(), 4u);
    EXPECT_EQ(graphSnapshot(s.graph), before);
}

// The same calls with good numbers, so that it is the bad ones that the table above refuses.
TEST(GraphTotalityOfNames, TheSampleAcceptsGoodNumbers)
{
    EXPECT_NE(Sample().graph.addEdge(1, 1, 3, 1), -1);
    Sample s;
    EXPECT_NE(s.graph.addEdgeByName(s.a, s.port, s.b, s.port), -1);
    EXPECT_NE(s.graph.addUpEdge(1, s.x, 1), -1);
    EXPECT_NE(s.graph.addDownEdge(1, s.x, 1), -1);
    EXPECT_NE(s.graph.addDownEdgeByName(s.port, s.g, s.port), -1);
    Sample t;
    const int edges = t.graph.numEdgesGlobal();
    t.graph.connectGroups(t.a, 0, t.b, 0);
    EXPECT_EQ(t.graph.numEdgesGlobal(), edges + 1);
    t.graph.connectDownByName(t.g);
    EXPECT_EQ(t.graph.numEdgesGlobal(), edges + 2);
    t.graph.connectUpByName(t.x);
    EXPECT_EQ(t.graph.numEdgesGlobal(), edges + 3);
}

TEST(GraphTotalityOfTheRoot, TheRootIsNotJoinedToAParent)
{
    Sample s;
    const std::string before = graphSnapshot(s.graph);
    const MessageRecorder recorder;
    s.graph.connectUpByName(kRoot);
    s.graph.connectDownByName(kRoot);
    EXPECT_EQ(s.graph.addUpEdgeByName(s.port, kRoot, s.port), -1);
    EXPECT_TRUE(recorder.messages().empty());
    EXPECT_EQ(s.graph.addDownEdgeByName(s.port, kRoot, s.port), -1);
    EXPECT_EQ(recorder.messages().size(), 1u);
    EXPECT_EQ(graphSnapshot(s.graph), before);
}

// Removed nodes

TEST(GraphTotalityOfRemovedNodes, QueriesAnswerForTheSlot)
{
    const Sample s;
    EXPECT_EQ(s.graph.parentNode(s.removedNode), kRoot);
    EXPECT_TRUE(s.graph.contains(kRoot, s.removedNode));
    EXPECT_EQ(s.graph.nodeName(s.removedNode), QStringLiteral("removed"));
    EXPECT_EQ(s.graph.findInput(s.removedNode, s.port), 1);
    EXPECT_EQ(s.graph.findOutput(s.removedNode, s.port), 1);
    EXPECT_EQ(s.graph.inputGroupName(s.removedNode, 0), s.group);
    EXPECT_EQ(s.graph.edgeDestNode(s.removedEdge), s.removedNode);
    EXPECT_TRUE(s.graph.precedes(s.removedNode, s.removedNode, true));
}

TEST(GraphTotalityOfRemovedNodes, ANodeThatIsStillListedIsUnlisted)
{
    Sample s;
    s.graph.removeChildNode(s.b);
    ASSERT_EQ(s.graph.indexOfNode(s.b), 2);
    s.graph.removeNode(s.b);
    EXPECT_EQ(s.graph.indexOfNode(s.b), -1);
}

TEST(GraphTotalityOfRemovedNodes, NothingIsMadeInARemovedTree)
{
    Sample s;
    s.graph.removeNode(kRoot);
    const std::string before = graphSnapshot(s.graph);
    EXPECT_EQ(s.graph.addNode(s.port, 1, 1, kRoot), -1);
    EXPECT_EQ(s.graph.addNode(s.port, 1, 1, s.g), -1);
    EXPECT_EQ(s.graph.addInput(kRoot, s.port, -1), -1);
    EXPECT_EQ(s.graph.addEdge(s.a, 1, s.b, 1), -1);
    EXPECT_EQ(graphSnapshot(s.graph), before);
}

// Memory

TEST(GraphTotalityOfMemory, MorePortsThanMemoryHoldsAreRefusedByBadAlloc)
{
    Sample s;
    const std::string before = graphSnapshot(s.graph);
    EXPECT_THROW(s.graph.addNode(s.port, kMax, 0, kRoot), std::bad_alloc);
    EXPECT_EQ(graphSnapshot(s.graph), before);
    EXPECT_THROW(s.graph.addNode(s.port, 0, kMax, kRoot), std::bad_alloc);
    EXPECT_EQ(graphSnapshot(s.graph), before);
    EXPECT_THROW(s.graph.addNode(s.port, 3, kMax, s.g), std::bad_alloc);
    EXPECT_EQ(graphSnapshot(s.graph), before);
    const int next = s.graph.numNodesGlobal();
    EXPECT_EQ(s.graph.addNode(s.port, 1, 1, kRoot), next);
}

// A tree left inconsistent: compaction keeps the parents as the numbers that they were.

namespace {

// Nodes 1 to 4 with two ports a side, of which 3 and 4 are each the other's parent, as told by
// parentNode(); the children are listed by the rule of compaction.
struct ParentCycle
{
    ParentCycle()
    {
        const int gone = add(kRoot);
        const int goneToo = add(kRoot);
        add(kRoot);
        const int late = add(kRoot);
        const int early = late - 1;
        add(late);  // becomes 3
        add(early); // becomes 4
        graph.removeNode(gone);
        graph.removeNode(goneToo);
        graph.purge();
    }
    int add(int parent) { return graph.addNode(QString(), 2, 2, parent); }

    Graph graph;
    const int p = 3;
    const int q = 4;
};

// Node 2 is its own parent.
struct OwnParent
{
    OwnParent()
    {
        const int gone = graph.addNode(QString(), 0, 0, kRoot);
        const int outer = graph.addNode(QString(), 2, 2, kRoot);
        graph.addNode(QString(), 2, 2, outer);
        graph.removeNode(gone);
        graph.purge();
    }

    Graph graph;
    const int node = 2;
};

// Whether the walk ends is all that is asked; it shall end at a port that exists.
void expectEnds(const Graph& graph, Walk walk, int node, int port)
{
    (graph.*walk)(node, port);
    EXPECT_TRUE(graph.isValidNode(node));
    EXPECT_TRUE(graph.isValidInput(node, port));
}

} // namespace

TEST(GraphTotalityOfCycles, TheSamplesAreWhatTheySay)
{
    const ParentCycle two;
    ASSERT_EQ(two.graph.numNodesGlobal(), 5);
    EXPECT_EQ(two.graph.parentNode(two.p), two.q);
    EXPECT_EQ(two.graph.parentNode(two.q), two.p);
    const OwnParent one;
    ASSERT_EQ(one.graph.numNodesGlobal(), 3);
    EXPECT_EQ(one.graph.parentNode(one.node), one.node);
}

TEST(GraphTotalityOfCycles, ContainsEnds)
{
    const ParentCycle two;
    EXPECT_FALSE(two.graph.contains(kRoot, two.p));
    EXPECT_FALSE(two.graph.contains(1, two.q));
    EXPECT_TRUE(two.graph.contains(two.q, two.p));
    const OwnParent one;
    EXPECT_FALSE(one.graph.contains(kRoot, one.node));
    EXPECT_FALSE(one.graph.contains(1, one.node));
}

TEST(GraphTotalityOfCycles, WalksEnd)
{
    ParentCycle two;
    ASSERT_NE(two.graph.addDownEdge(0, two.p, 0), -1);
    ASSERT_NE(two.graph.addDownEdge(0, two.q, 0), -1);
    ASSERT_NE(two.graph.addUpEdge(0, two.p, 0), -1);
    ASSERT_NE(two.graph.addUpEdge(0, two.q, 0), -1);
    OwnParent one;
    ASSERT_NE(one.graph.addDownEdge(0, one.node, 0), -1);
    ASSERT_NE(one.graph.addUpEdge(0, one.node, 0), -1);
    for (const Walk walk :
         {&Graph::walkUp, &Graph::walkAcross, &Graph::walkDown, &Graph::walkToSourceNode}) {
        expectEnds(two.graph, walk, two.p, 0);
        expectEnds(two.graph, walk, two.q, 0);
        expectEnds(one.graph, walk, one.node, 0);
    }
}

TEST(GraphTotalityOfCycles, PrecedesEnds)
{
    ParentCycle two;
    two.graph.addDownEdge(0, two.p, 0);
    two.graph.addDownEdge(0, two.q, 0);
    two.graph.addUpEdge(0, two.p, 0);
    two.graph.addUpEdge(0, two.q, 0);
    EXPECT_FALSE(two.graph.precedes(1, two.p, true));
    EXPECT_FALSE(two.graph.precedes(1, two.p, false));
    OwnParent one;
    one.graph.addDownEdge(0, one.node, 0);
    EXPECT_FALSE(one.graph.precedes(1, one.node, true));
}

TEST(GraphTotalityOfCycles, RemovingANodeEnds)
{
    ParentCycle two;
    two.graph.addDownEdge(0, two.p, 0);
    two.graph.addUpEdge(0, two.q, 0);
    two.graph.removeNode(two.p);
    EXPECT_FALSE(two.graph.isValidNode(two.p));
    OwnParent one;
    one.graph.removeNode(one.node);
    EXPECT_FALSE(one.graph.isValidNode(one.node));
}

// The root's only child becomes the slot 0, the root itself.
TEST(GraphTotalityOfCycles, RemovingANodeThatIsItsOwnChildEnds)
{
    Graph graph;
    graph.addNode(QString(), 0, 0, kRoot);
    graph.purge();
    ASSERT_EQ(graph.getNode(0, kRoot), kRoot);
    graph.removeNode(kRoot);
    EXPECT_FALSE(graph.isValidNode(kRoot));
}

TEST(GraphTotalityOfCycles, RemovingNodesThatAreEachOthersChildrenEnds)
{
    SampleGraph s;
    s.graph.purge();
    s.graph.purge();
    ASSERT_EQ(s.graph.getNode(0, s.g), kRoot);
    ASSERT_EQ(s.graph.getNode(1, s.g), s.a);
    ASSERT_EQ(s.graph.getNode(2, kRoot), s.g);
    s.graph.removeNode(s.g);
    for (const int node : {kRoot, s.a, s.g})
        EXPECT_FALSE(s.graph.isValidNode(node)) << node;
    EXPECT_TRUE(s.graph.isValidNode(s.b));
}

// A position among the children may name nothing after compaction.
TEST(GraphTotalityOfCycles, AnEmptyPositionAmongTheChildrenIsNoNode)
{
    Graph graph;
    const int gone = graph.addNode(QStringLiteral("gone"), 0, 0, kRoot);
    for (int i = 0; i < 3; ++i)
        graph.addNode(QStringLiteral("node"), 0, 0, kRoot);
    graph.removeNode(gone);
    graph.purge();
    ASSERT_EQ(graph.numNodes(kRoot), 3);
    ASSERT_EQ(graph.getNode(1, kRoot), -1);
    EXPECT_EQ(graph.findNode(QString(), kRoot), kRoot);
    graph.setNodeName(kRoot, QStringLiteral("root"));
    EXPECT_EQ(graph.findNode(QString(), kRoot), -1);
    EXPECT_EQ(graph.findNode(QStringLiteral("node"), kRoot), 1);
    graph.setNodeValue(kRoot, 0);
    EXPECT_EQ(graph.findNodeFromValue(-1, kRoot), 1);
    graph.removeNode(kRoot);
    EXPECT_FALSE(graph.isValidNode(kRoot));
    EXPECT_FALSE(graph.isValidNode(1));
}

TEST(GraphTotalityOfCycles, ANodeWhoseParentNumberIsPastTheTableIsLikeARoot)
{
    Graph graph;
    for (int i = 0; i < 3; ++i)
        graph.addNode(QString(), 0, 0, kRoot);
    const int parent = graph.addNode(QString(), 1, 1, kRoot);
    graph.addNode(QString(), 1, 1, parent);
    for (const int node : {1, 2, 3})
        graph.removeNode(node);
    graph.purge();
    const int child = 2;
    ASSERT_EQ(graph.numNodesGlobal(), 3);
    ASSERT_EQ(graph.parentNode(child), 4);
    const std::string before = graphSnapshot(graph);
    EXPECT_EQ(graph.indexOfNode(child), -1);
    EXPECT_FALSE(graph.contains(kRoot, child));
    EXPECT_TRUE(graph.contains(4, child));
    EXPECT_EQ(graph.addUpEdge(0, child, 0), -1);
    EXPECT_EQ(graph.addDownEdge(0, child, 0), -1);
    graph.connectUpByName(child);
    graph.connectDownByName(child);
    EXPECT_EQ(graphSnapshot(graph), before);
    graph.removeNode(child);
    EXPECT_FALSE(graph.isValidNode(child));
    EXPECT_TRUE(graph.isValidNode(1));
}
