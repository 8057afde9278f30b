// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

// Compaction leaves the hierarchy fields by a rule of their own: lists of children that are no
// tree, parents that are their own children, edges that are of no kind or of two. Every operation
// still ends and stays inside the tables.

#include <Kestrin/Orv/Graph.h>
#include <Kestrin/Orv/Graphviz.h>
#include <Kestrin/Orv/Walkers.h>

#include "support/GraphLists.h"
#include "support/GraphSnapshot.h"
#include "support/MessageRecorder.h"
#include "support/SmallStack.h"

#include <gtest/gtest.h>

#include <QtCore/QStringList>

#include <algorithm>
#include <climits>
#include <random>
#include <vector>

using Kestrin::Orv::BottomUpInputWalker;
using Kestrin::Orv::BottomUpSubgraphWalker;
using Kestrin::Orv::BreadthFirstInputWalker;
using Kestrin::Orv::Graph;

namespace {

const int kRoot = Graph::kRootNodeRef;

/// A graph whose node `self` is its own parent and holds the ref 2.
struct SelfParent
{
    SelfParent()
    {
        graph.addNode(QString(), 0, 0, kRoot);
        const int group = graph.addNode(QStringLiteral("parent"), 2, 2, kRoot);
        const int child = graph.addNode(QStringLiteral("self"), 2, 2, group);
        graph.setInputName(group, 0, QStringLiteral("in"));
        graph.setInputName(group, 1, QStringLiteral("in"));
        graph.addDownEdge(0, child, 0);
        graph.removeNode(1);
        graph.purge();
    }
    Graph graph;
    const int parent = 1;
    const int self = 2;
};

/// Nodes 3 and 4 are each other's parents.
struct MutualParents
{
    MutualParents()
    {
        graph.addNode(QString(), 0, 0, kRoot);
        graph.addNode(QString(), 0, 0, kRoot);
        const int p = graph.addNode(QString(), 2, 2, kRoot);
        const int q = graph.addNode(QString(), 2, 2, kRoot);
        graph.addNode(QStringLiteral("first"), 2, 2, q);
        graph.addNode(QStringLiteral("second"), 2, 2, p);
        graph.removeNode(1);
        graph.removeNode(2);
        graph.purge();
    }
    Graph graph;
    const int first = 3;
    const int second = 4;
};

/// Refs and indices to try on a graph: all that it has, and what lies around.
std::vector<int> numbersAround(const Graph& graph)
{
    std::vector<int> numbers = {INT_MIN, INT_MIN + 1, -2, INT_MAX - 1, INT_MAX};
    const int end = std::max({graph.numNodesGlobal(), graph.numEdgesGlobal(), 3}) + 1;
    for (int i = -1; i <= end; ++i)
        numbers.push_back(i);
    return numbers;
}

/// Calls every query with every pair of numbers; the sum of the answers keeps the calls alive.
long long askEverything(const Graph& graph)
{
    const std::vector<int> numbers = numbersAround(graph);
    const QString name = QStringLiteral("n1");
    long long sum = graph.numNodesGlobal() + graph.numEdgesGlobal();
    for (const int a : numbers) {
        sum += 0LL + graph.isValidNode(a) + graph.isValidEdge(a) + graph.isRegularEdge(a)
            + graph.isDownEdge(a) + graph.isUpEdge(a) + graph.parentNode(a) + graph.numNodes(a)
            + graph.indexOfNode(a) + graph.findNode(name, a) + graph.nodeName(a).size()
            + graph.nodeValue(a) + graph.numInputs(a) + graph.numOutputs(a)
            + graph.numInputGroups(a) + graph.numOutputGroups(a) + graph.findInput(a, name)
            + graph.findOutput(a, name) + graph.findInputGroup(a, name)
            + graph.findOutputGroup(a, name) + graph.edgeSourceNode(a) + graph.edgeSourceIndex(a)
            + graph.edgeDestNode(a) + graph.edgeDestIndex(a);
        sum += static_cast<long long>(walk(BottomUpSubgraphWalker(graph, a)).size());
        for (const bool followHierarchy : {false, true}) {
            sum +=
                static_cast<long long>(walk(BottomUpInputWalker(graph, a, followHierarchy)).size());
            sum += static_cast<long long>(
                walk(BreadthFirstInputWalker(graph, a, followHierarchy)).size());
        }
        for (const int b : numbers) {
            sum += 0LL + graph.isValidInput(a, b) + graph.isValidOutput(a, b)
                + graph.isValidInputGroup(a, b) + graph.isValidOutputGroup(a, b)
                + graph.contains(a, b) + graph.getNode(b, a) + graph.findNodeFromValue(b, a)
                + graph.inputName(a, b).size() + graph.outputName(a, b).size()
                + graph.inputGroup(a, b) + graph.outputGroup(a, b)
                + graph.inputGroupName(a, b).size() + graph.outputGroupName(a, b).size()
                + graph.inputSource(a, b) + graph.outputSource(a, b)
                + graph.numInputDestinations(a, b) + graph.numOutputDestinations(a, b)
                + graph.inputDestination(a, b, 0) + graph.outputDestination(a, b, -1)
                + graph.isValidInputDestination(a, b, 0) + graph.isValidOutputDestination(a, b, 1)
                + graph.precedes(a, b, false) + graph.precedes(a, b, true);
            int node = a, port = b;
            sum += graph.walkUp(node, port) + node % 7;
            node = a, port = b;
            sum += graph.walkAcross(node, port) + node % 7;
            node = a, port = b;
            sum += graph.walkDown(node, port) + node % 7;
            node = a, port = b;
            sum += graph.walkToSourceNode(node, port) + node % 7;
        }
    }
    return sum;
}

/// A random editing operation with arguments that mostly name something.
class Editor
{
public:
    Editor(Graph& editedGraph, unsigned seed)
        : graph(editedGraph)
        , random(seed)
    {
    }

    void edit()
    {
        switch (below(26)) {
        case 0:
        case 1:
        case 2:
        case 3:
            graph.addNode(name(), below(4), below(4), node());
            break;
        case 4:
        case 5:
        case 6:
            graph.addEdge(node(), port(), node(), port());
            break;
        case 7:
        case 8:
            graph.addDownEdge(port(), node(), port());
            break;
        case 9:
        case 10:
            graph.addUpEdge(port(), node(), port());
            break;
        case 11:
            graph.removeNode(node());
            break;
        case 12:
            graph.removeChildNode(node());
            break;
        case 13:
            graph.removeEdge(edge());
            break;
        case 14:
            graph.disconnectInput(node(), port());
            break;
        case 15:
            graph.removeInput(node(), port());
            break;
        case 16:
            graph.removeOutput(node(), port());
            break;
        case 17:
            graph.addInput(node(), name(), port());
            break;
        case 18:
            graph.addOutput(node(), name(), port());
            break;
        case 19:
            graph.connectByName(node(), node());
            break;
        case 20:
            graph.connectUpByName(node());
            break;
        case 21:
            graph.connectDownByName(node());
            break;
        case 22:
            graph.connectGroups(node(), -1, node(), -1);
            break;
        case 23:
            graph.disconnectInputGroup(node(), -1);
            break;
        case 24:
            graph.setNodeValue(node(), below(5));
            break;
        default:
            if (below(3) == 0)
                graph.purge();
        }
    }

private:
    int below(int end) { return std::uniform_int_distribution<int>(0, end - 1)(random); }
    int someRef(int end)
    {
        static const int odd[] = {-1, INT_MIN, INT_MAX};
        return below(12) == 0 ? odd[below(3)] : below(end + 1);
    }
    int node() { return someRef(graph.numNodesGlobal()); }
    int edge() { return someRef(graph.numEdgesGlobal()); }
    int port() { return someRef(3); }
    QString name() { return QStringLiteral("n%1").arg(below(3)); }

    Graph& graph;
    std::mt19937 random;
};

} // namespace

TEST(GraphAfterPurge, ARootThatIsItsOwnChildIsWalkedOnce)
{
    Graph graph;
    graph.addNode(QStringLiteral("child"), 0, 0, kRoot);
    graph.purge();
    ASSERT_EQ(children(graph, kRoot), Refs{0});
    EXPECT_EQ(walk(BottomUpSubgraphWalker(graph, kRoot)), Refs{kRoot});
    EXPECT_EQ(walk(BottomUpSubgraphWalker(graph, 1)), Refs{1});
}

TEST(GraphAfterPurge, EachNodeOfAListThatIsNoTreeIsWalkedOnce)
{
    Graph graph;
    for (int i = 0; i < 3; ++i)
        graph.addNode(QString(), 0, 0, kRoot);
    graph.addNode(QString(), 0, 0, 1);
    graph.addNode(QString(), 0, 0, 1);
    graph.purge();
    ASSERT_EQ(children(graph, kRoot), (Refs{0, 1, 2}));
    ASSERT_EQ(children(graph, 1), (Refs{0, 1}));
    EXPECT_EQ(walk(BottomUpSubgraphWalker(graph, kRoot)), (Refs{1, 2, 0}));
    EXPECT_EQ(walk(BottomUpSubgraphWalker(graph, 1)), (Refs{2, 0, 1}));
}

TEST(GraphAfterPurge, AChildThatIsNoneIsPassedOver)
{
    Graph graph;
    for (int i = 0; i < 3; ++i)
        graph.addNode(QString(), 0, 0, kRoot);
    graph.removeNode(1);
    graph.purge();
    ASSERT_EQ(children(graph, kRoot), (Refs{0, -1}));
    EXPECT_EQ(graph.findNode(QStringLiteral("x"), kRoot), -1);
    graph.removeNode(kRoot);
    EXPECT_FALSE(graph.isValidNode(kRoot));
    EXPECT_TRUE(graph.isValidNode(1));
    EXPECT_TRUE(graph.isValidNode(2));
}

TEST(GraphAfterPurge, ARootThatIsItsOwnChildCanBeRemoved)
{
    for (const bool asChild : {false, true}) {
        Graph graph;
        graph.addNode(QString(), 0, 0, kRoot);
        graph.addNode(QString(), 0, 0, kRoot);
        graph.purge();
        ASSERT_EQ(children(graph, kRoot), (Refs{0, 1}));
        if (asChild)
            graph.removeChildNode(kRoot);
        else
            graph.removeNode(kRoot);
        EXPECT_EQ(validNodes(graph), Refs{2});
        EXPECT_EQ(graph.numNodes(kRoot), 0);
    }
}

TEST(GraphAfterPurge, ANodeThatIsItsOwnParentContainsItself)
{
    SelfParent sample;
    ASSERT_EQ(sample.graph.parentNode(sample.self), sample.self);
    EXPECT_TRUE(sample.graph.contains(sample.self, sample.self));
    EXPECT_FALSE(sample.graph.contains(kRoot, sample.self));
    EXPECT_FALSE(sample.graph.contains(-1, sample.self));
    EXPECT_EQ(sample.graph.indexOfNode(sample.self), -1);
}

TEST(GraphAfterPurge, TwoNodesThatAreEachOthersParentsContainEachOther)
{
    MutualParents sample;
    ASSERT_EQ(sample.graph.parentNode(sample.first), sample.second);
    ASSERT_EQ(sample.graph.parentNode(sample.second), sample.first);
    EXPECT_TRUE(sample.graph.contains(sample.first, sample.second));
    EXPECT_TRUE(sample.graph.contains(sample.first, sample.first));
    EXPECT_FALSE(sample.graph.contains(kRoot, sample.first));
    EXPECT_FALSE(sample.graph.contains(1, sample.second));
}

TEST(GraphAfterPurge, TheSearchForAnAncestorGoesOnWhereAChainOfParentsEndsInALoop)
{
    MutualParents sample;
    const int leaf = sample.graph.addNode(QString(), 0, 0, sample.first);
    EXPECT_TRUE(sample.graph.contains(sample.first, leaf));
    EXPECT_TRUE(sample.graph.contains(sample.second, leaf));
    EXPECT_FALSE(sample.graph.contains(kRoot, leaf));
    EXPECT_FALSE(sample.graph.contains(leaf, leaf));
}

TEST(GraphAfterPurge, WalksAlongALoopOfDownEdgesEnd)
{
    MutualParents sample;
    Graph& graph = sample.graph;
    ASSERT_NE(graph.addDownEdge(0, sample.first, 0), -1);
    ASSERT_NE(graph.addDownEdge(0, sample.second, 0), -1);
    int node = sample.first;
    int port = 0;
    EXPECT_TRUE(graph.walkUp(node, port));
    EXPECT_TRUE(graph.isValidInput(node, port));
    node = sample.first;
    port = 0;
    graph.walkToSourceNode(node, port);
    EXPECT_TRUE(graph.isValidNode(node));
    EXPECT_FALSE(graph.precedes(kRoot, sample.first, true));
}

TEST(GraphAfterPurge, WalksAlongALoopOfUpEdgesEnd)
{
    MutualParents sample;
    Graph& graph = sample.graph;
    ASSERT_NE(graph.addUpEdge(0, sample.first, 0), -1);
    ASSERT_NE(graph.addUpEdge(0, sample.second, 0), -1);
    int node = sample.first;
    int port = 0;
    EXPECT_TRUE(graph.walkDown(node, port));
    EXPECT_TRUE(graph.isValidOutput(node, port));
}

TEST(GraphAfterPurge, AnEdgeOfANodeToItselfIsWalkedAndRemoved)
{
    SelfParent sample;
    Graph& graph = sample.graph;
    const int edge = graph.addDownEdge(0, sample.self, 1);
    ASSERT_NE(edge, -1);
    EXPECT_TRUE(graph.isRegularEdge(edge));
    EXPECT_TRUE(graph.isDownEdge(edge));
    int node = sample.self;
    int port = 1;
    EXPECT_TRUE(graph.walkUp(node, port));
    EXPECT_EQ(node, sample.self);
    EXPECT_EQ(port, 0);
    graph.removeEdge(edge); // as a regular one, which leaves an output
    EXPECT_FALSE(graph.isValidEdge(edge));
    EXPECT_EQ(graph.inputSource(sample.self, 1), -1);
    EXPECT_EQ(graph.inputDestination(sample.self, 0, 0), edge);
    graph.disconnectInput(sample.self, 0); // its list names a removed edge
    graph.removeNode(sample.self);
    EXPECT_FALSE(graph.isValidNode(sample.self));
}

TEST(GraphAfterPurge, AnEdgeOfNoKindIsRemovedAsAnUpEdge)
{
    SelfParent sample;
    Graph& graph = sample.graph;
    const int edge = 0; // from an input of the former parent
    ASSERT_EQ(edgeEnds(graph, edge), (Refs{sample.parent, 0, sample.self, 0}));
    EXPECT_FALSE(graph.isRegularEdge(edge) || graph.isDownEdge(edge) || graph.isUpEdge(edge));
    graph.removeEdge(edge);
    EXPECT_FALSE(graph.isValidEdge(edge));
    EXPECT_EQ(graph.inputSource(sample.self, 0), edge);
    EXPECT_EQ(inputDestinations(graph, sample.parent, 0), Refs{edge});
}

TEST(GraphAfterPurge, ConnectDownByNamePassesOverAnInputWhoseOldestEdgeIsNoDownEdge)
{
    SelfParent sample;
    Graph& graph = sample.graph;
    const int child = graph.addNode(QString(), 1, 0, sample.parent);
    graph.setInputName(child, 0, QStringLiteral("in"));
    graph.connectDownByName(child);
    EXPECT_EQ(edgeEnds(graph, graph.inputSource(child, 0)), (Refs{sample.parent, 1, child, 0}));
}

TEST(GraphAfterPurge, ANodeBelowAnUnlistedOneKeepsItsParent)
{
    SelfParent sample;
    Graph& graph = sample.graph;
    const int child = graph.addNode(QString(), 0, 0, sample.self);
    EXPECT_EQ(children(graph, sample.self), Refs{child});
    EXPECT_EQ(graph.indexOfNode(child), 0);
    graph.removeNode(sample.self);
    EXPECT_FALSE(graph.isValidNode(child));
    EXPECT_FALSE(graph.isValidNode(sample.self));
    EXPECT_EQ(children(graph, sample.parent), Refs{0}); // as purge() left it
}

TEST(GraphAfterPurge, TheDumpListsWhatTheChildrenNowName)
{
    Graph graph;
    graph.addNode(QStringLiteral("a"), 0, 1, kRoot);
    graph.addNode(QStringLiteral("b"), 1, 0, kRoot);
    graph.addNode(QStringLiteral("c"), 0, 0, kRoot);
    graph.addEdge(1, 0, 2, 0);
    graph.removeNode(3);
    graph.purge();
    const MessageRecorder recorder;
    dumpAsGraphviz(&graph);
    QStringList lines;
    for (const MessageRecorder::Message& message : recorder.messages())
        lines << message.body();
    EXPECT_EQ(lines.join(QLatin1Char('\n')),
              QStringLiteral("digraph \"Orv\" {\n  rankdir=LR;\n \n  // Nodes\n  \"\";\n  \"a\";\n"
                             " \n  // Edges\n  \"a\" -> \"b\";\n}"));
}

TEST(GraphAfterPurge, EveryQueryAnswersOnEmptyTables)
{
    Graph graph;
    graph.removeNode(kRoot);
    graph.purge();
    ASSERT_EQ(graph.numNodesGlobal(), 0);
    const MessageRecorder recorder;
    askEverything(graph);
    EXPECT_FALSE(graph.isValidNode(kRoot));
    EXPECT_EQ(graph.parentNode(kRoot), -1);
    EXPECT_EQ(graph.numNodes(kRoot), 0);
    EXPECT_TRUE(recorder.messages().empty());
}

TEST(GraphAfterPurge, EveryEditOfEmptyTablesLeavesThemEmpty)
{
    Graph graph;
    graph.removeNode(kRoot);
    graph.purge();
    Editor editor(graph, 1);
    for (int i = 0; i < 1000; ++i)
        editor.edit();
    EXPECT_EQ(graph.numNodesGlobal(), 0);
    EXPECT_EQ(graph.numEdgesGlobal(), 0);
}

TEST(GraphAfterPurge, TheDumpOfEmptyTablesHasSevenLines)
{
    Graph graph;
    graph.removeNode(kRoot);
    graph.purge();
    const MessageRecorder recorder;
    dumpAsGraphviz(&graph);
    EXPECT_EQ(recorder.messages().size(), 7u);
}

TEST(GraphAfterPurge, EveryOperationEndsOnRandomTables)
{
    for (unsigned seed = 0; seed < 120; ++seed) {
        Graph graph;
        Editor editor(graph, seed);
        const MessageRecorder recorder;
        for (int round = 0; round < 6; ++round) {
            for (int i = 0; i < 20; ++i)
                editor.edit();
            graph.purge();
            const std::string before = graphSnapshot(graph);
            askEverything(graph);
            ASSERT_EQ(graphSnapshot(graph), before) << seed;
        }
        graph.removeNode(kRoot);
        graph.purge();
        askEverything(graph);
        EXPECT_TRUE(recorder.messages().empty()) << seed;
    }
}

TEST(GraphAfterPurge, NodesThatAllListEachOtherAreWalkedAndRemovedInLinearTime)
{
    const int count = 40;
    Graph graph;
    for (int i = 0; i < count; ++i)
        graph.addNode(QString(), 0, 0, kRoot);
    for (int node = 1; node <= count; ++node) {
        for (int i = 0; i < count; ++i)
            graph.addNode(QString(), 0, 0, node);
    }
    graph.purge();
    ASSERT_EQ(children(graph, 7), children(graph, kRoot));
    EXPECT_EQ(walk(BottomUpSubgraphWalker(graph, kRoot)).size(), static_cast<size_t>(count));
    const size_t before = validNodes(graph).size();
    graph.removeNode(kRoot);
    EXPECT_EQ(validNodes(graph).size(), before - count);
}

TEST(GraphAfterPurge, ADeepTreeBelowALoopIsWalkedAndRemovedWithoutRecursion)
{
    const int depth = 100000;
    Graph graph;
    graph.addNode(QString(), 0, 0, kRoot);
    graph.purge();
    ASSERT_EQ(children(graph, kRoot), Refs{0});
    int parent = kRoot;
    for (int i = 0; i < depth; ++i)
        parent = graph.addNode(QString(), 0, 0, parent);
    size_t walked = 0;
    runOnSmallStack([&] {
        walked = walk(BottomUpSubgraphWalker(graph, kRoot)).size();
        graph.removeNode(kRoot);
    });
    EXPECT_EQ(walked, depth + 1u);
    EXPECT_EQ(validNodes(graph), Refs{1});
}

TEST(GraphAfterPurge, TheSubtreeWalkPassesOverChildrenThatAreNoNodes)
{
    Graph graph;
    const int gone = graph.addNode(QString(), 0, 0, kRoot);
    graph.addNode(QString(), 0, 0, kRoot);
    graph.addNode(QString(), 0, 0, kRoot);
    graph.removeNode(gone);
    graph.purge();
    ASSERT_EQ(children(graph, kRoot), (Refs{0, -1}));
    EXPECT_EQ(walk(BottomUpSubgraphWalker(graph, kRoot)), Refs{kRoot});
}

// The parent is the number that it was: the edge does not come from a child any more.
TEST(GraphAfterPurge, WalkDownStopsWhereTheParentsNumberIsStale)
{
    Graph graph;
    const int gone = graph.addNode(QString(), 0, 0, kRoot);
    const int group = graph.addNode(QString(), 0, 1, kRoot);
    const int child = graph.addNode(QString(), 0, 1, group);
    const int edge = graph.addUpEdge(0, child, 0);
    graph.removeNode(gone);
    graph.purge();
    ASSERT_EQ(graph.outputSource(1, 0), edge);
    ASSERT_EQ(graph.parentNode(2), 2);
    int node = 1;
    int port = 0;
    EXPECT_FALSE(graph.walkDown(node, port));
    EXPECT_EQ(node, 1);
}
