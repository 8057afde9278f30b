// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include <Kestrin/Orv/Inspect/Snapshot.h>

#include <gtest/gtest.h>

#include "Inspect/support/OddSnapshot.h"
#include "Inspect/support/RandomRenderer.h"

using namespace Kestrin::Orv;
using namespace Kestrin::Orv::Inspect;

TEST(Snapshot, AnEmptyOneHoldsTheRoot)
{
    const Snapshot snapshot;
    ASSERT_EQ(snapshot.nodes.size(), 1);
    EXPECT_FALSE(snapshot.nodes.at(0).removed);
    EXPECT_EQ(snapshot.nodes.at(0).parent, -1);
    EXPECT_TRUE(snapshot.edges.isEmpty());
    EXPECT_EQ(snapshot.numOutputs, 0);
    EXPECT_EQ(snapshot.target, -1);
}

TEST(Snapshot, HoldsTheRenderersParametersOutputsAndTarget)
{
    Renderer renderer;
    renderer.addParameter(QStringLiteral("Angle"), 30);
    renderer.addParameter(QStringLiteral("Name"), QStringLiteral("x"));
    renderer.addOutput(QStringLiteral("Picture"));
    renderer.setTarget(7);
    const Snapshot snapshot = Snapshot::of(renderer);
    EXPECT_EQ(snapshot.parameters, (QVector<QVariant>{30, QStringLiteral("x")}));
    EXPECT_EQ(snapshot.input(0, 1).name, QStringLiteral("Name"));
    EXPECT_EQ(snapshot.numOutputs, 1);
    EXPECT_EQ(snapshot.output(0, 0).name, QStringLiteral("Picture"));
    EXPECT_EQ(snapshot.target, 7);
}

TEST(Snapshot, DistinguishesPassesGroupsAndNullPasses)
{
    std::vector<SetupCall> log;
    Renderer renderer;
    const int pass = renderer.addPass(QStringLiteral("Pass"), new SpyPass(log, 1, 2, 1), 0);
    const int group = renderer.addGroup(QStringLiteral("Group"), 1, 1, 0);
    const int null = renderer.addPass(QStringLiteral("Null"), nullptr, group);
    const Snapshot snapshot = Snapshot::of(renderer);
    EXPECT_TRUE(snapshot.node(pass).pass);
    EXPECT_EQ(snapshot.node(pass).value, 0);
    EXPECT_FALSE(snapshot.node(group).pass);
    EXPECT_EQ(snapshot.node(group).value, -1);
    EXPECT_FALSE(snapshot.node(null).pass);
    EXPECT_EQ(snapshot.node(null).value, 1);
    EXPECT_EQ(snapshot.node(null).parent, group);
    EXPECT_EQ(snapshot.node(group).children, QVector<int>{null});
}

TEST(Snapshot, HoldsTheDefaultsOfThePasses)
{
    std::vector<SetupCall> log;
    Renderer renderer;
    const int pass = renderer.addPass(QStringLiteral("Pass"), new SpyPass(log, 1, 2, 1), 0);
    renderer.getGraph()->addInput(pass, QStringLiteral("of the node alone"), -1);
    const Snapshot snapshot = Snapshot::of(renderer);
    EXPECT_EQ(snapshot.input(pass, 0).defaultValue, QVariant(-1001));
    EXPECT_EQ(snapshot.input(pass, 1).defaultValue, QVariant(-1002));
    EXPECT_EQ(snapshot.input(pass, 2).defaultValue, QVariant());
}

TEST(Snapshot, AsksForTheTypeOfEachPassOnce)
{
    std::vector<SetupCall> log;
    Renderer renderer;
    renderer.addPass(QStringLiteral("A"), new SpyPass(log, 1, 0, 0), 0);
    renderer.addGroup(QStringLiteral("G"), 1, 1, 0);
    renderer.addPass(QStringLiteral("B"), new SpyPass(log, 2, 0, 0), 0);
    int asked = 0;
    const Snapshot snapshot = Snapshot::of(renderer, [&asked](const RenderPass& pass) {
        ++asked;
        return QStringLiteral("Spy") + QString::number(static_cast<const SpyPass&>(pass).number);
    });
    EXPECT_EQ(asked, 2);
    EXPECT_EQ(snapshot.node(1).type, QStringLiteral("Spy1"));
    EXPECT_EQ(snapshot.node(2).type, QString());
    EXPECT_EQ(snapshot.node(3).type, QStringLiteral("Spy2"));
}

TEST(Snapshot, OnlyEnabledPassesAreLive)
{
    std::vector<SetupCall> log;
    Renderer renderer;
    const int on = renderer.addPass(QStringLiteral("On"), new SpyPass(log, 1, 0, 0), 0);
    const int off = renderer.addPass(QStringLiteral("Off"), new SpyPass(log, 2, 0, 0), 0);
    const int group = renderer.addGroup(QStringLiteral("Group"), 0, 0, 0);
    const int null = renderer.addPass(QStringLiteral("Null"), nullptr, 0);
    renderer.setEnabled(off, false);
    const Snapshot snapshot = Snapshot::of(renderer);
    EXPECT_TRUE(snapshot.isLivePass(on));
    EXPECT_FALSE(snapshot.isLivePass(off));
    EXPECT_FALSE(snapshot.isLivePass(group));
    EXPECT_FALSE(snapshot.isLivePass(null));
    EXPECT_FALSE(snapshot.isLivePass(-1));
}

TEST(Snapshot, DoesNotChangeWithTheRenderer)
{
    Renderer renderer;
    const int group = renderer.addGroup(QStringLiteral("Before"), 1, 1, 0);
    const Snapshot snapshot = Snapshot::of(renderer);
    renderer.getGraph()->setNodeName(group, QStringLiteral("After"));
    renderer.getGraph()->removeNode(group);
    EXPECT_EQ(snapshot.node(group).name, QStringLiteral("Before"));
    EXPECT_FALSE(snapshot.node(group).removed);
}

TEST(Snapshot, MissingNodesAndEdgesAreEmptyRecords)
{
    const Snapshot snapshot;
    for (const int ref : {-1, 1, 1 << 30, -(1 << 30)}) {
        EXPECT_TRUE(snapshot.node(ref).removed);
        EXPECT_TRUE(snapshot.edge(ref).removed);
        EXPECT_EQ(snapshot.input(ref, 0).source, -1);
        EXPECT_EQ(snapshot.output(0, ref).source, -1);
        EXPECT_EQ(snapshot.kindOf(ref), EdgeKind::None);
        int node = ref, port = 0;
        EXPECT_FALSE(snapshot.walkToSourceNode(node, port));
        EXPECT_FALSE(snapshot.walkDown(node, port));
        EXPECT_EQ(node, ref);
    }
}

TEST(SnapshotProperties, HoldsWhatTheGraphAnswers)
{
    forRandomRenderers([](RandomRenderer& random) {
        const Graph& graph = random.graph;
        const Snapshot snapshot = Snapshot::of(random.renderer);
        ASSERT_EQ(snapshot.nodes.size(), graph.numNodesGlobal());
        ASSERT_EQ(snapshot.edges.size(), graph.numEdgesGlobal());
        for (int ref = 0; ref < snapshot.nodes.size(); ++ref) {
            const NodeRecord& node = snapshot.nodes.at(ref);
            EXPECT_EQ(node.name, graph.nodeName(ref));
            EXPECT_EQ(node.parent, graph.parentNode(ref));
            EXPECT_EQ(node.value, graph.nodeValue(ref));
            EXPECT_EQ(node.removed, !graph.isValidNode(ref));
            EXPECT_EQ(node.pass, random.pass(ref) != nullptr);
            EXPECT_EQ(node.enabled, random.renderer.enabled(ref));
            EXPECT_EQ(node.inputs.size(), graph.numInputs(ref));
            EXPECT_EQ(node.outputs.size(), graph.numOutputs(ref));
            EXPECT_EQ(node.children.size(), graph.numNodes(ref));
            for (int i = 0; i < node.children.size(); ++i)
                EXPECT_EQ(node.children.at(i), graph.getNode(i, ref));
            for (int i = 0; i < node.inputs.size(); ++i) {
                const PortRecord& input = node.inputs.at(i);
                EXPECT_EQ(input.name, graph.inputName(ref, i));
                EXPECT_EQ(input.group, graph.inputGroup(ref, i));
                EXPECT_EQ(input.source, graph.inputSource(ref, i));
                EXPECT_EQ(input.destinations.size(), graph.numInputDestinations(ref, i));
                for (int k = 0; k < input.destinations.size(); ++k)
                    EXPECT_EQ(input.destinations.at(k), graph.inputDestination(ref, i, k));
            }
            for (int i = 0; i < node.outputs.size(); ++i) {
                const PortRecord& output = node.outputs.at(i);
                EXPECT_EQ(output.name, graph.outputName(ref, i));
                EXPECT_EQ(output.group, graph.outputGroup(ref, i));
                EXPECT_EQ(output.source, graph.outputSource(ref, i));
                EXPECT_EQ(output.destinations.size(), graph.numOutputDestinations(ref, i));
                for (int k = 0; k < output.destinations.size(); ++k)
                    EXPECT_EQ(output.destinations.at(k), graph.outputDestination(ref, i, k));
            }
        }
    });
}

TEST(SnapshotProperties, KindsOfEdgesAreThoseOfTheGraph)
{
    forRandomRenderers([](RandomRenderer& random) {
        const Graph& graph = random.graph;
        const Snapshot snapshot = Snapshot::of(random.renderer);
        for (int ref = -1; ref <= graph.numEdgesGlobal(); ++ref) {
            const EdgeKind expected = graph.isRegularEdge(ref) ? EdgeKind::Regular
                : graph.isDownEdge(ref)                        ? EdgeKind::Down
                : graph.isUpEdge(ref)                          ? EdgeKind::Up
                                                               : EdgeKind::None;
            EXPECT_EQ(snapshot.kindOf(ref), expected) << ref;
        }
    });
}

TEST(SnapshotProperties, WalksAsTheGraphDoes)
{
    forRandomRenderers([](RandomRenderer& random) {
        const Graph& graph = random.graph;
        const Snapshot snapshot = Snapshot::of(random.renderer);
        for (int ref = -1; ref <= graph.numNodesGlobal(); ++ref) {
            const int numPorts = std::max(graph.numInputs(ref), graph.numOutputs(ref));
            for (int index = -1; index <= numPorts; ++index) {
                const auto expectSame = [ref, index](auto walk, auto model) {
                    int node = ref, port = index, modelNode = ref, modelPort = index;
                    EXPECT_EQ(walk(node, port), model(modelNode, modelPort)) << ref << "." << index;
                    EXPECT_EQ(node, modelNode) << ref << "." << index;
                    EXPECT_EQ(port, modelPort) << ref << "." << index;
                };
                expectSame([&](int& n, int& p) { return snapshot.walkUp(n, p); },
                           [&](int& n, int& p) { return graph.walkUp(n, p); });
                expectSame([&](int& n, int& p) { return snapshot.walkAcross(n, p); },
                           [&](int& n, int& p) { return graph.walkAcross(n, p); });
                expectSame([&](int& n, int& p) { return snapshot.walkDown(n, p); },
                           [&](int& n, int& p) { return graph.walkDown(n, p); });
                expectSame([&](int& n, int& p) { return snapshot.walkToSourceNode(n, p); },
                           [&](int& n, int& p) { return graph.walkToSourceNode(n, p); });
            }
        }
    });
}

TEST(SnapshotTotality, WalksEndWhateverTheTablesHold)
{
    for (unsigned seed = 0; seed < 3000; ++seed) {
        const Snapshot snapshot = oddSnapshot(seed);
        for (int ref = -1; ref <= snapshot.nodes.size(); ++ref) {
            for (int index = -1; index < 4; ++index) {
                int node = ref, port = index;
                snapshot.walkUp(node, port);
                snapshot.walkAcross(node, port);
                snapshot.walkDown(node, port);
                node = ref;
                port = index;
                int stepwise = ref, stepwisePort = index;
                snapshot.walkUp(stepwise, stepwisePort);
                const bool across = snapshot.walkAcross(stepwise, stepwisePort);
                if (across)
                    snapshot.walkDown(stepwise, stepwisePort);
                EXPECT_EQ(snapshot.walkToSourceNode(node, port), across);
                EXPECT_EQ(node, stepwise);
                EXPECT_EQ(port, stepwisePort);
            }
        }
        for (int ref = -1; ref <= snapshot.edges.size(); ++ref)
            EXPECT_EQ(snapshot.edge(ref).removed && snapshot.kindOf(ref) != EdgeKind::None, false);
    }
}
