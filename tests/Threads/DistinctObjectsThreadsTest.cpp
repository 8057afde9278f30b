// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "oracle/GraphCalls.h"
#include "oracle/ScriptedPass.h"

#include <Kestrin/Orv/HistogramFrameTimes.h>
#include <Kestrin/Orv/Renderer.h>

#include <gtest/gtest.h>

#include <random>
#include <thread>

using namespace Kestrin::Orv;

namespace {

const int kThreads = 4;

template<typename Work>
void inThreads(Work work)
{
    std::vector<std::thread> threads;
    for (int i = 0; i < kThreads; ++i)
        threads.emplace_back(work, i);
    for (std::thread& thread : threads)
        thread.join();
}

/// Any edit that logs nothing.
GraphStep anyEdit(std::mt19937& random)
{
    GraphStep step;
    do
        step.op = static_cast<std::uint8_t>(random() % kNumGraphEdits);
    while (step.op == static_cast<int>(GraphOp::addEdgeByName)
           || step.op == static_cast<int>(GraphOp::addDownEdgeByName)
           || step.op == static_cast<int>(GraphOp::purge));
    for (std::uint8_t& byte : step.args)
        byte = static_cast<std::uint8_t>(random());
    return step;
}

} // namespace

TEST(DistinctObjects, GraphsInDifferentThreadsDoNotDisturbEachOther)
{
    std::string differences[kThreads];
    inThreads([&](int thread) {
        std::mt19937 random(static_cast<unsigned>(thread));
        for (int round = 0; round < 20 && differences[thread].empty(); ++round) {
            Graph graph;
            Oracle::Graph model;
            for (int i = 0; i < 200; ++i) {
                const GraphCall call = resolve(anyEdit(random), model);
                perform(graph, call);
                perform(model, call);
            }
            for (int n = 0; n < model.numNodesGlobal(); ++n) {
                if (bottomUpInputs(graph, n, true) != bottomUpInputs(model, n, true))
                    differences[thread] = "a walk differs";
            }
            differences[thread] += difference(graph, model);
            graph.purge();
        }
    });
    for (const std::string& found : differences)
        EXPECT_EQ(found, "");
}

TEST(DistinctObjects, RenderersInDifferentThreadsDoNotDisturbEachOther)
{
    int results[kThreads] = {};
    inThreads([&](int thread) {
        std::vector<PassEvent> events;
        Renderer renderer;
        Graph& graph = *renderer.getGraph();
        renderer.addOutput(QString());
        int downstream = 0;
        for (int i = 0; i < 20; ++i) {
            const int node = renderer.addPass(QString(), new ScriptedPass(events, i, 1, 1), 0);
            i == 0 ? graph.addUpEdge(0, node, 0) : graph.addEdge(node, 0, downstream, 0);
            downstream = node;
        }
        renderer.setup(nullptr);
        for (int frame = 0; frame < 200; ++frame) {
            renderer.setEnabled(1 + frame % 20, frame % 3 != 0);
            renderer.render(nullptr);
        }
        results[thread] = renderer.output(0).toInt();
    });
    for (const int result : results)
        EXPECT_EQ(result, results[0]); // all did the same
    EXPECT_NE(results[0], 0);
}

TEST(DistinctObjects, OneHistogramCountsTheFramesOfAllThreads)
{
    struct Counting : HistogramFrameTimes
    {
        quint32 frames() const { return frameCount; }
        quint32 peak() const { return peakCount; }
    } histogram;
    inThreads([&](int) {
        for (int i = 0; i < 2000; ++i)
            histogram.addFrameTimeUS(500); // 4 seconds in all: no flush
    });
    EXPECT_EQ(histogram.frames(), 2000u * kThreads);
    EXPECT_EQ(histogram.peak(), 2000u * kThreads);
}
