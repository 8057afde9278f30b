// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "support/FlatGraph.h"
#include "support/PortGraph.h"
#include "support/Rows.h"
#include "support/Shape.h"

#include <Kestrin/Orv/Graph.h>

#include <memory>
#include <random>

// The ordering query, and the cycle test of a refused edge, which mainly consists of that query.

using namespace OrvBench;
using Kestrin::Orv::Graph;

namespace {

struct Subjects
{
    Subjects(const Shape& flatShape, bool nested)
        : shape(nested ? wrapped(flatShape) : flatShape)
        , isNested(nested)
        , ports(shape)
        , flat(flatShape)
    {
        build(shape, graph);
        const Ends ends = endsOf(flatShape);
        top = ends.sources.back();
        bottom = ends.sinks.back();
        besideBottom = ends.sinks.front();

        std::mt19937 random(3);
        const auto draw = [&] {
            return 1 + static_cast<int>(random() % static_cast<unsigned>(flatShape.numNodes() - 1));
        };
        for (int round = 0; round < 200; ++round)
            compare(draw(), draw());
        compare(top, bottom);
        compare(besideBottom, bottom);
        requireSame(flat.precedes(vertex(top), vertex(bottom)), "what is upstream");
        requireSame(!flat.precedes(vertex(besideBottom), vertex(bottom)), "what is not upstream");
    }

    int ref(int flatRef) const { return isNested ? wrappedRef(flatRef) : flatRef; }
    static FlatGraph::Vertex vertex(int flatRef) { return static_cast<FlatGraph::Vertex>(flatRef); }

    void compare(int upstream, int downstream) const
    {
        const bool answer = flat.precedes(vertex(upstream), vertex(downstream));
        requireEqual(answer, graph.precedes(ref(upstream), ref(downstream), true), "precedes");
        requireEqual(answer, ports.precedes(ref(upstream), ref(downstream), true),
                     "precedes by the port graph");
        const bool siblingsOnly = graph.precedes(ref(upstream), ref(downstream), false);
        requireEqual(siblingsOnly, ports.precedes(ref(upstream), ref(downstream), false),
                     "precedes among siblings by the port graph");
        if (!isNested)
            requireEqual(answer, siblingsOnly, "precedes among siblings");
    }

    Shape shape;
    bool isNested;
    Graph graph;
    PortGraph ports;
    FlatGraph flat;
    int top;          // upstream of `bottom`
    int bottom;       // the start of the search
    int besideBottom; // not upstream of `bottom`, so the search visits every node that is
};

Subjects& subjects(int size, bool nested)
{
    static Cache<Subjects> cache;
    return cache.get(std::to_string(size) + (nested ? "n" : "f"), [&] {
        return std::make_unique<Subjects>(layered(20, size / 20, Order::SinkFirst), nested);
    });
}

void addPrecedes(const std::string& work, int size, bool nested, bool follow, bool yes)
{
    const auto upstream = [yes](const Subjects& s) { return yes ? s.top : s.besideBottom; };
    addRow("query", work, "orv", size, [=](benchmark::State& state) {
        const Subjects& s = subjects(size, nested);
        const int up = s.ref(upstream(s));
        const int down = s.ref(s.bottom);
        for (auto _ : state)
            benchmark::DoNotOptimize(s.graph.precedes(up, down, follow));
    });
    addRow("query", work, "boost", size, [=](benchmark::State& state) {
        const Subjects& s = subjects(size, nested);
        const int up = s.ref(upstream(s));
        const int down = s.ref(s.bottom);
        for (auto _ : state)
            benchmark::DoNotOptimize(s.ports.precedes(up, down, follow));
    });
    addRow("query", work, "flat", size, [=](benchmark::State& state) {
        const Subjects& s = subjects(size, nested);
        const FlatGraph::Vertex up = s.vertex(upstream(s));
        const FlatGraph::Vertex down = s.vertex(s.bottom);
        for (auto _ : state)
            benchmark::DoNotOptimize(s.flat.precedes(up, down));
    });
}

/// The graph refuses an edge from the bottom to an unfed input of the top, and does not change.
void addCycleTest(int size)
{
    const auto edge = [](const Subjects& s) {
        return Shape::Connection{Shape::Kind::Regular, s.bottom, 0, s.top, 1};
    };
    // The bottom feeds an output of the root. This alone would refuse the edge.
    const auto prepared = [size]() -> Subjects& {
        static Cache<Subjects> cache;
        return cache.get(std::to_string(size), [&] {
            Shape shape = layered(20, size / 20, Order::SinkFirst);
            while (shape.connections.back().kind != Shape::Kind::Regular)
                shape.connections.pop_back();
            return std::make_unique<Subjects>(shape, false);
        });
    };
    addRow("query", "cycle test", "orv", size, [=](benchmark::State& state) {
        Subjects& s = prepared();
        const Shape::Connection c = edge(s);
        for (auto _ : state) {
            const int ref = s.graph.addEdge(c.srcNode, c.srcPort, c.dstNode, c.dstPort);
            requireSame(ref == Graph::kInvalidEdgeRef, "a refusal");
        }
    });
    addRow("query", "cycle test", "boost", size, [=](benchmark::State& state) {
        Subjects& s = prepared();
        const Shape::Connection c = edge(s);
        for (auto _ : state)
            requireSame(!s.ports.connect(c), "a refusal by the port graph");
    });
    addRow("query", "cycle test", "flat", size, [=](benchmark::State& state) {
        Subjects& s = prepared();
        const Shape::Connection c = edge(s);
        for (auto _ : state)
            requireSame(!s.flat.connect(s.vertex(c.srcNode), s.vertex(c.dstNode)),
                        "a refusal by the flat graph");
    });
}

const bool registered = [] {
    for (const int size : {200, 2000, 20000}) {
        addPrecedes("precedes, yes", size, false, true, true);
        addPrecedes("precedes, no", size, false, true, false);
        addPrecedes("precedes among siblings, yes", size, false, false, true);
        addPrecedes("precedes among siblings, no", size, false, false, false);
        addPrecedes("precedes in nested groups, yes", size, true, true, true);
        addPrecedes("precedes in nested groups, no", size, true, true, false);
        addCycleTest(size);
    }
    return true;
}();

} // namespace
