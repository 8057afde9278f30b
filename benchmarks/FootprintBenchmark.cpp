// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "support/Allocations.h"
#include "support/FlatGraph.h"
#include "support/Frames.h"
#include "support/PortGraph.h"
#include "support/Rows.h"
#include "support/Shape.h"

#include <Kestrin/Orv/Graph.h>
#include <Kestrin/Orv/HistogramFrameTimes.h>
#include <Kestrin/Orv/Memory.h>
#include <Kestrin/Orv/Renderer.h>
#include <Kestrin/Orv/Walkers.h>

#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>

#include <functional>
#include <memory>

// Memory on the heap: bytes that stay allocated, and allocations of an operation. These rows are
// counted, not timed. Each count is the same on every run.

using namespace OrvBench;
using namespace Kestrin::Orv;

namespace {

/// The number of allocations made by `work`.
template<typename Work>
double countAllocations(Work work)
{
    const std::size_t before = allocations().count;
    work();
    return static_cast<double>(allocations().count - before);
}

/// The counter must work; otherwise a row that expects zero could not fail.
void checkCounter()
{
    const Allocations before = allocations();
    auto block = std::make_unique<char[]>(1000);
    benchmark::DoNotOptimize(block.get());
    const Allocations with = allocations();
    requireEqual(with.count, before.count + 1, "a counted allocation");
    requireSame(with.bytes >= before.bytes + 1000, "counted bytes");
    block.reset();
    requireEqual(allocations().bytes, before.bytes, "discounted bytes");
    QString string;
    requireSame(countAllocations([&] { string.resize(100); }) == 1, "an allocation inside Qt");
}

void addCount(const std::string& topic, const std::string& work, const std::string& subject,
              int size, const char* counter, std::function<double()> count)
{
    addRow(topic, work, subject, size,
           [=](benchmark::State& state) {
               checkCounter();
               double counted = 0;
               for (auto _ : state)
                   counted = count();
               state.counters[counter] = counted;
           })
        ->Iterations(1)
        ->Repetitions(1);
}

// Bytes

constexpr int numNodes = 10000;

/// A chain of nodes with the given number of inputs and one output each, connected at the given
/// number of inputs.
Shape shapeOf(int numInputs, int numConnected)
{
    Shape shape;
    shape.nodes.push_back({-1, 0, 0, true, QString()});
    for (int i = 0; i < numNodes; ++i)
        shape.nodes.push_back({Graph::kRootNodeRef, numInputs, 1, false, QString()});
    for (int node = numNodes; node > 1; --node) {
        for (int input = 0; input < numConnected; ++input)
            shape.connections.push_back({Shape::Kind::Regular, node - 1, 0, node, input});
    }
    return shape;
}

struct OrvHolder
{
    explicit OrvHolder(const Shape& shape) { build(shape, graph); }
    Graph graph;
};

template<typename Held>
double bytesOf(const Shape& shape)
{
    const std::ptrdiff_t before = allocations().bytes;
    const auto held = std::make_unique<Held>(shape);
    return static_cast<double>(allocations().bytes - before);
}

template<typename Held>
void addByteRows(const char* subject)
{
    addCount("bytes", "per node with four inputs and one output", subject, 1, "bytes",
             [] { return bytesOf<Held>(shapeOf(4, 0)) / numNodes; });
    addCount("bytes", "per further input", subject, 1, "bytes", [] {
        return (bytesOf<Held>(shapeOf(12, 0)) - bytesOf<Held>(shapeOf(4, 0))) / (8 * numNodes);
    });
    addCount("bytes", "per connection", subject, 1, "bytes", [] {
        return (bytesOf<Held>(shapeOf(4, 4)) - bytesOf<Held>(shapeOf(4, 0))) / (4 * (numNodes - 1));
    });
}

// Allocations. "orv" is the counted number. "allowed" is the number in the description of the
// operation.

void addAllowed(const std::string& work, int size, std::function<double()> count, double allowed)
{
    addCount("allocations", work, "orv", size, "allocations", std::move(count));
    addCount("allocations", work, "allowed", size, "allocations", [allowed] { return allowed; });
}

Renderer& rendererOf(bool staggered)
{
    static Cache<Renderer> cache;
    return cache.get(staggered ? "staggered" : "plain", [staggered] {
        auto renderer = std::make_unique<Renderer>();
        build(wrapped(layered(20, 5, Order::SinkFirst)), *renderer,
              [](int ref, int numInputs, int numOutputs) {
                  return new MixPass(ref, numInputs, numOutputs);
              });
        if (staggered)
            renderer->addParameter(QStringLiteral("Orv_bool_staggeredFirstFrame"), true);
        renderer->setup(nullptr);
        requireSame(renderer->render(nullptr), "success");
        while (renderer->getGraphProcessingMode() != 2)
            requireSame(renderer->render(nullptr), "success");
        return renderer;
    });
}

double countInFrames(bool staggered)
{
    Renderer& renderer = rendererOf(staggered);
    return countAllocations([&] {
        for (int frame = 1; frame <= 100; ++frame) {
            renderer.setParameter(0, static_cast<uint>(frame));
            requireSame(renderer.render(nullptr), "success");
        }
    });
}

const Graph& graphOf(int size)
{
    static Cache<OrvHolder> cache;
    return cache
        .get(std::to_string(size),
             [size] {
                 return std::make_unique<OrvHolder>(layered(20, size / 20, Order::SinkFirst));
             })
        .graph;
}

/// Every query and every one-step walk, from every port.
double countInQueries()
{
    const Graph& graph = graphOf(200);
    const int bottom = graph.numNodesGlobal() - 1;
    return countAllocations([&] {
        for (int node = 0; node <= bottom; ++node) {
            for (int input = 0; input < graph.numInputs(node); ++input) {
                int source = node;
                int port = input;
                benchmark::DoNotOptimize(graph.walkToSourceNode(source, port));
                source = node;
                port = input;
                benchmark::DoNotOptimize(graph.walkAcross(source, port));
                benchmark::DoNotOptimize(graph.inputSource(node, input));
                benchmark::DoNotOptimize(graph.inputName(node, input));
            }
            benchmark::DoNotOptimize(graph.nodeName(node));
            benchmark::DoNotOptimize(graph.isValidNode(node));
        }
    });
}

template<typename Walker, typename... Args>
double countInWalk(const Graph& graph, Args... args)
{
    return countAllocations([&] {
        for (Walker walker(graph, args...); walker.valid(); walker.next())
            benchmark::DoNotOptimize(walker.node());
    });
}

/// The number of nodes that a walk from the bottom yields.
int walkLength(const Graph& graph, int start)
{
    int length = 0;
    for (BreadthFirstInputWalker walker(graph, start, true); walker.valid(); walker.next())
        ++length;
    return length;
}

void addWalkerRows()
{
    const auto bottom = [] { return graphOf(200).numNodesGlobal() - 1; };
    // The array of visited nodes, one frame per node, and one more.
    addAllowed(
        "bottom-up input walk", 200,
        [=] { return countInWalk<BottomUpInputWalker>(graphOf(200), bottom(), true); },
        1 + walkLength(graphOf(200), bottom()) + 1);
    // One frame per node, and one more.
    addAllowed(
        "bottom-up subgraph walk", 200,
        [] { return countInWalk<BottomUpSubgraphWalker>(graphOf(200), Graph::kRootNodeRef); },
        graphOf(200).numNodesGlobal() + 1);
    // The array of visited nodes, the queue, and one more.
    addAllowed(
        "breadth-first input walk", 200,
        [=] { return countInWalk<BreadthFirstInputWalker>(graphOf(200), bottom(), true); }, 2 + 1);
}

double countInHistogram()
{
    HistogramFrameTimes histogram;
    histogram.addFrameTimeUS(16600);
    return countAllocations([&] {
        for (int frame = 0; frame < 1000; ++frame)
            histogram.addFrameTimeUS(16600);
    });
}

double countInPurge()
{
    OrvHolder holder(layered(20, 10, Order::SinkFirst));
    holder.graph.removeNode(100);
    return countAllocations([&] { holder.graph.purge(); });
}

double countInRemoval()
{
    OrvHolder holder(layered(20, 10, Order::SinkFirst));
    return countAllocations([&] {
        for (int node = 1; node <= 100; ++node)
            holder.graph.removeNode(node);
    });
}

double countInRefusals()
{
    Graph graph;
    const int a = graph.addNode(QStringLiteral("a"), 1, 1, Graph::kRootNodeRef);
    const int b = graph.addNode(QStringLiteral("b"), 1, 1, Graph::kRootNodeRef);
    graph.addEdge(a, 0, b, 0);
    return countAllocations(
        [&] { requireEqual(graph.addEdge(a, 0, b, 0), Graph::kInvalidEdgeRef, "a refusal"); });
}

double countInMapping()
{
    const QTemporaryDir directory;
    const QString path = directory.filePath(QStringLiteral("sample"));
    QFile file(path);
    requireSame(file.open(QIODevice::WriteOnly) && file.write("sample") == 6, "the sample file");
    file.close();
    MemoryMappedFile mapped(path);
    mapped.release(mapped.get(0, 6));
    return countAllocations([&] { mapped.release(mapped.get(0, 6)); });
}

const bool registered = [] {
    addByteRows<OrvHolder>("orv");
    addByteRows<PortGraph>("boost");
    addByteRows<FlatGraph>("flat");

    addAllowed(
        "100 frames", 100, [] { return countInFrames(false); }, 0);
    addAllowed(
        "100 frames, staggered, all up", 100, [] { return countInFrames(true); }, 0);
    addAllowed("queries and one-step walks", 200, countInQueries, 0);
    addAllowed("a fed input refused", 1, countInRefusals, 0);
    addWalkerRows();
    addAllowed("1000 frame times", 1, countInHistogram, 0);
    // The two maps and the two tables.
    addAllowed("purge", 200, countInPurge, 4);
    // For each node, the list of nodes to remove and the list of nodes still to visit.
    addAllowed("100 removals", 200, countInRemoval, 200);
    // Qt's record of the mapping.
    addAllowed("a mapped range", 1, countInMapping, 1);
    return true;
}();

} // namespace
