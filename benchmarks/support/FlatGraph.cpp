// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "support/FlatGraph.h"

#include "support/Rows.h"

namespace OrvBench {

FlatGraph::FlatGraph(const Shape& shape)
{
    for (int ref = 0; ref < shape.numNodes(); ++ref)
        boost::add_vertex(graph);
    for (const Shape::Connection& connection : shape.connections) {
        if (connection.kind == Shape::Kind::Regular)
            requireSame(connect(static_cast<Vertex>(connection.srcNode),
                                static_cast<Vertex>(connection.dstNode)),
                        "a connection that was to be accepted");
    }
}

bool FlatGraph::connect(Vertex src, Vertex dst)
{
    if (precedes(dst, src))
        return false;
    boost::add_edge(src, dst, graph);
    return true;
}

bool FlatGraph::precedes(Vertex upstream, Vertex downstream) const
{
    if (upstream == downstream)
        return true;
    if (marks.size() < boost::num_vertices(graph))
        marks.resize(boost::num_vertices(graph));
    ++search;
    queue.clear();
    marks[downstream] = search;
    queue.push_back(downstream);
    for (std::size_t head = 0; head < queue.size(); ++head) {
        const auto entering = boost::in_edges(queue[head], graph);
        for (auto edge = entering.first; edge != entering.second; ++edge) {
            const Vertex source = boost::source(*edge, graph);
            if (source == upstream)
                return true;
            if (marks[source] != search) {
                marks[source] = search;
                queue.push_back(source);
            }
        }
    }
    return false;
}

} // namespace OrvBench
