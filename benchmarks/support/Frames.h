// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef ORV_BENCHMARKS_FRAMES_H
#define ORV_BENCHMARKS_FRAMES_H

#include "support/Shape.h"

#include <Kestrin/Orv/RenderPassHelper.h>
#include <Kestrin/Orv/Renderer.h>

#include <oneapi/tbb/flow_graph.h>

#include <functional>
#include <memory>
#include <vector>

namespace OrvBench {

/// A pass with little work: its one output mixes all its inputs, their order and its seed.
class MixPass : public Kestrin::Orv::RenderPassHelper
{
public:
    MixPass(int seed, int numInputs, int numOutputs);
    void start(Kestrin::Orv::RenderCallbacks*) override;
    void skip(Kestrin::Orv::RenderCallbacks*) override { }

private:
    uint ownSeed;
};

/// Builds the shape in a renderer. The one input of the shape's root becomes a parameter, and the
/// outputs of the root become the renderer's outputs. For every node that is not a group,
/// `makePass` makes a pass from its ref and port counts.
template<typename MakePass>
void build(const Shape& shape, Kestrin::Orv::Renderer& renderer, MakePass makePass);

/// A frame as a programmer would write it for this one graph: it knows all sources of inputs
/// beforehand, and makes only the calls that a renderer makes on its passes. It uses the passes of
/// a renderer.
class HandWrittenFrame
{
public:
    HandWrittenFrame(const Shape& shape, Kestrin::Orv::Renderer& renderer);

    void setParameter(const QVariant& value) { parameter = value; }
    bool render();
    /// The same frame while the passes start one by one.
    bool renderStaggered();

    int numPasses() const { return static_cast<int>(steps.size()); }
    /// The step of one pass in the frame.
    bool runPass(int position) { return run(steps[static_cast<std::size_t>(position)], true); }
    void collectOutputs();
    const QVariant& output(int index) const { return outputs[static_cast<std::size_t>(index)]; }
    /// Positions of the passes that feed this one, in the order of its inputs.
    std::vector<int> producers(int position) const;

private:
    struct Input
    {
        Kestrin::Orv::RenderPass* producer; // null for none
        int port;
        bool isParameter;
        int producerPosition;
    };
    struct Step
    {
        Kestrin::Orv::RenderPass* pass;
        std::size_t firstInput; // in `inputs`
    };

    bool run(const Step& step, bool start);

    std::vector<Step> steps;
    std::vector<Input> inputs; // of all steps, one after the other
    std::vector<Input> outputFeeds;
    std::vector<QVariant> outputs;
    std::vector<bool> started; // by step
    QVariant parameter;
};

/// A flow graph of oneTBB runs the same passes on one thread, with a node per pass and an edge per
/// connection. The graph is built once.
template<typename Policy>
class FlowFrame
{
public:
    explicit FlowFrame(HandWrittenFrame& frameToRun)
        : frame(frameToRun)
    {
        using Message = oneapi::tbb::flow::continue_msg;
        for (int position = 0; position < frame.numPasses(); ++position) {
            nodes.push_back(std::make_unique<Node>(
                graph, [this, position](const Message&) { failed |= !frame.runPass(position); }));
            const std::vector<int> producers = frame.producers(position);
            for (const int producer : producers) {
                oneapi::tbb::flow::make_edge(*nodes[static_cast<std::size_t>(producer)],
                                             *nodes.back());
            }
            if (producers.empty())
                sources.push_back(nodes.back().get());
        }
    }

    bool render()
    {
        failed = false;
        for (Node* source : sources)
            source->try_put(oneapi::tbb::flow::continue_msg());
        graph.wait_for_all();
        frame.collectOutputs();
        return !failed;
    }

private:
    using Node = oneapi::tbb::flow::continue_node<oneapi::tbb::flow::continue_msg, Policy>;

    HandWrittenFrame& frame;
    bool failed = false;
    oneapi::tbb::flow::graph graph;
    std::vector<std::unique_ptr<Node>> nodes;
    std::vector<Node*> sources;
};

/// The same passes in a graph of functions that is declared, sorted and run again in every frame,
/// like the frame graphs of renderers. It keeps its memory from frame to frame.
class RebuiltFrame
{
public:
    explicit RebuiltFrame(HandWrittenFrame& frameToRun);
    bool render();

private:
    void clear();
    void addPass(const std::vector<int>& reads, std::function<bool()> execute);
    void sort();

    struct Pass
    {
        std::function<bool()> execute;
        int firstRead;
        int numReads;
        int waitingFor;
        int firstReader;
        int numReaders;
    };

    HandWrittenFrame& frame;
    std::vector<std::vector<int>> declaredReads; // by pass: the passes that it reads
    std::vector<Pass> passes;
    std::vector<int> reads;   // of all passes, one after the other
    std::vector<int> readers; // likewise
    std::vector<int> order;
};

template<typename MakePass>
void build(const Shape& shape, Kestrin::Orv::Renderer& renderer, MakePass makePass)
{
    using Kestrin::Orv::Graph;
    renderer.addParameter(QStringLiteral("parameter"), 0u);
    for (int i = 0; i < shape.node(0).numOutputs; ++i)
        renderer.addOutput(QStringLiteral("output%1").arg(i));
    for (int ref = 1; ref < shape.numNodes(); ++ref) {
        const Shape::Node& node = shape.node(ref);
        if (node.isGroup)
            renderer.addGroup(node.name, node.numInputs, node.numOutputs, node.parent);
        else
            renderer.addPass(node.name, makePass(ref, node.numInputs, node.numOutputs),
                             node.parent);
    }
    connect(shape, *renderer.getGraph());
}

} // namespace OrvBench

#endif
