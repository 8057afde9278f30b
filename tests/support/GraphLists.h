// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef ORV_TESTS_GRAPHLISTS_H
#define ORV_TESTS_GRAPHLISTS_H

#include <Kestrin/Orv/Graph.h>

#include <vector>

/// A graph's lists as vectors, which can be compared whole.

using Refs = std::vector<int>;

inline Refs children(const Kestrin::Orv::Graph& graph, int parent)
{
    Refs refs;
    for (int i = 0; i < graph.numNodes(parent); ++i)
        refs.push_back(graph.getNode(i, parent));
    return refs;
}

inline Refs inputDestinations(const Kestrin::Orv::Graph& graph, int node, int input)
{
    Refs refs;
    for (int i = 0; i < graph.numInputDestinations(node, input); ++i)
        refs.push_back(graph.inputDestination(node, input, i));
    return refs;
}

inline Refs outputDestinations(const Kestrin::Orv::Graph& graph, int node, int output)
{
    Refs refs;
    for (int i = 0; i < graph.numOutputDestinations(node, output); ++i)
        refs.push_back(graph.outputDestination(node, output, i));
    return refs;
}

/// Source node, source index, destination node, destination index.
inline Refs edgeEnds(const Kestrin::Orv::Graph& graph, int edge)
{
    return {graph.edgeSourceNode(edge), graph.edgeSourceIndex(edge), graph.edgeDestNode(edge),
            graph.edgeDestIndex(edge)};
}

/// The refs of the nodes that are not removed.
inline Refs validNodes(const Kestrin::Orv::Graph& graph)
{
    Refs refs;
    for (int node = 0; node < graph.numNodesGlobal(); ++node) {
        if (graph.isValidNode(node))
            refs.push_back(node);
    }
    return refs;
}

/// The refs of the edges that are not removed.
inline Refs validEdges(const Kestrin::Orv::Graph& graph)
{
    Refs refs;
    for (int edge = 0; edge < graph.numEdgesGlobal(); ++edge) {
        if (graph.isValidEdge(edge))
            refs.push_back(edge);
    }
    return refs;
}

/// The refs of the nodes that a walker visits, a million at most.
template<typename Walker>
Refs walk(Walker&& walker)
{
    Refs refs;
    for (; walker.valid() && refs.size() < 1000000; walker.next())
        refs.push_back(walker.node());
    return refs;
}

/// How many nodes a walker visits.
template<typename Walker>
int countNodes(Walker&& walker)
{
    int count = 0;
    for (; walker.valid(); walker.next())
        ++count;
    return count;
}

#endif
