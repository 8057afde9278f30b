// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "support/Frames.h"
#include "support/Rows.h"
#include "support/Shape.h"

#include <Kestrin/Orv/Graph.h>
#include <Kestrin/Orv/Renderer.h>

#include <oneapi/tbb/global_control.h>

#include <functional>
#include <memory>
#include <utility>

// Frames: the time of a renderer for running and setting up passes that do almost nothing.

using namespace OrvBench;
using Kestrin::Orv::Renderer;

namespace {

namespace flow = oneapi::tbb::flow;

using Flow = FlowFrame<flow::queueing>;
using LightweightFlow = FlowFrame<flow::lightweight>;

MixPass* makePass(int ref, int numInputs, int numOutputs)
{
    return new MixPass(ref, numInputs, numOutputs);
}

std::unique_ptr<Renderer> makeRenderer(const Shape& shape, bool staggered)
{
    auto renderer = std::make_unique<Renderer>();
    build(shape, *renderer, makePass);
    if (staggered)
        renderer->addParameter(QStringLiteral("Orv_bool_staggeredFirstFrame"), true);
    renderer->setup(nullptr);
    return renderer;
}

/// A renderer, and the other subjects that run its passes.
struct Subjects
{
    explicit Subjects(Shape shapeToRun)
        : shape(std::move(shapeToRun))
        , renderer(makeRenderer(shape, false))
        , loop(shape, *renderer)
        , flowFrame(loop)
        , rebuilt(loop)
    {
        // A lightweight node runs the next one inside itself, so thousands of them overflow the
        // stack.
        if (loop.numPasses() <= 1000)
            lightweight = std::make_unique<LightweightFlow>(loop);

        for (const uint parameter : {1u, 123456789u}) {
            renderer->setParameter(0, parameter);
            loop.setParameter(parameter);
            requireSame(renderer->render(nullptr), "success");
            requireEqual(renderer->getNumPasses(), loop.numPasses(), "the number of passes");
            std::vector<QVariant> outputs;
            for (int i = 0; i < renderer->numOutputs(); ++i)
                outputs.push_back(renderer->output(i));
            compare(
                outputs, parameter, [this] { return loop.render(); }, "the hand-written loop");
            compare(
                outputs, parameter, [this] { return flowFrame.render(); }, "the flow graph");
            compare(
                outputs, parameter, [this] { return rebuilt.render(); }, "the rebuilt graph");
            if (lightweight) {
                compare(
                    outputs, parameter, [this] { return lightweight->render(); },
                    "the lightweight flow graph");
            }
        }
    }

    template<typename Render>
    void compare(const std::vector<QVariant>& outputs, uint parameter, Render render,
                 const char* what)
    {
        // Another parameter changes the results, which shows passes that do not run again.
        loop.setParameter(parameter + 1);
        requireSame(loop.render(), what);
        requireSame(outputs[0] != loop.output(0), "outputs that tell parameters apart");
        loop.setParameter(parameter);
        requireSame(render(), what);
        for (std::size_t i = 0; i < outputs.size(); ++i)
            requireEqual(outputs[i], loop.output(static_cast<int>(i)), what);
    }

    Shape shape;
    std::unique_ptr<Renderer> renderer;
    HandWrittenFrame loop;
    Flow flowFrame;
    RebuiltFrame rebuilt;
    std::unique_ptr<LightweightFlow> lightweight;
};

Shape makeShape(const std::string& name, int size)
{
    if (name == "chain")
        return chain(size, Order::SinkFirst);
    if (name == "fan")
        return fan(size, Order::SinkFirst);
    if (name == "layered")
        return layered(size / (size < 100 ? 5 : size / 20), size < 100 ? 5 : size / 20,
                       Order::SinkFirst);
    return wrapped(chain(size, Order::SinkFirst));
}

Subjects& subjects(const std::string& shape, int size)
{
    static Cache<Subjects> cache;
    return cache.get(shape + std::to_string(size),
                     [&] { return std::make_unique<Subjects>(makeShape(shape, size)); });
}

template<typename Run>
void addFrames(const std::string& shape, const char* subject, int size, Run run)
{
    addRow("frame", shape, subject, size, [=](benchmark::State& state) {
        Subjects& s = subjects(shape, size);
        for (auto _ : state)
            requireSame(run(s), "success");
        state.SetItemsProcessed(state.iterations() * size);
    })->MeasureProcessCPUTime();
}

void addFrameRows(const std::string& shape, int size)
{
    addFrames(shape, "orv", size, [](Subjects& s) { return s.renderer->render(nullptr); });
    addFrames(shape, "loop", size, [](Subjects& s) { return s.loop.render(); });
    addFrames(shape, "tbb", size, [](Subjects& s) { return s.flowFrame.render(); });
    addFrames(shape, "rebuilt", size, [](Subjects& s) { return s.rebuilt.render(); });
    if (size <= 1000)
        addFrames(shape, "lightweight", size, [](Subjects& s) { return s.lightweight->render(); });
}

/// A repeated setup, including the teardown, beside a frame of the same renderer and beside
/// building a flow graph.
void addSetupRows(const std::string& shape, int size)
{
    addRow("setup", shape, "orv", size, [=](benchmark::State& state) {
        Renderer& renderer = *subjects(shape, size).renderer;
        for (auto _ : state)
            renderer.setup(nullptr);
    });
    addRow("setup", shape, "frame", size, [=](benchmark::State& state) {
        Renderer& renderer = *subjects(shape, size).renderer;
        for (auto _ : state)
            requireSame(renderer.render(nullptr), "success");
    });
    addRow("setup", shape, "tbb", size, [=](benchmark::State& state) {
        Subjects& s = subjects(shape, size);
        timeBuild(state, [&] { return std::make_unique<Flow>(s.loop); });
    });
}

/// A renderer under the staggered first frame, with all passes started, beside the same renderer
/// without it.
struct StaggeredSubjects
{
    explicit StaggeredSubjects(const Shape& shape)
        : plain(makeRenderer(shape, false))
        , staggered(makeRenderer(shape, true))
    {
        while (staggered->getGraphProcessingMode() != 2)
            requireSame(staggered->render(nullptr), "success");
        for (const uint parameter : {5u, 77u}) {
            plain->setParameter(0, parameter);
            staggered->setParameter(0, parameter);
            requireSame(plain->render(nullptr) && staggered->render(nullptr), "success");
            requireEqual(plain->output(0), staggered->output(0), "staggered frames");
        }
    }

    std::unique_ptr<Renderer> plain;
    std::unique_ptr<Renderer> staggered;
};

void addStaggeredRows(int size)
{
    for (const bool staggered : {true, false}) {
        addRow("staggered", "frame, all up", staggered ? "orv" : "plain", size,
               [=](benchmark::State& state) {
                   static Cache<StaggeredSubjects> cache;
                   StaggeredSubjects& s = cache.get(std::to_string(size), [size] {
                       return std::make_unique<StaggeredSubjects>(chain(size, Order::SinkFirst));
                   });
                   Renderer& renderer = staggered ? *s.staggered : *s.plain;
                   for (auto _ : state)
                       requireSame(renderer.render(nullptr), "success");
               });
    }
}

/// All frames from the first one to the one that starts the last pass.
void addBringUpRows(int size)
{
    struct BringUp
    {
        std::unique_ptr<Renderer> renderer;
        std::unique_ptr<HandWrittenFrame> loop;
    };
    const auto prepare = [size] {
        static Cache<Shape> shapes;
        const Shape& shape = shapes.get(std::to_string(size), [size] {
            return std::make_unique<Shape>(chain(size, Order::SinkFirst));
        });
        auto fresh = std::make_unique<BringUp>();
        fresh->renderer = makeRenderer(shape, true);
        fresh->loop = std::make_unique<HandWrittenFrame>(shape, *fresh->renderer);
        return fresh;
    };
    const auto compare = [prepare, size] {
        const auto a = prepare();
        const auto b = prepare();
        for (int frame = 1; frame <= size + 1; ++frame) {
            requireSame(a->renderer->render(nullptr) && b->loop->renderStaggered(), "success");
            requireEqual(a->renderer->output(0), b->loop->output(0), "outputs while coming up");
            requireEqual(a->renderer->output(0).isValid(), frame >= size, "the last pass's start");
        }
        return std::make_unique<bool>(true);
    };
    const auto add = [&](const char* subject, auto renderAll) {
        addRow("staggered", "bringing all up", subject, size, [=](benchmark::State& state) {
            static Cache<bool> compared;
            compared.get(std::to_string(size), compare);
            timeOnFresh(state, prepare, [&](BringUp& fresh) {
                for (int frame = 1; frame <= size; ++frame)
                    requireSame(renderAll(fresh), "success");
            });
        });
    };
    add("orv", [](BringUp& fresh) { return fresh.renderer->render(nullptr); });
    add("loop", [](BringUp& fresh) { return fresh.loop->renderStaggered(); });
}

const bool registered = [] {
    // The flow graph's work stays on the calling thread.
    static const oneapi::tbb::global_control oneThread(
        oneapi::tbb::global_control::max_allowed_parallelism, 1);
    for (const char* shape : {"chain", "fan", "layered", "chain in nested groups"}) {
        for (const int size : {10, 100, 1000, 10000}) {
            addFrameRows(shape, size);
            addSetupRows(shape, size);
        }
    }
    for (const int size : {10, 100, 1000, 10000})
        addStaggeredRows(size);
    for (const int size : {10, 100, 1000})
        addBringUpRows(size);
    return true;
}();

} // namespace
