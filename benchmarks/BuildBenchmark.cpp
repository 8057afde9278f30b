// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "support/FlatGraph.h"
#include "support/PortGraph.h"
#include "support/Rows.h"
#include "support/Shape.h"

#include <Kestrin/Orv/Graph.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <random>

// Building a graph: nodes and ports, then connections, each with a cycle test.

using namespace OrvBench;
using Kestrin::Orv::Graph;

namespace {

using MakeShape = std::function<Shape(int, Order)>;

std::unique_ptr<Graph> buildGraph(const Shape& shape)
{
    auto graph = std::make_unique<Graph>();
    build(shape, *graph);
    return graph;
}

/// All subjects refuse the same further edges.
void compare(Shape shape)
{
    // An output that feeds the root cannot feed siblings, so it feeds nothing here.
    const auto touchesRoot = [](const Shape::Connection& connection) {
        return connection.kind != Shape::Kind::Regular;
    };
    shape.connections.erase(
        std::remove_if(shape.connections.begin(), shape.connections.end(), touchesRoot),
        shape.connections.end());
    const auto graph = buildGraph(shape);
    const PortGraph ports(shape);
    const FlatGraph flat(shape);
    const std::vector<int> sources = endsOf(shape).sources;

    std::mt19937 random(2);
    const auto draw = [&random](std::size_t below) { return random() % below; };
    for (int round = 0; round < 100; ++round) {
        const int src = static_cast<int>(1 + draw(shape.nodes.size() - 1));
        const int dst = sources[draw(sources.size())];
        const int input = graph->addInput(dst, QString(), Graph::kInvalidGroupRef);
        const bool refused = graph->addEdge(src, 0, dst, input) == Graph::kInvalidEdgeRef;
        graph->disconnectInput(dst, input);
        graph->removeInput(dst, input);
        requireEqual(refused, ports.precedes(dst, src, true), "refusals by the port graph");
        requireEqual(
            refused,
            flat.precedes(static_cast<FlatGraph::Vertex>(dst), static_cast<FlatGraph::Vertex>(src)),
            "refusals by the flat graph");
    }
}

/// The shapes are compared when they are built sink first, which takes the least time. In both
/// orders, each connection must be accepted.
const Shape& shapeOf(const std::string& work, int size, Order order, const MakeShape& make)
{
    static Cache<Shape> shapes;
    return shapes.get(work + std::to_string(size), [&] {
        compare(make(size, Order::SinkFirst));
        return std::make_unique<Shape>(make(size, order));
    });
}

void addRows(const std::string& shapeName, int size, Order order, const MakeShape& make,
             bool once = false)
{
    const std::string work =
        shapeName + (order == Order::SinkFirst ? ", sink first" : ", source first");
    const auto add = [&](const char* subject, auto buildOne) {
        Row* row = addRow("build", work, subject, size, [=](benchmark::State& state) {
            const Shape& shape = shapeOf(work, size, order, make);
            timeBuild(state, [&] { return buildOne(shape); });
        });
        if (once)
            row->Iterations(1)->Repetitions(1);
    };
    add("orv", buildGraph);
    add("boost", [](const Shape& shape) { return std::make_unique<PortGraph>(shape); });
    add("flat", [](const Shape& shape) { return std::make_unique<FlatGraph>(shape); });
}

const bool registered = [] {
    const auto layers = [](int size, Order order) { return layered(20, size / 20, order); };
    for (const int size : {200, 2000, 20000})
        addRows("layered", size, Order::SinkFirst, layers);
    for (const int size : {200, 2000})
        addRows("layered", size, Order::SourceFirst, layers);
    // The peers search thousands of nodes for each connection. This takes minutes, so scripts/bench
    // leaves it out.
    addRows("layered", 20000, Order::SourceFirst, layers, true);
    for (const int size : {100, 1000, 10000}) {
        addRows("chain", size, Order::SinkFirst, chain);
        addRows("fan", size, Order::SinkFirst, fan);
    }
    for (const int size : {100, 1000}) {
        addRows("chain", size, Order::SourceFirst, chain);
        addRows("fan", size, Order::SourceFirst, fan);
    }
    return true;
}();

} // namespace
