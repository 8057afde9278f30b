// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef ORV_BENCHMARKS_PORTGRAPH_H
#define ORV_BENCHMARKS_PORTGRAPH_H

#include "support/Shape.h"

#include <boost/graph/adjacency_list.hpp>

#include <vector>

namespace OrvBench {

/// The peer of the library's graph: a Boost.Graph with the same information. It has a vertex per
/// port, an edge per connection, and an edge from each input of a pass to each of its outputs. Like
/// the library, it refuses edges that would feed a port twice or close a cycle.
///
/// The searches keep their marks and their queue from call to call. Each search has its own number,
/// so they never clear or allocate anything.
class PortGraph
{
public:
    struct Port
    {
        QString name;
        int node;
        int index;
        int group;
        bool isInput;
    };
    using Vertices = boost::adjacency_list<boost::vecS, boost::vecS, boost::bidirectionalS, Port>;
    using Vertex = boost::graph_traits<Vertices>::vertex_descriptor;

    struct Node
    {
        QString name;
        int parent;
        int value;
        bool isGroup;
        std::vector<Vertex> inputs;
        std::vector<Vertex> outputs;
        std::vector<int> children;
    };

    explicit PortGraph(const Shape& shape);

    int addNode(const QString& name, int numInputs, int numOutputs, int parent, bool isGroup);
    /// False when the connection was refused.
    bool connect(const Shape::Connection& connection);
    bool precedes(int upstreamNode, int downstreamNode, bool followHierarchy) const;
    /// Removes every edge at the node's ports and takes it off its parent's list.
    void removeNode(int node);

    const Vertices& vertices() const { return graph; }
    const Port& port(Vertex vertex) const { return graph[vertex]; }
    const Node& node(int ref) const { return nodes[static_cast<std::size_t>(ref)]; }

private:
    void connectInside(int node);
    bool reach(Vertex vertex) const;
    void reachAllInputs(int node) const;

    Vertices graph;
    std::vector<Node> nodes;

    mutable std::vector<unsigned> marks; // by vertex: the last search that reached it
    mutable unsigned search = 0;
    mutable std::vector<Vertex> queue;
};

} // namespace OrvBench

#endif
