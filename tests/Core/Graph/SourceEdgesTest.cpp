// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

// precedes() answers without a search for a node that no source edge leaves. That is right only
// while the count of these edges, kept in each node, is exact.

#include <Kestrin/Orv/Graph.h>

#include "GraphTables.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

using namespace Kestrin::Orv;

namespace {

const int kRoot = Graph::kRootNodeRef;

/// The source edges that leave each node, counted in the table of edges.
std::vector<int> countedAnew(const Graph& graph)
{
    std::vector<int> counts(static_cast<std::size_t>(graph.numNodesGlobal()), 0);
    for (int edge = 0; edge < graph.numEdgesGlobal(); ++edge) {
        const int source = graph.edgeSourceNode(edge);
        if ((graph.isRegularEdge(edge) || graph.isUpEdge(edge)) && source >= 0
            && source < graph.numNodesGlobal())
            ++counts[static_cast<std::size_t>(source)];
    }
    return counts;
}

std::vector<int> kept(const Graph& graph)
{
    std::vector<int> counts;
    for (int node = 0; node < graph.numNodesGlobal(); ++node)
        counts.push_back(tablesOf(graph).node(node).numSourceEdges);
    return counts;
}

/// Random edits of a small graph, refs a little out of range included.
class Editor
{
public:
    explicit Editor(unsigned seed)
        : random(seed)
    {
    }

    void edit(Graph& graph)
    {
        const auto node = [&] { return below(graph.numNodesGlobal() + 1) - (below(20) == 0); };
        const auto port = [&] { return below(3); };
        switch (below(40)) {
        case 0:
            return graph.purge();
        case 1:
            return graph.removeNode(1 + below(graph.numNodesGlobal()));
        case 2:
            return graph.removeChildNode(1 + below(graph.numNodesGlobal()));
        case 3:
            return graph.removeInput(node(), port());
        case 4:
            return graph.removeOutput(node(), port());
        case 5:
            return graph.disconnectInput(node(), port());
        case 6:
        case 7:
            return graph.removeEdge(below(graph.numEdgesGlobal() + 1));
        default:
            break;
        }
        switch (below(6)) {
        case 0:
            graph.addNode(QString(), 2, 2, node());
            break;
        case 1:
            graph.addUpEdge(port(), node(), port());
            break;
        case 2:
            graph.addDownEdge(port(), node(), port());
            break;
        case 3:
            graph.addInput(node(), QString(), -1);
            break;
        default:
            graph.addEdge(node(), port(), node(), port());
            break;
        }
    }

private:
    int below(int limit)
    {
        return limit > 0 ? std::uniform_int_distribution<int>(0, limit - 1)(random) : 0;
    }
    std::mt19937 random;
};

} // namespace

TEST(SourceEdges, AreCountedExactlyThroughAllEdits)
{
    long counted = 0;
    for (unsigned seed = 0; seed < 300; ++seed) {
        SCOPED_TRACE(seed);
        Graph graph;
        Editor editor(seed);
        for (int step = 0; step < 400; ++step) {
            editor.edit(graph);
            const std::vector<int> expected = countedAnew(graph);
            ASSERT_EQ(kept(graph), expected) << "after step " << step;
            for (const int count : expected)
                counted += count;
        }
    }
    EXPECT_GT(counted, 100000) << "too few edges came about to show anything";
}

TEST(SourceEdges, LeaveGroupsThroughTheirOutputsOnly)
{
    Graph graph;
    const int group = graph.addNode(QString(), 1, 1, kRoot);
    const int inner = graph.addNode(QString(), 1, 1, group);
    const int reader = graph.addNode(QString(), 1, 1, kRoot);
    graph.addDownEdge(0, inner, 0);
    EXPECT_EQ(kept(graph)[static_cast<std::size_t>(group)], 0) << "a down edge";
    graph.addUpEdge(0, inner, 0);
    EXPECT_EQ(kept(graph)[static_cast<std::size_t>(inner)], 1) << "an up edge";
    graph.addEdge(group, 0, reader, 0);
    EXPECT_EQ(kept(graph)[static_cast<std::size_t>(group)], 1) << "a regular edge";
}
