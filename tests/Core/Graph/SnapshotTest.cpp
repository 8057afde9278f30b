// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "support/GraphSnapshot.h"

#include "support/SampleGraph.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>

using Kestrin::Orv::Graph;

namespace {

// One change of a sample graph that a query can tell.
struct Change
{
    const char* name;
    std::function<void(SampleGraph&)> apply;
};

class GraphSnapshotChanges : public testing::TestWithParam<Change>
{
};

const Change kChanges[] = {
    {"AddNode", [](SampleGraph& s) { s.graph.addNode(QString(), 0, 0, s.x); }},
    {"RemoveNode", [](SampleGraph& s) { s.graph.removeNode(s.b); }},
    {"RemoveChildNode", [](SampleGraph& s) { s.graph.removeChildNode(s.b); }},
    {"NodeName", [](SampleGraph& s) { s.graph.setNodeName(s.a, QStringLiteral("A")); }},
    {"NodeValue", [](SampleGraph& s) { s.graph.setNodeValue(s.a, 0); }},
    {"AddInput", [](SampleGraph& s) { s.graph.addInput(s.a, QString(), -1); }},
    {"AddOutput", [](SampleGraph& s) { s.graph.addOutput(s.a, QString(), -1); }},
    {"InputName", [](SampleGraph& s) { s.graph.setInputName(s.a, 0, QStringLiteral("in")); }},
    {"OutputName", [](SampleGraph& s) { s.graph.setOutputName(s.a, 0, QStringLiteral("out")); }},
    {"RemoveInput", [](SampleGraph& s) { s.graph.removeInput(s.a, 0); }},
    {"RemoveOutput", [](SampleGraph& s) { s.graph.removeOutput(s.b, 0); }},
    {"AddInputGroup", [](SampleGraph& s) { s.graph.addInputGroup(s.a, QString()); }},
    {"AddOutputGroup", [](SampleGraph& s) { s.graph.addOutputGroup(s.a, QString()); }},
    {"AddDownEdge",
     [](SampleGraph& s) { s.graph.addDownEdge(0, s.y, s.graph.addInput(s.y, QString(), -1)); }},
    {"RemoveRegularEdge", [](SampleGraph& s) { s.graph.removeEdge(s.aToG); }},
    {"RemoveDownEdge", [](SampleGraph& s) { s.graph.removeEdge(s.gToX); }},
    {"RemoveUpEdge", [](SampleGraph& s) { s.graph.removeEdge(s.yToG); }},
};

INSTANTIATE_TEST_SUITE_P(Tells, GraphSnapshotChanges, testing::ValuesIn(kChanges),
                         [](const auto& change) { return std::string(change.param.name); });

} // namespace

TEST_P(GraphSnapshotChanges, ShowInTheSnapshot)
{
    SampleGraph sample;
    const std::string before = graphSnapshot(sample.graph);
    GetParam().apply(sample);
    EXPECT_NE(graphSnapshot(sample.graph), before);
}

TEST(GraphSnapshot, IsTheSameForEqualGraphs)
{
    const SampleGraph first;
    const SampleGraph second;
    EXPECT_EQ(graphSnapshot(first.graph), graphSnapshot(second.graph));
}

TEST(GraphSnapshot, ListsEverySlot)
{
    Graph graph;
    graph.addInput(Graph::kRootNodeRef, QStringLiteral("p"), -1);
    const int node = graph.addNode(QStringLiteral("it's"), 0, 0, Graph::kRootNodeRef);
    graph.addInputGroup(node, QStringLiteral("group"));
    graph.addInput(node, QStringLiteral("in"), 0);
    graph.addDownEdge(0, node, 0);
    graph.addNode(QStringLiteral("gone"), 0, 0, Graph::kRootNodeRef);
    graph.removeNode(2);
    EXPECT_EQ(graphSnapshot(graph),
              "node 0 '' parent -1 position -1 value -1 children 1\n"
              "  input 0 'p' group -1 source -1 destinations 0\n"
              "node 1 'it\\'s' parent 0 position 0 value -1 children\n"
              "  input 0 'in' group 0 source 0 destinations\n"
              "  input group 0 'group'\n"
              "node 2 'gone' removed parent 0 position -1 value -1 children\n"
              "edge 0 down 0.0 -> 1.0\n");
}
