// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Scale/Limits.h"

#include <Kestrin/Orv/Graph.h>
#include <Kestrin/Orv/RenderPassHelper.h>
#include <Kestrin/Orv/Renderer.h>
#include <Kestrin/Orv/Walkers.h>

#include "support/GraphLists.h"

#include <gtest/gtest.h>

using namespace Kestrin::Orv;

// Each in a process of its own, on a stack of 8 MiB and with a bounded address space.

namespace {

const rlim_t kGiB = 1ul << 30;
const int kMillion = 1000000;

void aMillionNodes()
{
    Graph graph;
    for (int i = 1; i <= kMillion; ++i) {
        ORV_REQUIRE(graph.addNode(QString(), 1, 1, Graph::kRootNodeRef) == i);
        // Sink first: the cycle test searches upstream of the source, where there is nothing yet.
        ORV_REQUIRE(i == 1 || graph.addEdge(i, 0, i - 1, 0) == i - 2);
    }
    ORV_REQUIRE(graph.precedes(kMillion, 1, true));
    ORV_REQUIRE(countNodes(BottomUpInputWalker(graph, 1, true)) == kMillion);
    ORV_REQUIRE(countNodes(BreadthFirstInputWalker(graph, 1, true)) == kMillion);
    ORV_REQUIRE(countNodes(BottomUpSubgraphWalker(graph, Graph::kRootNodeRef)) == kMillion + 1);
    for (int i = kMillion; i > kMillion / 2; --i)
        graph.removeNode(i);
    graph.purge();
    ORV_REQUIRE(graph.numNodesGlobal() == kMillion / 2 + 1);
    ORV_REQUIRE(graph.numEdgesGlobal() == kMillion / 2 - 1);
    ORV_REQUIRE(graph.isValidNode(kMillion / 2));
}

/// One input, one output that is one more; RenderPassHelper has a kilobyte of room in each pass.
class SmallPass : public RenderPass
{
public:
    void setup(RenderCallbacks*) override { }
    void beginFrame(RenderCallbacks*) override { }
    void start(RenderCallbacks*) override { ++value; }
    void skip(RenderCallbacks*) override { }
    void endFrame(RenderCallbacks*) override { }
    void teardown(RenderCallbacks*) override { }
    void teardownContextData(RenderCallbacks*) override { }
    int numInputs() const override { return 1; }
    int numOutputs() const override { return 1; }
    QString inputName(int) const override { return QString(); }
    QString outputName(int) const override { return QString(); }
    void setInput(int, const QVariant& input) override { value = input.toInt(); }
    QVariant defaultValue(int) const override { return QVariant(); }
    void setDefaultValue(int, const QVariant&) override { }
    QVariant output(int) const override { return value; }
    void setNumOutputUsers(int, int users) override { ORV_REQUIRE(users == 1); }
    void resetNumOutputUsers() override { }
    unsigned int errorCode() const override { return 0; }
    void clearErrorCode() override { }
    void setErrorCode(unsigned int) override { }

private:
    int value = 0;
};

void aChainOfAMillionPasses()
{
    Renderer renderer;
    Graph& graph = *renderer.getGraph();
    renderer.addOutput(QString());
    int downstream = Graph::kRootNodeRef;
    for (int i = 0; i < kMillion; ++i) {
        const int node = renderer.addPass(QString(), new SmallPass, Graph::kRootNodeRef);
        if (i == 0)
            ORV_REQUIRE(graph.addUpEdge(0, node, 0) != -1);
        else
            ORV_REQUIRE(graph.addEdge(node, 0, downstream, 0) != -1);
        downstream = node;
    }
    renderer.setup(nullptr);
    ORV_REQUIRE(renderer.render(nullptr));
    ORV_REQUIRE(renderer.getNumPasses() == kMillion);
    ORV_REQUIRE(renderer.output(0) == QVariant(kMillion)); // each has added one
    renderer.teardown(nullptr);
}

const int kDepth = 100000;

/// Groups inside each other, each handing its input down and its output up. Answers the innermost.
int nest(Graph& graph, int depth)
{
    int group = Graph::kRootNodeRef;
    graph.addInput(group, QString(), -1);
    graph.addOutput(group, QString(), -1);
    for (int i = 0; i < depth; ++i) {
        group = graph.addNode(QString(), 1, 1, group);
        ORV_REQUIRE(graph.addDownEdge(0, group, 0) != -1);
        ORV_REQUIRE(graph.addUpEdge(0, group, 0) != -1);
    }
    return group;
}

void deepGroups()
{
    Graph graph;
    const int innermost = nest(graph, kDepth);
    ORV_REQUIRE(graph.contains(Graph::kRootNodeRef, innermost));
    int node = innermost, port = 0;
    ORV_REQUIRE(graph.walkUp(node, port) && node == Graph::kRootNodeRef);
    ORV_REQUIRE(graph.walkDown(node, port) && node == innermost);
    ORV_REQUIRE(countNodes(BottomUpSubgraphWalker(graph, Graph::kRootNodeRef)) == kDepth + 1);
    graph.removeNode(1);
    ORV_REQUIRE(graph.numNodes(Graph::kRootNodeRef) == 0);
    ORV_REQUIRE(!graph.isValidNode(innermost));
    ORV_REQUIRE(graph.outputSource(Graph::kRootNodeRef, 0) == -1);
    graph.purge();
    ORV_REQUIRE(graph.numNodesGlobal() == 1 && graph.numEdgesGlobal() == 0);
}

void aRendererWithDeepGroups()
{
    Renderer renderer;
    renderer.addParameter(QString(), 7);
    renderer.addOutput(QString());
    Graph& graph = *renderer.getGraph();
    int group = Graph::kRootNodeRef;
    for (int i = 0; i < kDepth; ++i) {
        group = renderer.addGroup(QString(), 1, 1, group);
        graph.addDownEdge(0, group, 0);
        graph.addUpEdge(0, group, 0);
    }
    struct Pass : RenderPassHelper
    {
        void start(RenderCallbacks*) override { outputs[0].value = inputs[0].value; }
    };
    Pass* pass = new Pass;
    pass->addInput(QString(), QVariant());
    pass->addOutput(QString());
    const int node = renderer.addPass(QString(), pass, group);
    graph.addDownEdge(0, node, 0);
    graph.addUpEdge(0, node, 0);
    renderer.setup(nullptr);
    ORV_REQUIRE(renderer.render(nullptr));
    ORV_REQUIRE(renderer.output(0) == QVariant(7));
}

} // namespace

using LimitsDeathTest = ::testing::Test;

TEST(LimitsDeathTest, AMillionNodesAreBuiltWalkedAndPurged)
{
    EXPECT_EXIT(endAfter(aMillionNodes, kGiB), testing::ExitedWithCode(0), "");
}

TEST(LimitsDeathTest, AChainOfAMillionPassesIsSetUpRenderedAndDestroyed)
{
    EXPECT_EXIT(endAfter(aChainOfAMillionPasses, kGiB), testing::ExitedWithCode(0), "");
}

TEST(LimitsDeathTest, GroupsNestedAHundredThousandDeepAreWalkedAndRemoved)
{
    EXPECT_EXIT(endAfter(deepGroups, kGiB / 2), testing::ExitedWithCode(0), "");
}

TEST(LimitsDeathTest, APassInsideAHundredThousandGroupsRenders)
{
    EXPECT_EXIT(endAfter(aRendererWithDeepGroups, kGiB / 2), testing::ExitedWithCode(0), "");
}
