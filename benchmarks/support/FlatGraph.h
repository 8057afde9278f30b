// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef ORV_BENCHMARKS_FLATGRAPH_H
#define ORV_BENCHMARKS_FLATGRAPH_H

#include "support/Shape.h"

#include <boost/graph/adjacency_list.hpp>

#include <vector>

namespace OrvBench {

/// The limit for the library's graph: a Boost.Graph with bare nodes and the edges between siblings,
/// without ports, names or groups. It refuses edges that would close a cycle.
///
/// The search keeps its marks and its queue from call to call, like PortGraph.
class FlatGraph
{
public:
    using Nodes = boost::adjacency_list<boost::vecS, boost::vecS, boost::bidirectionalS>;
    using Vertex = boost::graph_traits<Nodes>::vertex_descriptor;

    /// Builds a shape without groups.
    explicit FlatGraph(const Shape& shape);

    /// False when the edge was refused.
    bool connect(Vertex src, Vertex dst);
    bool precedes(Vertex upstream, Vertex downstream) const;
    void removeNode(Vertex node) { boost::clear_vertex(node, graph); }

    const Nodes& nodes() const { return graph; }

private:
    Nodes graph;

    mutable std::vector<unsigned> marks; // by node: the last search that reached it
    mutable unsigned search = 0;
    mutable std::vector<Vertex> queue;
};

} // namespace OrvBench

#endif
