// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include <Kestrin/Orv/Graph.h>

#include <gtest/gtest.h>

#include <limits>
#include <vector>

using Kestrin::Orv::Graph;

namespace {

const int kRoot = Graph::kRootNodeRef;

std::vector<int> children(const Graph& graph, int parent)
{
    std::vector<int> nodes;
    for (int i = 0; i < graph.numNodes(parent); ++i)
        nodes.push_back(graph.getNode(i, parent));
    return nodes;
}

} // namespace

TEST(GraphHierarchy, TheFirstNodeIsNumberOne)
{
    Graph graph;
    EXPECT_EQ(graph.addNode(QStringLiteral("node"), 2, 1, kRoot), 1);
    EXPECT_EQ(graph.getNode(0, kRoot), 1);
    EXPECT_EQ(graph.numNodesGlobal(), 2);
}

TEST(GraphHierarchy, ANewNodeHasWhatItWasGiven)
{
    Graph graph;
    const int parent = graph.addNode(QStringLiteral("parent"), 0, 0, kRoot);
    const int node = graph.addNode(QStringLiteral("node"), 2, 1, parent);
    EXPECT_EQ(graph.nodeName(node), QStringLiteral("node"));
    EXPECT_EQ(graph.parentNode(node), parent);
    EXPECT_EQ(graph.numInputs(node), 2);
    EXPECT_EQ(graph.numOutputs(node), 1);
}

TEST(GraphHierarchy, ANewNodeHasTheValueMinusOneAndNoChildrenOrGroups)
{
    Graph graph;
    const int node = graph.addNode(QStringLiteral("node"), 2, 1, kRoot);
    EXPECT_EQ(graph.nodeValue(node), -1);
    EXPECT_EQ(graph.numNodes(node), 0);
    EXPECT_EQ(graph.numInputGroups(node), 0);
    EXPECT_EQ(graph.numOutputGroups(node), 0);
}

TEST(GraphHierarchy, ThePortsOfANewNodeAreUnnamedUngroupedAndUnconnected)
{
    Graph graph;
    const int node = graph.addNode(QStringLiteral("node"), 2, 1, kRoot);
    for (int i = 0; i < 2; ++i) {
        EXPECT_TRUE(graph.inputName(node, i).isEmpty());
        EXPECT_EQ(graph.inputGroup(node, i), Graph::kInvalidGroupRef);
        EXPECT_EQ(graph.inputSource(node, i), Graph::kInvalidEdgeRef);
        EXPECT_EQ(graph.numInputDestinations(node, i), 0);
    }
    EXPECT_TRUE(graph.outputName(node, 0).isEmpty());
    EXPECT_EQ(graph.outputGroup(node, 0), Graph::kInvalidGroupRef);
    EXPECT_EQ(graph.outputSource(node, 0), Graph::kInvalidEdgeRef);
    EXPECT_EQ(graph.numOutputDestinations(node, 0), 0);
}

TEST(GraphHierarchy, NegativePortCountsMakeNoPorts)
{
    Graph graph;
    const int least = std::numeric_limits<int>::min();
    const int first = graph.addNode(QStringLiteral("node"), -1, -7, kRoot);
    const int second = graph.addNode(QStringLiteral("node"), least, 2, kRoot);
    const int third = graph.addNode(QStringLiteral("node"), 2, least, kRoot);
    EXPECT_EQ(graph.numInputs(first), 0);
    EXPECT_EQ(graph.numOutputs(first), 0);
    EXPECT_EQ(graph.numInputs(second), 0);
    EXPECT_EQ(graph.numOutputs(second), 2);
    EXPECT_EQ(graph.numInputs(third), 2);
    EXPECT_EQ(graph.numOutputs(third), 0);
}

TEST(GraphHierarchy, RefsCountUpWhereverTheNodesAreAdded)
{
    Graph graph;
    EXPECT_EQ(graph.addNode(QStringLiteral("a"), 0, 0, kRoot), 1);
    EXPECT_EQ(graph.addNode(QStringLiteral("b"), 0, 0, 1), 2);
    EXPECT_EQ(graph.addNode(QStringLiteral("c"), 0, 0, kRoot), 3);
    EXPECT_EQ(graph.addNode(QStringLiteral("d"), 0, 0, 2), 4);
}

TEST(GraphHierarchy, ChildrenStandInTheOrderInWhichTheyWereAdded)
{
    Graph graph;
    const int group = graph.addNode(QStringLiteral("group"), 0, 0, kRoot);
    const int first = graph.addNode(QStringLiteral("z"), 0, 0, group);
    const int elsewhere = graph.addNode(QStringLiteral("m"), 0, 0, kRoot);
    const int second = graph.addNode(QStringLiteral("a"), 0, 0, group);
    const int third = graph.addNode(QStringLiteral("k"), 0, 0, group);
    EXPECT_EQ(children(graph, group), (std::vector<int>{first, second, third}));
    EXPECT_EQ(children(graph, kRoot), (std::vector<int>{group, elsewhere}));
}

TEST(GraphHierarchy, AValueCanBeAnyInt)
{
    Graph graph;
    const int node = graph.addNode(QStringLiteral("node"), 0, 0, kRoot);
    for (const int value :
         {0, 7, -1, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()}) {
        graph.setNodeValue(node, value);
        EXPECT_EQ(graph.nodeValue(node), value);
    }
    EXPECT_EQ(graph.nodeValue(kRoot), -1);
}

TEST(GraphHierarchy, TheRootTakesANameAndAValue)
{
    Graph graph;
    graph.setNodeName(kRoot, QStringLiteral("root"));
    graph.setNodeValue(kRoot, 3);
    EXPECT_EQ(graph.nodeName(kRoot), QStringLiteral("root"));
    EXPECT_EQ(graph.nodeValue(kRoot), 3);
}

TEST(GraphHierarchy, ANameIsReplaced)
{
    Graph graph;
    const int node = graph.addNode(QStringLiteral("before"), 0, 0, kRoot);
    const int other = graph.addNode(QStringLiteral("before"), 0, 0, kRoot);
    graph.setNodeName(node, QStringLiteral("after"));
    EXPECT_EQ(graph.nodeName(node), QStringLiteral("after"));
    EXPECT_EQ(graph.nodeName(other), QStringLiteral("before"));
    EXPECT_EQ(graph.findNode(QStringLiteral("after"), kRoot), node);
    EXPECT_EQ(graph.findNode(QStringLiteral("before"), kRoot), other);
}

TEST(GraphHierarchy, ANameIsACopy)
{
    Graph graph;
    QString name = QStringLiteral("node");
    const int node = graph.addNode(name, 0, 0, kRoot);
    name += QStringLiteral(" changed");
    EXPECT_EQ(graph.nodeName(node), QStringLiteral("node"));
    QString answer = graph.nodeName(node);
    answer += QStringLiteral(" changed");
    EXPECT_EQ(graph.nodeName(node), QStringLiteral("node"));
}

TEST(GraphHierarchy, ANodeCanBeNamedAfterANodeOfTheSameGraph)
{
    Graph graph;
    int node = graph.addNode(QStringLiteral("a name too long to be stored in place"), 0, 0, kRoot);
    for (int i = 0; i < 100; ++i)
        node = graph.addNode(graph.nodeName(node), 0, 0, node);
    EXPECT_EQ(graph.nodeName(node), QStringLiteral("a name too long to be stored in place"));
}

TEST(GraphHierarchy, FindingByNameTakesTheFirstOfSeveral)
{
    Graph graph;
    graph.addNode(QStringLiteral("other"), 0, 0, kRoot);
    const int first = graph.addNode(QStringLiteral("twin"), 0, 0, kRoot);
    graph.addNode(QStringLiteral("twin"), 0, 0, kRoot);
    EXPECT_EQ(graph.findNode(QStringLiteral("twin"), kRoot), first);
}

TEST(GraphHierarchy, FindingByNameIsExact)
{
    Graph graph;
    const int node = graph.addNode(QStringLiteral("Node"), 0, 0, kRoot);
    for (const QString& name : {QStringLiteral("node"), QStringLiteral("Nod"),
                                QStringLiteral("Node "), QStringLiteral(" Node"), QString()})
        EXPECT_EQ(graph.findNode(name, kRoot), -1) << name.toStdString();
    EXPECT_EQ(graph.findNode(QStringLiteral("Node"), kRoot), node);
}

TEST(GraphHierarchy, NamesAreNotNormalised)
{
    Graph graph;
    const QString composed(QChar(0x00e9));
    const QString decomposed = QString(QLatin1Char('e')) + QChar(0x0301);
    graph.addNode(composed, 0, 0, kRoot);
    EXPECT_EQ(graph.findNode(decomposed, kRoot), -1);
    EXPECT_EQ(graph.findNode(composed, kRoot), 1);
}

TEST(GraphHierarchy, FindingByNameLooksAtTheChildrenOnly)
{
    Graph graph;
    const int child = graph.addNode(QStringLiteral("child"), 0, 0, kRoot);
    const int grandchild = graph.addNode(QStringLiteral("grandchild"), 0, 0, child);
    graph.setNodeName(kRoot, QStringLiteral("root"));
    EXPECT_EQ(graph.findNode(QStringLiteral("grandchild"), kRoot), -1);
    EXPECT_EQ(graph.findNode(QStringLiteral("grandchild"), child), grandchild);
    EXPECT_EQ(graph.findNode(QStringLiteral("child"), child), -1);
    EXPECT_EQ(graph.findNode(QStringLiteral("root"), kRoot), -1);
}

TEST(GraphHierarchy, TheEmptyNameIsANameLikeAnyOther)
{
    Graph graph;
    graph.addNode(QStringLiteral("named"), 0, 0, kRoot);
    EXPECT_EQ(graph.findNode(QString(), kRoot), -1);
    const int nameless = graph.addNode(QString(), 0, 0, kRoot);
    EXPECT_EQ(graph.findNode(QString(), kRoot), nameless);
    EXPECT_EQ(graph.findNode(QStringLiteral(""), kRoot), nameless);
}

TEST(GraphHierarchy, FindingByValueTakesTheFirstOfSeveral)
{
    Graph graph;
    graph.addNode(QStringLiteral("a"), 0, 0, kRoot);
    const int first = graph.addNode(QStringLiteral("b"), 0, 0, kRoot);
    const int second = graph.addNode(QStringLiteral("c"), 0, 0, kRoot);
    graph.setNodeValue(second, 5);
    graph.setNodeValue(first, 5);
    EXPECT_EQ(graph.findNodeFromValue(5, kRoot), first);
}

TEST(GraphHierarchy, FindingByValueLooksAtTheChildrenOnly)
{
    Graph graph;
    const int child = graph.addNode(QStringLiteral("child"), 0, 0, kRoot);
    const int grandchild = graph.addNode(QStringLiteral("grandchild"), 0, 0, child);
    graph.setNodeValue(grandchild, 5);
    EXPECT_EQ(graph.findNodeFromValue(5, kRoot), -1);
    EXPECT_EQ(graph.findNodeFromValue(5, child), grandchild);
}

TEST(GraphHierarchy, FindingByValueFindsTheValueOfNewNodesToo)
{
    Graph graph;
    EXPECT_EQ(graph.findNodeFromValue(-1, kRoot), -1);
    const int valued = graph.addNode(QStringLiteral("valued"), 0, 0, kRoot);
    graph.setNodeValue(valued, 0);
    const int fresh = graph.addNode(QStringLiteral("fresh"), 0, 0, kRoot);
    EXPECT_EQ(graph.findNodeFromValue(-1, kRoot), fresh);
    EXPECT_EQ(graph.findNodeFromValue(0, kRoot), valued);
    EXPECT_EQ(graph.findNodeFromValue(1, kRoot), -1);
}

TEST(GraphHierarchy, ARemovedNodeThatIsStillListedIsFound)
{
    Graph graph;
    const int first = graph.addNode(QStringLiteral("twin"), 0, 0, kRoot);
    graph.addNode(QStringLiteral("twin"), 0, 0, kRoot);
    graph.setNodeValue(first, 5);
    graph.removeChildNode(first);
    ASSERT_FALSE(graph.isValidNode(first));
    EXPECT_EQ(graph.findNode(QStringLiteral("twin"), kRoot), first);
    EXPECT_EQ(graph.findNodeFromValue(5, kRoot), first);
    EXPECT_EQ(graph.indexOfNode(first), 0);
    EXPECT_EQ(graph.getNode(0, kRoot), first);
    EXPECT_EQ(graph.numNodes(kRoot), 2);
}

TEST(GraphHierarchy, ContainsFollowsEveryLevel)
{
    Graph graph;
    const int outer = graph.addNode(QStringLiteral("outer"), 0, 0, kRoot);
    const int middle = graph.addNode(QStringLiteral("middle"), 0, 0, outer);
    const int inner = graph.addNode(QStringLiteral("inner"), 0, 0, middle);
    const int other = graph.addNode(QStringLiteral("other"), 0, 0, kRoot);
    EXPECT_TRUE(graph.contains(outer, middle));
    EXPECT_TRUE(graph.contains(outer, inner));
    EXPECT_TRUE(graph.contains(middle, inner));
    EXPECT_FALSE(graph.contains(inner, middle));
    EXPECT_FALSE(graph.contains(middle, outer));
    EXPECT_FALSE(graph.contains(other, inner));
    EXPECT_FALSE(graph.contains(outer, other));
}

TEST(GraphHierarchy, NoNodeContainsItself)
{
    Graph graph;
    const int outer = graph.addNode(QStringLiteral("outer"), 0, 0, kRoot);
    const int inner = graph.addNode(QStringLiteral("inner"), 0, 0, outer);
    for (const int node : {kRoot, outer, inner})
        EXPECT_FALSE(graph.contains(node, node)) << node;
}

TEST(GraphHierarchy, TheRootContainsEveryOtherNode)
{
    Graph graph;
    const int outer = graph.addNode(QStringLiteral("outer"), 0, 0, kRoot);
    const int inner = graph.addNode(QStringLiteral("inner"), 0, 0, outer);
    const int other = graph.addNode(QStringLiteral("other"), 0, 0, kRoot);
    for (const int node : {outer, inner, other}) {
        EXPECT_TRUE(graph.contains(kRoot, node)) << node;
        EXPECT_FALSE(graph.contains(node, kRoot)) << node;
    }
}

TEST(GraphHierarchy, ContainsFollowsRemovedNodes)
{
    Graph graph;
    const int outer = graph.addNode(QStringLiteral("outer"), 0, 0, kRoot);
    const int middle = graph.addNode(QStringLiteral("middle"), 0, 0, outer);
    const int inner = graph.addNode(QStringLiteral("inner"), 0, 0, middle);
    graph.removeNode(outer);
    EXPECT_TRUE(graph.contains(outer, inner));
    EXPECT_TRUE(graph.contains(middle, inner));
    EXPECT_TRUE(graph.contains(kRoot, inner));
}

TEST(GraphHierarchy, NothingContainsMinusOne)
{
    Graph graph;
    const int node = graph.addNode(QStringLiteral("node"), 0, 0, kRoot);
    EXPECT_FALSE(graph.contains(-1, node));
    EXPECT_FALSE(graph.contains(-1, kRoot));
    EXPECT_FALSE(graph.contains(kRoot, -1));
    EXPECT_FALSE(graph.contains(-1, -1));
}

TEST(GraphHierarchy, TheIndexOfANodeIsItsPositionAmongItsSiblings)
{
    Graph graph;
    const int a = graph.addNode(QStringLiteral("a"), 0, 0, kRoot);
    const int b = graph.addNode(QStringLiteral("b"), 0, 0, kRoot);
    const int inB = graph.addNode(QStringLiteral("in b"), 0, 0, b);
    const int c = graph.addNode(QStringLiteral("c"), 0, 0, kRoot);
    const int alsoInB = graph.addNode(QStringLiteral("also in b"), 0, 0, b);
    EXPECT_EQ(graph.indexOfNode(a), 0);
    EXPECT_EQ(graph.indexOfNode(b), 1);
    EXPECT_EQ(graph.indexOfNode(c), 2);
    EXPECT_EQ(graph.indexOfNode(inB), 0);
    EXPECT_EQ(graph.indexOfNode(alsoInB), 1);
}

TEST(GraphHierarchy, TheRootHasNoIndex)
{
    Graph graph;
    EXPECT_EQ(graph.indexOfNode(kRoot), -1);
    graph.addNode(QStringLiteral("a"), 0, 0, kRoot);
    EXPECT_EQ(graph.indexOfNode(kRoot), -1);
}

TEST(GraphHierarchy, ANodeThatIsNoLongerListedHasNoIndex)
{
    Graph graph;
    const int a = graph.addNode(QStringLiteral("a"), 0, 0, kRoot);
    const int b = graph.addNode(QStringLiteral("b"), 0, 0, kRoot);
    graph.removeNode(a);
    EXPECT_EQ(graph.indexOfNode(a), -1);
    EXPECT_EQ(graph.indexOfNode(b), 0);
}

TEST(GraphHierarchy, APositionOutsideTheListNamesNoNode)
{
    Graph graph;
    graph.addNode(QStringLiteral("a"), 0, 0, kRoot);
    EXPECT_EQ(graph.getNode(-1, kRoot), -1);
    EXPECT_EQ(graph.getNode(1, kRoot), -1);
}
