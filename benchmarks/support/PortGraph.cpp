// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "support/PortGraph.h"

#include "support/Rows.h"

#include <algorithm>

namespace OrvBench {

namespace {

std::size_t at(int index)
{
    return static_cast<std::size_t>(index);
}

} // namespace

PortGraph::PortGraph(const Shape& shape)
{
    for (const Shape::Node& node : shape.nodes)
        addNode(node.name, node.numInputs, node.numOutputs, node.parent, node.isGroup);
    for (const Shape::Connection& connection : shape.connections)
        requireSame(connect(connection), "a connection that was to be accepted");
}

int PortGraph::addNode(const QString& name, int numInputs, int numOutputs, int parent, bool isGroup)
{
    const int ref = static_cast<int>(nodes.size());
    Node node{name, parent, -1, isGroup, {}, {}, {}};
    node.inputs.reserve(at(numInputs));
    node.outputs.reserve(at(numOutputs));
    for (int i = 0; i < numInputs; ++i)
        node.inputs.push_back(boost::add_vertex(Port{QString(), ref, i, -1, true}, graph));
    for (int i = 0; i < numOutputs; ++i)
        node.outputs.push_back(boost::add_vertex(Port{QString(), ref, i, -1, false}, graph));
    nodes.push_back(std::move(node));
    if (parent >= 0)
        nodes[at(parent)].children.push_back(ref);
    if (!isGroup)
        connectInside(ref);
    return ref;
}

void PortGraph::connectInside(int node)
{
    for (const Vertex output : nodes[at(node)].outputs) {
        for (const Vertex input : nodes[at(node)].inputs)
            boost::add_edge(input, output, graph);
    }
}

bool PortGraph::connect(const Shape::Connection& connection)
{
    const Node& src = nodes[at(connection.srcNode)];
    const Node& dst = nodes[at(connection.dstNode)];
    const Vertex from = connection.kind == Shape::Kind::Down ? src.inputs[at(connection.srcPort)]
                                                             : src.outputs[at(connection.srcPort)];
    const Vertex to = connection.kind == Shape::Kind::Up ? dst.outputs[at(connection.dstPort)]
                                                         : dst.inputs[at(connection.dstPort)];
    if (boost::in_degree(to, graph) > 0)
        return false; // fed already
    if (connection.kind == Shape::Kind::Regular) {
        const auto leaving = boost::out_edges(from, graph);
        if (leaving.first != leaving.second && !graph[target(*leaving.first, graph)].isInput)
            return false; // feeds its parent
        if (precedes(connection.dstNode, connection.srcNode, true))
            return false; // would close a cycle
    }
    boost::add_edge(from, to, graph);
    return true;
}

bool PortGraph::reach(Vertex vertex) const
{
    if (marks[vertex] == search)
        return false;
    marks[vertex] = search;
    queue.push_back(vertex);
    return true;
}

void PortGraph::reachAllInputs(int node) const
{
    for (const Vertex input : nodes[at(node)].inputs)
        reach(input);
}

bool PortGraph::precedes(int upstreamNode, int downstreamNode, bool followHierarchy) const
{
    if (upstreamNode == downstreamNode)
        return true;
    if (marks.size() < boost::num_vertices(graph))
        marks.resize(std::max(boost::num_vertices(graph), 2 * marks.size()));
    ++search;
    queue.clear();
    reachAllInputs(downstreamNode);
    for (std::size_t head = 0; head < queue.size(); ++head) {
        const Vertex vertex = queue[head];
        const auto entering = boost::in_edges(vertex, graph);
        for (auto edge = entering.first; edge != entering.second; ++edge) {
            const Vertex source = boost::source(*edge, graph);
            const Port& port = graph[source];
            if (followHierarchy) {
                const bool produces = !port.isInput && !nodes[at(port.node)].isGroup;
                if (produces && port.node == upstreamNode)
                    return true;
                reach(source);
            } else if (graph[vertex].isInput && !port.isInput) {
                // A regular edge: the search continues at all inputs of the sibling.
                if (port.node == upstreamNode)
                    return true;
                if (marks[source] != search) {
                    marks[source] = search;
                    reachAllInputs(port.node);
                }
            }
        }
    }
    return false;
}

void PortGraph::removeNode(int node)
{
    Node& removed = nodes[at(node)];
    for (const Vertex vertex : removed.inputs)
        boost::clear_vertex(vertex, graph);
    for (const Vertex vertex : removed.outputs)
        boost::clear_vertex(vertex, graph);
    std::vector<int>& siblings = nodes[at(removed.parent)].children;
    siblings.erase(std::find(siblings.begin(), siblings.end(), node));
}

} // namespace OrvBench
