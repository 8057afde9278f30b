// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Inspect/Explain/ExplainedHost.h"
#include "Inspect/support/OddSnapshot.h"
#include "Inspect/support/RandomRenderer.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace Kestrin::Orv;
using namespace Kestrin::Orv::Inspect;

namespace {

std::string shown(const PortRef& port)
{
    return std::to_string(port.node) + (port.isOutput ? ".out" : ".in")
        + std::to_string(port.index);
}

/// Each port of the path is fed by the one behind it, or the two are an output and an input of one
/// node.
void expectConnected(const Snapshot& snapshot, const QVector<PortRef>& path)
{
    for (int i = 0; i + 1 < path.size(); ++i) {
        const PortRef &port = path.at(i), &next = path.at(i + 1);
        const PortRecord& record = port.isOutput ? snapshot.output(port.node, port.index)
                                                 : snapshot.input(port.node, port.index);
        const EdgeRecord& edge = snapshot.edge(record.source);
        const bool isFed = !edge.removed && edge.srcNode == next.node && edge.srcIndex == next.index
            && (next.isOutput || !port.isOutput);
        const bool isThrough = port.isOutput && !next.isOutput && port.node == next.node;
        EXPECT_TRUE(isFed || isThrough) << shown(port) << " to " << shown(next);
    }
}

} // namespace

TEST(ExplainProperties, InputsTakeTheValuesThatAreReported)
{
    forRandomRenderers([](RandomRenderer& random) {
        const Snapshot snapshot = Snapshot::of(random.renderer);
        const Explainer explainer(snapshot);
        random.log.clear();
        random.renderer.setup(nullptr);
        ASSERT_EQ(random.log.size(), static_cast<std::size_t>(explainer.schedule().order.size()));
        for (int position = 0; position < explainer.schedule().order.size(); ++position) {
            const int node = explainer.schedule().order.at(position);
            const QVector<QVariant>& received =
                random.log[static_cast<std::size_t>(position)].inputs;
            const int count = std::min(received.size(), snapshot.node(node).inputs.size());
            for (int i = 0; i < count; ++i) {
                const InputExplanation explained = explainer.input(node, i);
                const QVariant value = explained.source == InputExplanation::Output
                    ? random.pass(explained.end.node)->output(explained.end.index)
                    : explained.value;
                EXPECT_EQ(value, received.at(i)) << node << "." << i;
                EXPECT_EQ(explained.path.first(), explained.input);
                EXPECT_EQ(explained.path.last(), explained.end);
                expectConnected(snapshot, explained.path);
            }
        }
    });
}

TEST(ExplainProperties, NodesAreNeededAsReported)
{
    forRandomRenderers([](RandomRenderer& random) {
        const Snapshot snapshot = Snapshot::of(random.renderer);
        const Explainer explainer(snapshot);
        const Schedule& schedule = explainer.schedule();
        for (int node = 0; node < snapshot.nodes.size(); ++node) {
            const NodeExplanation explained = explainer.node(node);
            EXPECT_EQ(explained.state == NodeExplanation::Scheduled, schedule.order.contains(node));
            EXPECT_EQ(explained.position, schedule.order.indexOf(node));
            EXPECT_EQ(explained.needed, schedule.needed.at(node));
            expectConnected(snapshot, explained.path);
            if (!explained.needed) {
                EXPECT_TRUE(explained.path.isEmpty());
                continue;
            }
            if (!explained.path.isEmpty()) {
                EXPECT_EQ(explained.path.last().node, node);
                EXPECT_TRUE(explained.path.last().isOutput);
            }

            // Without the outputs from the reported one on, and without the target, it is not
            // needed.
            Snapshot less = snapshot;
            less.target = -1;
            if (explained.output >= 0) {
                EXPECT_EQ(explained.path.first(), (PortRef{0, explained.output, true}));
                less.numOutputs = explained.output + 1;
                EXPECT_TRUE(predictSchedule(less).needed.at(node));
                less.numOutputs = explained.output;
            } else {
                EXPECT_EQ(explained.path.isEmpty(), node == snapshot.target);
            }
            EXPECT_FALSE(predictSchedule(less).needed.at(node));
        }
    });
}

TEST(ExplainProperties, WithTheNearestEndAsTargetThePassRuns)
{
    int numFarther = 0;
    forRandomRenderers([&numFarther](RandomRenderer& random) {
        Snapshot snapshot = Snapshot::of(random.renderer);
        const Explainer explainer(snapshot);
        for (int node = 0; node < snapshot.nodes.size(); ++node) {
            const NodeExplanation explained = explainer.node(node);
            EXPECT_EQ(explained.state == NodeExplanation::NotNeeded, explained.nearest >= 0);
            if (explained.nearest < 0 || snapshot.node(explained.nearest).removed)
                continue;
            Snapshot wiser = snapshot;
            wiser.target = explained.nearest;
            wiser.nodes[node].enabled = true;
            EXPECT_GE(predictSchedule(wiser).positions.at(node), 0) << node;
            EXPECT_EQ(explained.nearestPath.isEmpty(), explained.nearest == node);
            expectConnected(snapshot, explained.nearestPath);
            if (explained.nearestPath.isEmpty())
                continue;
            ++numFarther;
            EXPECT_EQ(explained.nearestPath.first().node, explained.nearest);
            EXPECT_EQ(explained.nearestPath.last().node, node);
            // It is an end: whatever else is the target, it is not needed. Odd graphs have edges
            // that only the port that they enter knows of.
            for (int other = 0; random.kind != RandomRenderer::Odd && other < snapshot.nodes.size();
                 ++other) {
                wiser.target = other;
                const bool isNeeded = predictSchedule(wiser).needed.at(explained.nearest);
                EXPECT_EQ(isNeeded, other == explained.nearest) << other;
            }
        }
    });
    EXPECT_GT(numFarther, 500);
}

TEST(ExplainProperties, TheGraphTakesTheEdgesThatAreSaidToBeMade)
{
    int numOfRule[EdgeExplanation::NotRelated + 1] = {};
    forRandomRenderers([&numOfRule](RandomRenderer& random) {
        Graph& graph = random.graph;
        for (int i = 0; i < 20; ++i) {
            const Snapshot snapshot = Snapshot::of(random.renderer);
            const Explainer explainer(snapshot);
            // In braces, the order of evaluation is that of the text.
            PortRef from{random.anyNode(), random.below(4), random.below(3) != 0};
            PortRef to{random.anyNode(), random.below(4), random.below(3) == 0};
            if (random.below(3) != 0) { // related, more often than not
                const int parent = graph.parentNode(to.node);
                from.node = from.isOutput
                    ? graph.getNode(random.below(graph.numNodes(parent)), parent)
                    : parent;
                if (to.isOutput)
                    to.node = graph.parentNode(from.node);
            }

            const EdgeExplanation explained = explainer.edge(from, to);
            ++numOfRule[explained.rule];
            int ref = -1;
            if (from.isOutput && !to.isOutput)
                ref = graph.addEdge(from.node, from.index, to.node, to.index);
            else if (from.isOutput && to.isOutput && graph.parentNode(from.node) == to.node)
                ref = graph.addUpEdge(to.index, from.node, from.index);
            else if (!from.isOutput && !to.isOutput && graph.parentNode(to.node) == from.node)
                ref = graph.addDownEdge(from.index, to.node, to.index);
            EXPECT_EQ(explained.made, ref >= 0) << shown(from) << " to " << shown(to);
            if (explained.rule == EdgeExplanation::Accepted) {
                EXPECT_GE(ref, 0);
                EXPECT_TRUE(graph.isRegularEdge(ref) || graph.isUpEdge(ref)
                            || graph.isDownEdge(ref));
            }
            if (explained.rule == EdgeExplanation::Cycle) {
                expectConnected(snapshot, explained.cycle);
                EXPECT_EQ(explained.cycle.first(), from);
                EXPECT_EQ(explained.cycle.last(), to);
                EXPECT_TRUE(graph.precedes(to.node, from.node, true));
            }
        }
    });
    for (const int number : numOfRule)
        EXPECT_GT(number, 100);
}

TEST(ExplainTotality, WhateverTheTablesHoldThereIsAnAnswer)
{
    std::size_t length = 0;
    for (unsigned seed = 0; seed < 400; ++seed) {
        const Snapshot snapshot = oddSnapshot(seed);
        const Explainer explainer(snapshot);
        for (int node = -2; node < snapshot.nodes.size() + 2; ++node) {
            const NodeExplanation explained = explainer.node(node);
            length += explainer.toText(explained).toStdString().size();
            length += json(explainer.toJson(explained)).size();
            for (int port = -1; port < 4; ++port) {
                const InputExplanation input = explainer.input(node, port);
                length += explainer.toText(input).toStdString().size();
                length += json(explainer.toJson(input)).size();
                for (int bits = 0; bits < 4; ++bits) {
                    const PortRef from{node, port, (bits & 1) != 0};
                    const PortRef to{snapshot.target, 1, (bits & 2) != 0};
                    const EdgeExplanation edge = explainer.edge(from, to);
                    length += explainer.toText(edge).toStdString().size();
                    length += json(explainer.toJson(edge)).size();
                }
            }
        }
    }
    EXPECT_GT(length, 0u);
}

TEST(ExplainTotality, ExplanationsOfAnotherSnapshotAreAnsweredToo)
{
    const Snapshot empty;
    const Explainer explainer(empty);
    Frame f;
    f.renderer.setTarget(f.debug);
    const Snapshot snapshot = Snapshot::of(f.renderer);
    const Explainer other(snapshot);
    for (int node = 0; node < snapshot.nodes.size(); ++node) {
        EXPECT_NE(explainer.toText(other.node(node)), QString());
        EXPECT_FALSE(explainer.toJson(other.node(node)).isEmpty());
        EXPECT_NE(explainer.toText(other.input(node, 0)), QString());
        EXPECT_FALSE(explainer.toJson(other.input(node, 0)).isEmpty());
        const EdgeExplanation edge = other.edge({node, 0, true}, {f.shadow, 0, false});
        EXPECT_NE(explainer.toText(edge), QString());
        EXPECT_FALSE(explainer.toJson(edge).isEmpty());
    }
}
