// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef ORV_TESTS_SAMPLERUN_H
#define ORV_TESTS_SAMPLERUN_H

#include "Inspect/support/SampleRenderer.h"

#include <Kestrin/Orv/Graph.h>
#include <Kestrin/Orv/Inspect/Trace.h>
#include <Kestrin/Orv/Inspect/TracedPass.h>
#include <Kestrin/Orv/RenderPassHelper.h>
#include <Kestrin/Orv/Renderer.h>

#include <vector>

/// A renderer that does what a snapshot shows, by a clock that goes on only while passes work: the
/// same times in every run.
class SampleRun
{
public:
    using Trace = Kestrin::Orv::Inspect::Trace;
    using Snapshot = Kestrin::Orv::Inspect::Snapshot;

    qint64 now = 0;
    Trace trace;
    Kestrin::Orv::Renderer renderer;
    std::vector<Kestrin::Orv::Inspect::TracedPass*> passes; // by node ref; null for groups

    explicit SampleRun(const Snapshot& snapshot, int capacity = Trace::kDefaultCapacity)
        : trace(capacity, [this] { return now; })
        , passes(static_cast<std::size_t>(snapshot.nodes.size()))
    {
        using namespace Kestrin::Orv;
        for (int i = 0; i < snapshot.parameters.size(); ++i)
            renderer.addParameter(snapshot.input(0, i).name, snapshot.parameters.at(i));
        for (int i = 0; i < snapshot.numOutputs; ++i)
            renderer.addOutput(snapshot.output(0, i).name);
        for (int ref = 1; ref < snapshot.nodes.size(); ++ref)
            add(snapshot.node(ref), static_cast<std::size_t>(ref));
        for (int ref = 0; ref < snapshot.edges.size(); ++ref) {
            const Inspect::EdgeRecord& edge = snapshot.edge(ref);
            const Inspect::EdgeKind kind = snapshot.kindOf(ref);
            Graph& graph = *renderer.getGraph();
            if (kind == Inspect::EdgeKind::Down)
                graph.addDownEdge(edge.srcIndex, edge.dstNode, edge.dstIndex);
            else if (kind == Inspect::EdgeKind::Up)
                graph.addUpEdge(edge.dstIndex, edge.srcNode, edge.srcIndex);
            else
                graph.addEdge(edge.srcNode, edge.srcIndex, edge.dstNode, edge.dstIndex);
        }
        trace.namePasses(renderer);
        renderer.setup(nullptr);
        renderer.render(nullptr); // the one frame that sets all up
        trace.clear();
    }

    void run(int numFrames)
    {
        for (int i = 0; i < numFrames; ++i) {
            trace.beginFrame();
            now += 40000;
            renderer.render(nullptr);
            now += 90000;
            trace.endFrame();
            now += 1000000;
        }
    }

    Snapshot snapshot()
    {
        return Snapshot::of(renderer, [](const Kestrin::Orv::RenderPass& pass) {
            const auto* worker =
                dynamic_cast<const Worker*>(Kestrin::Orv::Inspect::TracedPass::innermost(&pass));
            return worker ? worker->type : QString();
        });
    }

    void fail(int node, unsigned int code) { worker(node).failure = code; }

private:
    struct Worker : Kestrin::Orv::RenderPassHelper
    {
        Worker(SampleRun& owner, const Kestrin::Orv::Inspect::NodeRecord& node)
            : type(node.type)
            , run(owner)
            , time(150000 + 70000 * ((node.value * 5) % 11))
            , waits(node.value % 3 == 2)
            , noise(static_cast<quint32>(node.value) * 2654435761U + 12345U)
        {
            for (const Kestrin::Orv::Inspect::PortRecord& port : node.inputs)
                addInput(port.name, port.defaultValue);
            for (const Kestrin::Orv::Inspect::PortRecord& port : node.outputs)
                addOutput(port.name);
        }
        void start(Kestrin::Orv::RenderCallbacks*) override
        {
            noise = noise * 1664525 + 1013904223;
            const bool isSlow = (noise >> 12) % 89 == 0;
            run.now += time + (noise >> 8) % 120000 + (isSlow ? 1500000 : 0);
            remaining = waits ? 2 : 0;
            setErrorCode(failure);
        }
        void skip(Kestrin::Orv::RenderCallbacks*) override { }
        bool isFinished() const override
        {
            if (remaining == 0)
                return true;
            --remaining;
            run.now += 180000;
            return false;
        }

        QString type;
        unsigned int failure = 0;

    private:
        SampleRun& run;
        qint64 time;
        bool waits;
        mutable int remaining = 0;
        quint32 noise;
    };

    Worker& worker(int node)
    {
        return static_cast<Worker&>(*passes[static_cast<std::size_t>(node)]->pass());
    }

    void add(const Kestrin::Orv::Inspect::NodeRecord& node, std::size_t ref)
    {
        if (!node.pass) {
            const int group =
                renderer.addGroup(node.name, node.inputs.size(), node.outputs.size(), node.parent);
            for (int i = 0; i < node.inputs.size(); ++i)
                renderer.getGraph()->setInputName(group, i, node.inputs.at(i).name);
            for (int i = 0; i < node.outputs.size(); ++i)
                renderer.getGraph()->setOutputName(group, i, node.outputs.at(i).name);
            return;
        }
        passes[ref] =
            new Kestrin::Orv::Inspect::TracedPass(trace, node.name, new Worker(*this, node));
        const int added = renderer.addPass(node.name, passes[ref], node.parent);
        if (!node.enabled)
            renderer.setEnabled(added, false);
    }
};

#endif
