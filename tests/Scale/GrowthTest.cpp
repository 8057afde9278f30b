// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include <Kestrin/Orv/Graph.h>
#include <Kestrin/Orv/Walkers.h>

#include "support/GraphLists.h"
#include "support/Growth.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>

using namespace Kestrin::Orv;

// Work that is to grow linearly: twice the size may take two and a half times as long, no more.
// Quadratic work takes four times as long.

namespace {

using Work = std::function<void()>;

/// \param prepare makes, for a size, the work to be timed once.
void expectLinear(int size, const std::function<Work(int)>& prepare)
{
    if (!timesCount())
        GTEST_SKIP() << "times mean nothing here";
    expectGrowthBelow(
        2.5, [&] { return processorSeconds(prepare(size)); },
        [&] { return processorSeconds(prepare(2 * size)); });
}

/// A node whose one output feeds so many others.
std::shared_ptr<Graph> fan(int size)
{
    auto graph = std::make_shared<Graph>();
    graph->addNode(QString(), 0, 1, Graph::kRootNodeRef);
    for (int i = 0; i < size; ++i)
        graph->addEdge(1, 0, graph->addNode(QString(), 1, 0, Graph::kRootNodeRef), 0);
    return graph;
}

/// Rungs of two nodes, each feeding both of the next rung: two to the power of `size` paths. The
/// sink comes first, and each node's answer lies upstream.
std::shared_ptr<Graph> ladder(int size)
{
    auto graph = std::make_shared<Graph>();
    int left = graph->addNode(QString(), 2, 2, Graph::kRootNodeRef);
    int right = graph->addNode(QString(), 2, 2, Graph::kRootNodeRef);
    for (int i = 1; i < size; ++i) {
        const int newLeft = graph->addNode(QString(), 2, 2, Graph::kRootNodeRef);
        const int newRight = graph->addNode(QString(), 2, 2, Graph::kRootNodeRef);
        graph->addEdge(newLeft, 0, left, 0);
        graph->addEdge(newLeft, 1, right, 0);
        graph->addEdge(newRight, 0, left, 1);
        graph->addEdge(newRight, 1, right, 1);
        left = newLeft;
        right = newRight;
    }
    return graph;
}

} // namespace

TEST(Growth, WiringAChainFromItsSourceDownIsLinear)
{
    expectLinear(50000, [](int size) -> Work {
        return [size] {
            Graph graph;
            int last = graph.addNode(QString(), 1, 1, Graph::kRootNodeRef);
            for (int i = 1; i < size; ++i) {
                const int next = graph.addNode(QString(), 1, 1, Graph::kRootNodeRef);
                EXPECT_NE(graph.addEdge(last, 0, next, 0), Graph::kInvalidEdgeRef);
                last = next;
            }
            EXPECT_TRUE(graph.precedes(1, last, true));
        };
    });
}

// Each group is wired inside before it joins the chain, so down edges leave it already.
TEST(Growth, WiringAChainOfFilledGroupsFromItsSourceDownIsLinear)
{
    expectLinear(20000, [](int size) -> Work {
        return [size] {
            Graph graph;
            int last = -1;
            for (int i = 0; i < size; ++i) {
                const int group = graph.addNode(QString(), 1, 1, Graph::kRootNodeRef);
                const int inner = graph.addNode(QString(), 1, 1, group);
                graph.addDownEdge(0, inner, 0);
                graph.addUpEdge(0, inner, 0);
                if (last >= 0) {
                    EXPECT_NE(graph.addEdge(last, 0, group, 0), Graph::kInvalidEdgeRef);
                }
                last = group;
            }
            EXPECT_TRUE(graph.precedes(2, last, true));
        };
    });
}

TEST(Growth, RemovingANodeIsLinearInItsDestinations)
{
    expectLinear(200000, [](int size) -> Work {
        return [graph = fan(size)] {
            graph->removeNode(1);
            EXPECT_EQ(graph->numOutputDestinations(1, 0), 0);
        };
    });
}

TEST(Growth, DisconnectingAnInputIsLinearInItsDestinations)
{
    expectLinear(200000, [](int size) -> Work {
        auto graph = std::make_shared<Graph>();
        graph->addInput(Graph::kRootNodeRef, QString(), -1);
        for (int i = 0; i < size; ++i)
            graph->addDownEdge(0, graph->addNode(QString(), 1, 0, Graph::kRootNodeRef), 0);
        return [graph] {
            graph->disconnectInput(Graph::kRootNodeRef, 0);
            EXPECT_EQ(graph->numInputDestinations(Graph::kRootNodeRef, 0), 0);
        };
    });
}

TEST(Growth, RemovingAllChildrenLastFirstIsLinear)
{
    expectLinear(200000, [](int size) -> Work {
        auto graph = std::make_shared<Graph>();
        for (int i = 0; i < size; ++i)
            graph->addNode(QString(), 1, 1, Graph::kRootNodeRef);
        return [graph, size] {
            for (int i = size; i > 0; --i)
                graph->removeNode(i);
            EXPECT_EQ(graph->numNodes(Graph::kRootNodeRef), 0);
        };
    });
}

TEST(Growth, WalkingALadderOfDiamondsIsLinear)
{
    expectLinear(50000, [](int size) -> Work {
        return [graph = ladder(size), size] {
            EXPECT_EQ(countNodes(BottomUpInputWalker(*graph, 1, true)), 2 * size - 1);
            EXPECT_EQ(countNodes(BreadthFirstInputWalker(*graph, 1, true)), 2 * size - 1);
        };
    });
}

TEST(Growth, TheOrderingQueryOnALadderOfDiamondsIsLinear)
{
    expectLinear(50000, [](int size) -> Work {
        return [graph = ladder(size)] {
            EXPECT_TRUE(graph->precedes(graph->numNodesGlobal() - 1, 1, true));
            EXPECT_FALSE(graph->precedes(2, 1, false));
        };
    });
}

TEST(Growth, CompactionIsLinear)
{
    expectLinear(100000, [](int size) -> Work {
        auto graph = ladder(size / 2);
        for (int i = 1; i < graph->numNodesGlobal(); i += 7)
            graph->removeChildNode(i);
        return [graph] {
            graph->purge();
            EXPECT_TRUE(graph->isValidNode(graph->numNodesGlobal() - 1));
        };
    });
}
