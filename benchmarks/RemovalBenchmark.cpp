// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "support/FlatGraph.h"
#include "support/PortGraph.h"
#include "support/Rows.h"
#include "support/Shape.h"

#include <Kestrin/Orv/Graph.h>

#include <memory>
#include <vector>

// Removing every other node, and compacting the graph afterwards.

using namespace OrvBench;
using Kestrin::Orv::Graph;

namespace {

const Shape& shapeOf(int size)
{
    static Cache<Shape> shapes;
    return shapes.get(std::to_string(size), [size] {
        return std::make_unique<Shape>(layered(20, size / 20, Order::SinkFirst));
    });
}

std::unique_ptr<Graph> makeGraph(const Shape& shape)
{
    auto graph = std::make_unique<Graph>();
    build(shape, *graph);
    return graph;
}

void removeNode(FlatGraph& flat, int node)
{
    flat.removeNode(static_cast<FlatGraph::Vertex>(node));
}

template<typename AnyGraph>
void removeNode(AnyGraph& graph, int node)
{
    graph.removeNode(node);
}

template<typename AnyGraph>
void removeEveryOther(AnyGraph& graph, int numNodes)
{
    for (int node = 1; node < numNodes; node += 2)
        removeNode(graph, node);
}

int countRegularEdges(const Graph& graph)
{
    int count = 0;
    for (int edge = 0; edge < graph.numEdgesGlobal(); ++edge)
        count += graph.isRegularEdge(edge);
    return count;
}

int countRegularEdges(const PortGraph& ports)
{
    int count = 0;
    for (auto edges = boost::edges(ports.vertices()); edges.first != edges.second; ++edges.first) {
        const auto src = source(*edges.first, ports.vertices());
        const auto dst = target(*edges.first, ports.vertices());
        count += !ports.port(src).isInput && ports.port(dst).isInput;
    }
    return count;
}

void compareRemoval(const Shape& shape)
{
    const auto graph = makeGraph(shape);
    PortGraph ports(shape);
    FlatGraph flat(shape);
    removeEveryOther(*graph, shape.numNodes());
    removeEveryOther(ports, shape.numNodes());
    removeEveryOther(flat, shape.numNodes());
    const int expected = static_cast<int>(boost::num_edges(flat.nodes()));
    requireSame(expected > 0, "edges left over");
    requireEqual(countRegularEdges(*graph), expected, "edges left in the graph");
    requireEqual(countRegularEdges(ports), expected, "edges left in the port graph");
    requireEqual(graph->numNodes(Graph::kRootNodeRef),
                 static_cast<int>(ports.node(0).children.size()), "children left");
}

void addRemovalRows(int size)
{
    const auto add = [size](const char* subject, auto make) {
        addRow("removal", "remove every other node", subject, size, [=](benchmark::State& state) {
            static Cache<bool> compared;
            compared.get(std::to_string(size), [size] {
                compareRemoval(shapeOf(size));
                return std::make_unique<bool>(true);
            });
            const Shape& shape = shapeOf(size);
            timeOnFresh(
                state, [&] { return make(shape); },
                [&](auto& graph) { removeEveryOther(graph, shape.numNodes()); });
        });
    };
    add("orv", makeGraph);
    add("boost", [](const Shape& shape) { return std::make_unique<PortGraph>(shape); });
    add("flat", [](const Shape& shape) { return std::make_unique<FlatGraph>(shape); });
}

// purge() beside reading all data that it has to read

/// Reads every number that the graph holds, once, through its queries.
qint64 readAll(const Graph& graph)
{
    qint64 sum = 0;
    const int numNodes = graph.numNodesGlobal();
    for (int node = 0; node < numNodes; ++node) {
        sum += graph.isValidNode(node) + graph.parentNode(node) + graph.nodeValue(node);
        const int numChildren = graph.numNodes(node);
        for (int i = 0; i < numChildren; ++i)
            sum += graph.getNode(i, node);
        const int numInputs = graph.numInputs(node);
        for (int i = 0; i < numInputs; ++i) {
            sum += graph.inputSource(node, i) + graph.inputGroup(node, i);
            const int numDestinations = graph.numInputDestinations(node, i);
            for (int d = 0; d < numDestinations; ++d)
                sum += graph.inputDestination(node, i, d);
        }
        const int numOutputs = graph.numOutputs(node);
        for (int i = 0; i < numOutputs; ++i) {
            sum += graph.outputSource(node, i) + graph.outputGroup(node, i);
            const int numDestinations = graph.numOutputDestinations(node, i);
            for (int d = 0; d < numDestinations; ++d)
                sum += graph.outputDestination(node, i, d);
        }
    }
    const int numEdges = graph.numEdgesGlobal();
    for (int edge = 0; edge < numEdges; ++edge) {
        sum += graph.isValidEdge(edge) + graph.edgeSourceNode(edge) + graph.edgeSourceIndex(edge)
            + graph.edgeDestNode(edge) + graph.edgeDestIndex(edge);
    }
    return sum;
}

std::unique_ptr<Graph> makeGraphToPurge(const Shape& shape)
{
    auto graph = makeGraph(shape);
    removeEveryOther(*graph, shape.numNodes());
    return graph;
}

/// The ends of the live edges after renumbering, computed without the library.
std::vector<int> expectedEnds(const Graph& graph)
{
    std::vector<int> refs;
    int next = 0;
    for (int node = 0; node < graph.numNodesGlobal(); ++node)
        refs.push_back(graph.isValidNode(node) ? next++ : -1);
    std::vector<int> ends;
    for (int edge = 0; edge < graph.numEdgesGlobal(); ++edge) {
        if (graph.isValidEdge(edge)) {
            ends.insert(ends.end(),
                        {refs[static_cast<std::size_t>(graph.edgeSourceNode(edge))],
                         graph.edgeSourceIndex(edge),
                         refs[static_cast<std::size_t>(graph.edgeDestNode(edge))],
                         graph.edgeDestIndex(edge)});
        }
    }
    return ends;
}

/// Whether the output that a live edge leaves and the input that it enters both name the edge.
bool portsAgree(const Graph& graph)
{
    for (int edge = 0; edge < graph.numEdgesGlobal(); ++edge) {
        const int src = graph.edgeSourceNode(edge);
        const int output = graph.edgeSourceIndex(edge);
        bool named = false;
        for (int i = 0; i < graph.numOutputDestinations(src, output); ++i)
            named |= graph.outputDestination(src, output, i) == edge;
        // The edges of the root's ports enter outputs or leave inputs.
        const bool touchesRoot =
            src == Graph::kRootNodeRef || graph.edgeDestNode(edge) == Graph::kRootNodeRef;
        const int fed = graph.inputSource(graph.edgeDestNode(edge), graph.edgeDestIndex(edge));
        if (!touchesRoot && (!named || fed != edge))
            return false;
    }
    return true;
}

void comparePurge(const Shape& shape)
{
    const auto graph = makeGraphToPurge(shape);
    const std::vector<int> expected = expectedEnds(*graph);
    const int numNodes = shape.numNodes() / 2 + 1;
    requireSame(static_cast<int>(expected.size()) < 4 * graph->numEdgesGlobal(), "removed edges");
    graph->purge();
    requireEqual(graph->numNodesGlobal(), numNodes, "nodes left by purge");
    requireEqual(expectedEnds(*graph), expected, "edges left by purge");
    requireEqual(4 * graph->numEdgesGlobal(), static_cast<int>(expected.size()),
                 "number of edges left by purge");
    requireSame(portsAgree(*graph), "the edges that ports name after purge");
    const auto again = makeGraphToPurge(shape);
    requireEqual(readAll(*again), readAll(*makeGraphToPurge(shape)), "reads");
}

void addPurgeRows(int size)
{
    const auto add = [size](const char* subject, auto work) {
        addRow("removal", "purge", subject, size, [=](benchmark::State& state) {
            static Cache<bool> compared;
            compared.get(std::to_string(size), [size] {
                comparePurge(shapeOf(size));
                return std::make_unique<bool>(true);
            });
            timeOnFresh(
                state, [size] { return makeGraphToPurge(shapeOf(size)); }, work);
        });
    };
    add("orv", [](Graph& graph) { graph.purge(); });
    add("read", [](const Graph& graph) { benchmark::DoNotOptimize(readAll(graph)); });
}

const bool registered = [] {
    for (const int size : {200, 2000, 20000}) {
        addRemovalRows(size);
        addPurgeRows(size);
    }
    return true;
}();

} // namespace
