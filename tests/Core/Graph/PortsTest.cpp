// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "support/GraphSnapshot.h"

#include <Kestrin/Orv/Graph.h>

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

using Kestrin::Orv::Graph;

namespace {

const int kRoot = Graph::kRootNodeRef;
const int kMin = std::numeric_limits<int>::min();
const int kMax = std::numeric_limits<int>::max();

// What inputs and outputs do alike is tested once, on both sides of a node.
struct Inputs
{
    static int add(Graph& g, int node, const QString& name, int group)
    {
        return g.addInput(node, name, group);
    }
    static void remove(Graph& g, int node, int port) { g.removeInput(node, port); }
    static int count(const Graph& g, int node) { return g.numInputs(node); }
    static int countOther(const Graph& g, int node) { return g.numOutputs(node); }
    static int find(const Graph& g, int node, const QString& name)
    {
        return g.findInput(node, name);
    }
    static int findOther(const Graph& g, int node, const QString& name)
    {
        return g.findOutput(node, name);
    }
    static QString name(const Graph& g, int node, int port) { return g.inputName(node, port); }
    static void setName(Graph& g, int node, int port, const QString& name)
    {
        g.setInputName(node, port, name);
    }
    static int group(const Graph& g, int node, int port) { return g.inputGroup(node, port); }
    static int source(const Graph& g, int node, int port) { return g.inputSource(node, port); }
    static int countDestinations(const Graph& g, int node, int port)
    {
        return g.numInputDestinations(node, port);
    }
    static void removeGroup(Graph& g, int node, int group) { g.removeInputGroup(node, group); }
};

struct Outputs
{
    static int add(Graph& g, int node, const QString& name, int group)
    {
        return g.addOutput(node, name, group);
    }
    static void remove(Graph& g, int node, int port) { g.removeOutput(node, port); }
    static int count(const Graph& g, int node) { return g.numOutputs(node); }
    static int countOther(const Graph& g, int node) { return g.numInputs(node); }
    static int find(const Graph& g, int node, const QString& name)
    {
        return g.findOutput(node, name);
    }
    static int findOther(const Graph& g, int node, const QString& name)
    {
        return g.findInput(node, name);
    }
    static QString name(const Graph& g, int node, int port) { return g.outputName(node, port); }
    static void setName(Graph& g, int node, int port, const QString& name)
    {
        g.setOutputName(node, port, name);
    }
    static int group(const Graph& g, int node, int port) { return g.outputGroup(node, port); }
    static int source(const Graph& g, int node, int port) { return g.outputSource(node, port); }
    static int countDestinations(const Graph& g, int node, int port)
    {
        return g.numOutputDestinations(node, port);
    }
    static void removeGroup(Graph& g, int node, int group) { g.removeOutputGroup(node, group); }
};

template<typename Side>
class GraphPorts : public testing::Test
{
protected:
    std::vector<std::string> names() const
    {
        std::vector<std::string> all;
        for (int i = 0; i < Side::count(graph, node); ++i)
            all.push_back(Side::name(graph, node, i).toStdString());
        return all;
    }
    std::vector<int> groups() const
    {
        std::vector<int> all;
        for (int i = 0; i < Side::count(graph, node); ++i)
            all.push_back(Side::group(graph, node, i));
        return all;
    }

    Graph graph;
    int node = graph.addNode(QStringLiteral("node"), 2, 2, kRoot);
};

struct SideNames
{
    template<typename Side>
    static std::string GetName(int index)
    {
        return index == 0 ? "Inputs" : "Outputs";
    }
};

using Names = std::vector<std::string>;

} // namespace

using BothSides = testing::Types<Inputs, Outputs>;
TYPED_TEST_SUITE(GraphPorts, BothSides, SideNames);

TYPED_TEST(GraphPorts, ANewPortIsTheLastOne)
{
    EXPECT_EQ(TypeParam::add(this->graph, this->node, QStringLiteral("new"), 4), 2);
    EXPECT_EQ(TypeParam::count(this->graph, this->node), 3);
    EXPECT_EQ(TypeParam::add(this->graph, this->node, QStringLiteral("newer"), -1), 3);
    EXPECT_EQ(this->names(), (Names{"", "", "new", "newer"}));
    EXPECT_EQ(this->groups(), (std::vector<int>{-1, -1, 4, -1}));
}

TYPED_TEST(GraphPorts, ANewPortIsUnconnected)
{
    const int port = TypeParam::add(this->graph, this->node, QStringLiteral("new"), 0);
    EXPECT_EQ(TypeParam::source(this->graph, this->node, port), -1);
    EXPECT_EQ(TypeParam::countDestinations(this->graph, this->node, port), 0);
}

TYPED_TEST(GraphPorts, ANewPortChangesNothingOnTheOtherSide)
{
    TypeParam::add(this->graph, this->node, QStringLiteral("new"), 0);
    EXPECT_EQ(TypeParam::countOther(this->graph, this->node), 2);
}

TYPED_TEST(GraphPorts, AGroupIsKeptAsGivenNamedOrNot)
{
    for (const int group : {kMin, -2, -1, 0, 99, kMax}) {
        const int port = TypeParam::add(this->graph, this->node, QString(), group);
        EXPECT_EQ(TypeParam::group(this->graph, this->node, port), group);
    }
    EXPECT_EQ(this->graph.numInputGroups(this->node), 0);
}

TYPED_TEST(GraphPorts, FindingTakesTheFirstOfSeveral)
{
    TypeParam::add(this->graph, this->node, QStringLiteral("twin"), 0);
    TypeParam::add(this->graph, this->node, QStringLiteral("twin"), 1);
    EXPECT_EQ(TypeParam::find(this->graph, this->node, QStringLiteral("twin")), 2);
}

TYPED_TEST(GraphPorts, FindingTheEmptyNameTakesTheFirstThatWasNeverNamed)
{
    EXPECT_EQ(TypeParam::find(this->graph, this->node, QString()), 0);
    EXPECT_EQ(TypeParam::find(this->graph, this->node, QStringLiteral("")), 0);
    TypeParam::setName(this->graph, this->node, 0, QStringLiteral("named"));
    EXPECT_EQ(TypeParam::find(this->graph, this->node, QString()), 1);
    TypeParam::setName(this->graph, this->node, 1, QStringLiteral("named"));
    EXPECT_EQ(TypeParam::find(this->graph, this->node, QString()), -1);
}

TYPED_TEST(GraphPorts, FindingIsExact)
{
    TypeParam::setName(this->graph, this->node, 0, QStringLiteral("Color"));
    for (const QString& name : {QStringLiteral("color"), QStringLiteral("COLOR"),
                                QStringLiteral("Colo"), QStringLiteral("Color ")})
        EXPECT_EQ(TypeParam::find(this->graph, this->node, name), -1) << name.toStdString();
    EXPECT_EQ(TypeParam::find(this->graph, this->node, QStringLiteral("Color")), 0);
}

TYPED_TEST(GraphPorts, FindingLooksAtOneNodeAndOneSide)
{
    const int child = this->graph.addNode(QStringLiteral("child"), 1, 1, this->node);
    TypeParam::setName(this->graph, this->node, 0, QStringLiteral("port"));
    EXPECT_EQ(TypeParam::find(this->graph, child, QStringLiteral("port")), -1);
    EXPECT_EQ(TypeParam::find(this->graph, kRoot, QStringLiteral("port")), -1);
    EXPECT_EQ(TypeParam::findOther(this->graph, this->node, QStringLiteral("port")), -1);
    EXPECT_EQ(TypeParam::find(this->graph, this->node, QStringLiteral("port")), 0);
}

TYPED_TEST(GraphPorts, NoPortIsFoundInAnEmptyList)
{
    EXPECT_EQ(TypeParam::find(this->graph, kRoot, QString()), -1);
}

TYPED_TEST(GraphPorts, ANameIsReplaced)
{
    TypeParam::setName(this->graph, this->node, 1, QStringLiteral("first"));
    TypeParam::setName(this->graph, this->node, 1, QStringLiteral("second"));
    EXPECT_EQ(this->names(), (Names{"", "second"}));
    EXPECT_EQ(TypeParam::find(this->graph, this->node, QStringLiteral("first")), -1);
}

TYPED_TEST(GraphPorts, ANameIsACopy)
{
    QString name = QStringLiteral("port");
    const int port = TypeParam::add(this->graph, this->node, name, -1);
    name[0] = QLatin1Char('x');
    QString answer = TypeParam::name(this->graph, this->node, port);
    answer[0] = QLatin1Char('y');
    EXPECT_EQ(TypeParam::name(this->graph, this->node, port), QStringLiteral("port"));
}

TYPED_TEST(GraphPorts, RemovingAPortMovesTheLaterOnesDown)
{
    TypeParam::setName(this->graph, this->node, 0, QStringLiteral("a"));
    TypeParam::setName(this->graph, this->node, 1, QStringLiteral("b"));
    TypeParam::add(this->graph, this->node, QStringLiteral("c"), 7);
    TypeParam::remove(this->graph, this->node, 0);
    EXPECT_EQ(this->names(), (Names{"b", "c"}));
    EXPECT_EQ(this->groups(), (std::vector<int>{-1, 7}));
    EXPECT_EQ(TypeParam::countOther(this->graph, this->node), 2);
}

TYPED_TEST(GraphPorts, TheLastPortCanBeRemoved)
{
    TypeParam::setName(this->graph, this->node, 0, QStringLiteral("a"));
    TypeParam::remove(this->graph, this->node, 1);
    EXPECT_EQ(this->names(), (Names{"a"}));
    TypeParam::remove(this->graph, this->node, 0);
    EXPECT_EQ(this->names(), Names());
}

TYPED_TEST(GraphPorts, RemovingAGroupTakesItsPortsOutOfIt)
{
    for (const int group : {0, 1, 0, 2})
        TypeParam::add(this->graph, this->node, QString(), group);
    this->graph.addInputGroup(this->node, QStringLiteral("g0"));
    this->graph.addInputGroup(this->node, QStringLiteral("g1"));
    this->graph.addInputGroup(this->node, QStringLiteral("g2"));
    TypeParam::removeGroup(this->graph, this->node, 0);
    EXPECT_EQ(this->groups(), (std::vector<int>{-1, -1, -1, 1, -1, 2}));
}

TYPED_TEST(GraphPorts, RemovingAGroupWithoutANameUngroupsItsPortsOnly)
{
    TypeParam::add(this->graph, this->node, QString(), 5);
    TypeParam::add(this->graph, this->node, QString(), 6);
    TypeParam::add(this->graph, this->node, QString(), -7);
    this->graph.addInputGroup(this->node, QStringLiteral("g0"));
    TypeParam::removeGroup(this->graph, this->node, 5);
    EXPECT_EQ(this->groups(), (std::vector<int>{-1, -1, -1, 6, -7}));
    TypeParam::removeGroup(this->graph, this->node, -7);
    EXPECT_EQ(this->groups(), (std::vector<int>{-1, -1, -1, 6, -1}));
    EXPECT_EQ(this->graph.numInputGroups(this->node), 1);
}

TYPED_TEST(GraphPorts, RemovingTheGroupMinusOneChangesNothing)
{
    TypeParam::add(this->graph, this->node, QString(), 0);
    this->graph.addInputGroup(this->node, QStringLiteral("g0"));
    const std::string before = graphSnapshot(this->graph);
    TypeParam::removeGroup(this->graph, this->node, -1);
    EXPECT_EQ(graphSnapshot(this->graph), before);
}

TEST(GraphPortRemoval, RemovingAnInputLeavesTheEdgesAsTheyAre)
{
    Graph graph;
    const int src = graph.addNode(QStringLiteral("src"), 0, 1, kRoot);
    const int dst = graph.addNode(QStringLiteral("dst"), 3, 0, kRoot);
    const int first = graph.addEdge(src, 0, dst, 0);
    const int second = graph.addEdge(src, 0, dst, 1);
    graph.setInputName(dst, 1, QStringLiteral("one"));
    graph.removeInput(dst, 0);
    EXPECT_EQ(graph.inputName(dst, 0), QStringLiteral("one"));
    EXPECT_EQ(graph.inputSource(dst, 0), second);
    EXPECT_EQ(graph.inputSource(dst, 1), -1);
    EXPECT_TRUE(graph.isValidEdge(first));
    EXPECT_TRUE(graph.isValidEdge(second));
    EXPECT_EQ(graph.edgeDestIndex(first), 0);
    EXPECT_EQ(graph.edgeDestIndex(second), 1);
    EXPECT_EQ(graph.numOutputDestinations(src, 0), 2);
}

TEST(GraphPortRemoval, RemovingAnOutputLeavesTheEdgesAsTheyAre)
{
    Graph graph;
    const int src = graph.addNode(QStringLiteral("src"), 0, 2, kRoot);
    const int dst = graph.addNode(QStringLiteral("dst"), 2, 0, kRoot);
    const int first = graph.addEdge(src, 0, dst, 0);
    const int second = graph.addEdge(src, 1, dst, 1);
    graph.removeOutput(src, 0);
    EXPECT_EQ(graph.numOutputDestinations(src, 0), 1);
    EXPECT_EQ(graph.outputDestination(src, 0, 0), second);
    EXPECT_TRUE(graph.isValidEdge(first));
    EXPECT_EQ(graph.edgeSourceIndex(first), 0);
    EXPECT_EQ(graph.edgeSourceIndex(second), 1);
    EXPECT_EQ(graph.inputSource(dst, 0), first);
    EXPECT_EQ(graph.inputSource(dst, 1), second);
}

// The old index of the edge names the port that has moved there, so that one is unhooked.
TEST(GraphPortRemoval, RemovingAnEdgeOfALaterInputUnhooksThePortAtItsOldIndex)
{
    Graph graph;
    const int src = graph.addNode(QStringLiteral("src"), 0, 1, kRoot);
    const int dst = graph.addNode(QStringLiteral("dst"), 3, 0, kRoot);
    graph.addEdge(src, 0, dst, 0);
    const int second = graph.addEdge(src, 0, dst, 1);
    const int third = graph.addEdge(src, 0, dst, 2);
    graph.removeInput(dst, 0);
    graph.removeEdge(second);
    EXPECT_FALSE(graph.isValidEdge(second));
    EXPECT_EQ(graph.inputSource(dst, 0), second);
    EXPECT_EQ(graph.inputSource(dst, 1), -1);
    EXPECT_TRUE(graph.isValidEdge(third));
}

TEST(GraphPortRemoval, RemovingAnEdgeWhosePortsAreGoneRemovesTheEdge)
{
    Graph graph;
    const int src = graph.addNode(QStringLiteral("src"), 0, 1, kRoot);
    const int dst = graph.addNode(QStringLiteral("dst"), 1, 0, kRoot);
    const int edge = graph.addEdge(src, 0, dst, 0);
    graph.removeInput(dst, 0);
    graph.removeOutput(src, 0);
    graph.removeEdge(edge);
    EXPECT_FALSE(graph.isValidEdge(edge));
}

// An input that moved into a place that an edge still names is disconnected through its own source.
TEST(GraphPortRemoval, DisconnectingAnInputThatHasMovedRemovesItsOwnEdge)
{
    Graph graph;
    const int src = graph.addNode(QStringLiteral("src"), 0, 1, kRoot);
    const int dst = graph.addNode(QStringLiteral("dst"), 2, 0, kRoot);
    const int first = graph.addEdge(src, 0, dst, 0);
    const int second = graph.addEdge(src, 0, dst, 1);
    graph.removeInput(dst, 0);
    graph.disconnectInput(dst, 0);
    EXPECT_FALSE(graph.isValidEdge(second));
    EXPECT_TRUE(graph.isValidEdge(first));
    EXPECT_EQ(graph.numOutputDestinations(src, 0), 1);
    // The edge named input 1, which is no more: the input keeps the removed edge as its source.
    EXPECT_EQ(graph.inputSource(dst, 0), second);
}

TEST(GraphPortGroups, GroupsAreNumberedInTheOrderOfTheirCreation)
{
    Graph graph;
    const int node = graph.addNode(QStringLiteral("node"), 0, 0, kRoot);
    EXPECT_EQ(graph.addInputGroup(node, QStringLiteral("a")), 0);
    EXPECT_EQ(graph.addInputGroup(node, QStringLiteral("b")), 1);
    EXPECT_EQ(graph.numInputGroups(node), 2);
    EXPECT_EQ(graph.inputGroupName(node, 0), QStringLiteral("a"));
    EXPECT_EQ(graph.inputGroupName(node, 1), QStringLiteral("b"));
    EXPECT_EQ(graph.numInputGroups(kRoot), 0);
}

TEST(GraphPortGroups, FindingTakesTheFirstOfSeveral)
{
    Graph graph;
    graph.addInputGroup(kRoot, QStringLiteral("other"));
    graph.addInputGroup(kRoot, QStringLiteral("twin"));
    EXPECT_EQ(graph.addInputGroup(kRoot, QStringLiteral("twin")), 2);
    EXPECT_EQ(graph.findInputGroup(kRoot, QStringLiteral("twin")), 1);
}

TEST(GraphPortGroups, FindingIsExact)
{
    Graph graph;
    EXPECT_EQ(graph.findInputGroup(kRoot, QString()), -1);
    graph.addInputGroup(kRoot, QStringLiteral("Group"));
    EXPECT_EQ(graph.findInputGroup(kRoot, QStringLiteral("group")), -1);
    EXPECT_EQ(graph.findInputGroup(kRoot, QStringLiteral("Group ")), -1);
    EXPECT_EQ(graph.findInputGroup(kRoot, QString()), -1);
    EXPECT_EQ(graph.findInputGroup(kRoot, QStringLiteral("Group")), 0);
    graph.addInputGroup(kRoot, QString());
    EXPECT_EQ(graph.findInputGroup(kRoot, QStringLiteral("")), 1);
}

TEST(GraphPortGroups, ANameIsReplaced)
{
    Graph graph;
    graph.addInputGroup(kRoot, QStringLiteral("a"));
    graph.addInputGroup(kRoot, QStringLiteral("b"));
    graph.setInputGroupName(kRoot, 1, QStringLiteral("c"));
    EXPECT_EQ(graph.inputGroupName(kRoot, 0), QStringLiteral("a"));
    EXPECT_EQ(graph.inputGroupName(kRoot, 1), QStringLiteral("c"));
    EXPECT_EQ(graph.findInputGroup(kRoot, QStringLiteral("b")), -1);
}

TEST(GraphPortGroups, InputAndOutputGroupsAreNumberedInOneSequence)
{
    Graph graph;
    EXPECT_EQ(graph.addInputGroup(kRoot, QStringLiteral("in")), 0);
    EXPECT_EQ(graph.addOutputGroup(kRoot, QStringLiteral("out")), 1);
    EXPECT_EQ(graph.addInputGroup(kRoot, QStringLiteral("in again")), 2);
}

TEST(GraphPortGroups, AnOutputGroupIsFoundAmongTheInputGroups)
{
    Graph graph;
    EXPECT_EQ(graph.addOutputGroup(kRoot, QStringLiteral("out")), 0);
    EXPECT_EQ(graph.findInputGroup(kRoot, QStringLiteral("out")), 0);
    EXPECT_EQ(graph.numInputGroups(kRoot), 1);
    EXPECT_EQ(graph.inputGroupName(kRoot, 0), QStringLiteral("out"));
    EXPECT_TRUE(graph.isValidInputGroup(kRoot, 0));
}

TEST(GraphPortGroups, TheOutputGroupsStayEmpty)
{
    Graph graph;
    graph.addOutputGroup(kRoot, QStringLiteral("out"));
    graph.addOutput(kRoot, QStringLiteral("port"), 0);
    EXPECT_EQ(graph.numOutputGroups(kRoot), 0);
    EXPECT_EQ(graph.findOutputGroup(kRoot, QStringLiteral("out")), -1);
    EXPECT_FALSE(graph.isValidOutputGroup(kRoot, 0));
    EXPECT_TRUE(graph.outputGroupName(kRoot, 0).isEmpty());
}

TEST(GraphPortGroups, RenamingAnOutputGroupChangesNothing)
{
    Graph graph;
    graph.addOutputGroup(kRoot, QStringLiteral("out"));
    const std::string before = graphSnapshot(graph);
    graph.setOutputGroupName(kRoot, 0, QStringLiteral("renamed"));
    EXPECT_EQ(graphSnapshot(graph), before);
}

TEST(GraphPortGroups, RemovingAnInputGroupMovesTheLaterNamesUpButNotTheInputs)
{
    Graph graph;
    const int node = graph.addNode(QStringLiteral("node"), 0, 0, kRoot);
    graph.addInputGroup(node, QStringLiteral("a"));
    graph.addInputGroup(node, QStringLiteral("b"));
    graph.addInput(node, QStringLiteral("in a"), 0);
    graph.addInput(node, QStringLiteral("in b"), 1);
    graph.addInput(node, QStringLiteral("in a too"), 0);
    graph.removeInputGroup(node, 0);
    EXPECT_EQ(graph.numInputGroups(node), 1);
    EXPECT_EQ(graph.inputGroupName(node, 0), QStringLiteral("b"));
    EXPECT_EQ(graph.inputGroup(node, 0), -1);
    EXPECT_EQ(graph.inputGroup(node, 1), 1);
    EXPECT_EQ(graph.inputGroup(node, 2), -1);
    EXPECT_FALSE(graph.isValidInputGroup(node, graph.inputGroup(node, 1)));
}

TEST(GraphPortGroups, RemovingAnInputGroupLeavesTheOutputsInTheirs)
{
    Graph graph;
    graph.addInputGroup(kRoot, QStringLiteral("a"));
    graph.addInput(kRoot, QStringLiteral("in"), 0);
    graph.addOutput(kRoot, QStringLiteral("out"), 0);
    graph.removeInputGroup(kRoot, 0);
    EXPECT_EQ(graph.inputGroup(kRoot, 0), -1);
    EXPECT_EQ(graph.outputGroup(kRoot, 0), 0);
}

TEST(GraphPortGroups, RemovingTheMiddleInputGroupDeletesItsNameOnly)
{
    Graph graph;
    for (const QString& name : {QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c")})
        graph.addInputGroup(kRoot, name);
    graph.removeInputGroup(kRoot, 1);
    EXPECT_EQ(graph.numInputGroups(kRoot), 2);
    EXPECT_EQ(graph.inputGroupName(kRoot, 0), QStringLiteral("a"));
    EXPECT_EQ(graph.inputGroupName(kRoot, 1), QStringLiteral("c"));
}

TEST(GraphPortGroups, RemovingAnOutputGroupUngroupsItsOutputsAndNothingElse)
{
    Graph graph;
    const int group = graph.addOutputGroup(kRoot, QStringLiteral("group"));
    graph.addInput(kRoot, QStringLiteral("in"), group);
    graph.addOutput(kRoot, QStringLiteral("out"), group);
    graph.addOutput(kRoot, QStringLiteral("other"), group + 1);
    graph.addOutput(kRoot, QStringLiteral("too"), group);
    graph.removeOutputGroup(kRoot, group);
    EXPECT_EQ(graph.outputGroup(kRoot, 0), -1);
    EXPECT_EQ(graph.outputGroup(kRoot, 1), group + 1);
    EXPECT_EQ(graph.outputGroup(kRoot, 2), -1);
    EXPECT_EQ(graph.inputGroup(kRoot, 0), group);
    EXPECT_EQ(graph.numInputGroups(kRoot), 1);
    EXPECT_EQ(graph.findInputGroup(kRoot, QStringLiteral("group")), 0);
}

TEST(GraphPortGroups, RemovingAGroupLeavesTheEdgesOfItsInputs)
{
    Graph graph;
    const int src = graph.addNode(QStringLiteral("src"), 0, 1, kRoot);
    const int dst = graph.addNode(QStringLiteral("dst"), 0, 0, kRoot);
    const int group = graph.addInputGroup(dst, QStringLiteral("group"));
    const int input = graph.addInput(dst, QStringLiteral("in"), group);
    const int edge = graph.addEdge(src, 0, dst, input);
    graph.removeInputGroup(dst, group);
    EXPECT_EQ(graph.inputSource(dst, input), edge);
    EXPECT_TRUE(graph.isValidEdge(edge));
}
