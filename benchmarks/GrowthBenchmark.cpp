// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "support/FlatGraph.h"
#include "support/Frames.h"
#include "support/PortGraph.h"
#include "support/Rows.h"
#include "support/Shape.h"

#include <Kestrin/Orv/Graph.h>
#include <Kestrin/Orv/Renderer.h>

#include <memory>

// The growth of the costs from a hundred nodes to a million. The shape is a chain, built sink
// first. The library also builds it source first. For the peers, this takes the square of the
// length.

using namespace OrvBench;
using Kestrin::Orv::Graph;
using Kestrin::Orv::Renderer;

namespace {

/// A small pass, so that a million of them fit into memory. Its output follows its input.
class SmallPass : public Kestrin::Orv::RenderPass
{
public:
    void setup(Kestrin::Orv::RenderCallbacks*) override { }
    void beginFrame(Kestrin::Orv::RenderCallbacks*) override { }
    void start(Kestrin::Orv::RenderCallbacks*) override { result = value.toUInt() + 1; }
    void skip(Kestrin::Orv::RenderCallbacks*) override { }
    void endFrame(Kestrin::Orv::RenderCallbacks*) override { }
    void teardown(Kestrin::Orv::RenderCallbacks*) override { }
    void teardownContextData(Kestrin::Orv::RenderCallbacks*) override { }
    int numInputs() const override { return 1; }
    int numOutputs() const override { return 1; }
    QString inputName(int) const override { return QString(); }
    QString outputName(int) const override { return QString(); }
    void setInput(int, const QVariant& input) override { value = input; }
    QVariant defaultValue(int) const override { return 0u; }
    void setDefaultValue(int, const QVariant&) override { }
    QVariant output(int) const override { return result; }
    void setNumOutputUsers(int, int) override { }
    void resetNumOutputUsers() override { }
    unsigned int errorCode() const override { return error; }
    void clearErrorCode() override { error = 0; }
    void setErrorCode(unsigned int code) override { error = code; }

private:
    QVariant value;
    QVariant result;
    unsigned int error = 0;
};

std::unique_ptr<Graph> buildGraph(const Shape& shape)
{
    auto graph = std::make_unique<Graph>();
    build(shape, *graph);
    return graph;
}

const Shape& shapeOf(int size)
{
    static Cache<Shape> shapes;
    return shapes.get(std::to_string(size),
                      [size] { return std::make_unique<Shape>(chain(size, Order::SinkFirst)); });
}

const Shape& sourceFirst(int size)
{
    static Cache<Shape> shapes;
    return shapes.get(std::to_string(size), [size] {
        auto shape = std::make_unique<Shape>(chain(size, Order::SourceFirst));
        const std::unique_ptr<Graph> graph = buildGraph(*shape);
        requireSame(graph->precedes(1, size, true), "precedes, built source first");
        requireSame(!graph->precedes(size, 1, true), "not precedes, built source first");
        return shape;
    });
}

struct Graphs
{
    explicit Graphs(int size)
        : graph(buildGraph(shapeOf(size)))
        , ports(shapeOf(size))
        , flat(shapeOf(size))
    {
        const auto last = static_cast<FlatGraph::Vertex>(size);
        requireSame(graph->precedes(1, size, true), "precedes");
        requireSame(ports.precedes(1, size, true), "precedes by the port graph");
        requireSame(flat.precedes(1, last), "precedes by the flat graph");
        requireSame(!graph->precedes(size, size - 1, true), "not precedes");
        requireSame(!ports.precedes(size, size - 1, true), "not precedes by the port graph");
        requireSame(!flat.precedes(last, last - 1), "not precedes by the flat graph");
    }

    std::unique_ptr<Graph> graph;
    PortGraph ports;
    FlatGraph flat;
};

Graphs& graphs(int size)
{
    static Cache<Graphs> cache;
    return cache.get(std::to_string(size), [size] { return std::make_unique<Graphs>(size); });
}

struct Frames
{
    explicit Frames(int size)
    {
        build(shapeOf(size), renderer, [](int, int, int) { return new SmallPass; });
        renderer.setup(nullptr);
        loop = std::make_unique<HandWrittenFrame>(shapeOf(size), renderer);
        renderer.setParameter(0, 7u);
        requireSame(renderer.render(nullptr), "success");
        requireEqual(renderer.output(0).toUInt(), 7u + static_cast<uint>(size), "a frame's output");
        loop->setParameter(9u);
        requireSame(loop->render(), "success");
        requireEqual(loop->output(0).toUInt(), 9u + static_cast<uint>(size), "the loop's output");
    }

    Renderer renderer;
    std::unique_ptr<HandWrittenFrame> loop;
};

Frames& frames(int size)
{
    static Cache<Frames> cache;
    return cache.get(std::to_string(size), [size] { return std::make_unique<Frames>(size); });
}

template<typename Run>
void add(const char* work, const char* subject, int size, Run run)
{
    Row* row = addRow("growth", work, subject, size, run);
    if (size >= 100000)
        row->Iterations(size == 100000 ? 10 : 2)->Repetitions(3);
}

void addRows(int size)
{
    const auto addBuild = [size](const char* subject, auto buildOne) {
        add("build", subject, size, [=](benchmark::State& state) {
            graphs(size); // for the comparison
            timeBuild(state, [&] { return buildOne(shapeOf(size)); });
        });
    };
    addBuild("orv", buildGraph);
    addBuild("boost", [](const Shape& shape) { return std::make_unique<PortGraph>(shape); });
    addBuild("flat", [](const Shape& shape) { return std::make_unique<FlatGraph>(shape); });
    add("build, source first", "orv", size, [size](benchmark::State& state) {
        const Shape& shape = sourceFirst(size);
        timeBuild(state, [&] { return buildGraph(shape); });
    });

    const auto addQuery = [size](const char* subject, auto query) {
        add("query", subject, size, [=](benchmark::State& state) {
            const Graphs& g = graphs(size);
            for (auto _ : state)
                benchmark::DoNotOptimize(query(g));
        });
    };
    addQuery("orv", [size](const Graphs& g) { return g.graph->precedes(1, size, true); });
    addQuery("boost", [size](const Graphs& g) { return g.ports.precedes(1, size, true); });
    addQuery("flat", [size](const Graphs& g) {
        return g.flat.precedes(1, static_cast<FlatGraph::Vertex>(size));
    });

    add("setup", "orv", size, [size](benchmark::State& state) {
        Renderer& renderer = frames(size).renderer;
        for (auto _ : state)
            renderer.setup(nullptr);
    });
    add("frame", "orv", size, [size](benchmark::State& state) {
        Renderer& renderer = frames(size).renderer;
        for (auto _ : state)
            requireSame(renderer.render(nullptr), "success");
    });
    add("frame", "loop", size, [size](benchmark::State& state) {
        HandWrittenFrame& loop = *frames(size).loop;
        for (auto _ : state)
            requireSame(loop.render(), "success");
    });
}

const bool registered = [] {
    for (const int size : {100, 1000, 10000, 100000, 1000000})
        addRows(size);
    return true;
}();

} // namespace
