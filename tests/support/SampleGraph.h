// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef ORV_TESTS_SAMPLEGRAPH_H
#define ORV_TESTS_SAMPLEGRAPH_H

#include <Kestrin/Orv/Graph.h>

#include <QtCore/QString>

/// A small graph with every kind of edge:
///
///          +--------- g ---------+
///     a -> | -> x -----> y ->    | -> b
///          +---------------------+
///
/// Every node has one input and one output, but for the root, which has none.
struct SampleGraph
{
    Kestrin::Orv::Graph graph;
    int a = graph.addNode(QStringLiteral("a"), 1, 1, Kestrin::Orv::Graph::kRootNodeRef);
    int g = graph.addNode(QStringLiteral("g"), 1, 1, Kestrin::Orv::Graph::kRootNodeRef);
    int b = graph.addNode(QStringLiteral("b"), 1, 1, Kestrin::Orv::Graph::kRootNodeRef);
    int x = graph.addNode(QStringLiteral("x"), 1, 1, g);
    int y = graph.addNode(QStringLiteral("y"), 1, 1, g);
    int aToG = graph.addEdge(a, 0, g, 0);
    int gToX = graph.addDownEdge(0, x, 0);
    int xToY = graph.addEdge(x, 0, y, 0);
    int yToG = graph.addUpEdge(0, y, 0);
    int gToB = graph.addEdge(g, 0, b, 0);
};

#endif
