// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include <Kestrin/Orv/Graph.h>

#include <gtest/gtest.h>

using Kestrin::Orv::Graph;

TEST(GraphTables, ANewGraphHoldsTheRootAlone)
{
    const Graph graph;
    EXPECT_EQ(graph.numNodesGlobal(), 1);
    EXPECT_EQ(graph.numEdgesGlobal(), 0);
    EXPECT_TRUE(graph.isValidNode(Graph::kRootNodeRef));
}
