// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "support/RecordingPass.h"
#include "support/RefusedAllocations.h"
#include "support/RendererInternals.h"

#include <gtest/gtest.h>

#include <climits>
#include <new>
#include <vector>

using namespace Kestrin::Orv;

namespace {

/// Two passes in a chain, a group and a removed pass. All wild nodes are ints that name no live
/// node.
struct WildScene : Scene
{
    WildScene()
    {
        parameter(1);
        a = chain(2);
        g = group("G", 1, 1);
        removed = pass("R", 1, 1);
        graph.removeNode(removed);
    }
    std::vector<int> wildNodes() const
    {
        return {-1, INT_MIN, INT_MAX, graph.numNodesGlobal(), -2, 1000};
    }
    int a;
    int g;
    int removed;
};

const int kWildIndices[] = {-1, INT_MIN, INT_MAX, 1, 1000};

} // namespace

TEST(RendererTotality, AddPassRefusesParentsThatAreNoLiveNodes)
{
    WildScene s;
    std::vector<int> parents = s.wildNodes();
    parents.push_back(s.removed);
    const int nodes = s.graph.numNodesGlobal();
    for (const int parent : parents)
        EXPECT_EQ(s.pass("X", 1, 1, parent), -1) << parent;
    EXPECT_EQ(s.graph.numNodesGlobal(), nodes);
    s.setup();
    EXPECT_EQ(s.order(), "A B");
}

TEST(RendererTotality, RefusedPassIsOwnedAllTheSame)
{
    CallLog log;
    {
        Renderer renderer;
        EXPECT_EQ(renderer.addPass(QString(), new RecordingPass(log, "A", 1, 1), 99), -1);
        EXPECT_EQ(renderer.addPass(QString(), new RecordingPass(log, "B", 0, 0), 0), 1);
        EXPECT_EQ(renderer.addPass(QString(), nullptr, 99), -1);
        log.take();
    }
    EXPECT_EQ(log.take(), "A.delete B.delete");
}

TEST(RendererTotality, PassAfterARefusedOneIsFoundAtItsNode)
{
    Scene s;
    s.pass("A", 0, 1, 99);
    const int b = s.pass("B", 0, 1);
    EXPECT_EQ(s.at(b).name, "B");
    s.up(b, 0, s.output());
    s.setup();
    EXPECT_EQ(s.order(), "B");
}

TEST(RendererTotality, AddGroupRefusesParentsThatAreNoLiveNodes)
{
    WildScene s;
    std::vector<int> parents = s.wildNodes();
    parents.push_back(s.removed);
    const int nodes = s.graph.numNodesGlobal();
    for (const int parent : parents)
        EXPECT_EQ(s.group("X", 1, 1, parent), -1) << parent;
    EXPECT_EQ(s.graph.numNodesGlobal(), nodes);
}

TEST(RendererTotality, NodesThatAreNoPassAnswerAsSuch)
{
    WildScene s;
    std::vector<int> nodes = s.wildNodes();
    nodes.push_back(s.g);
    nodes.push_back(Graph::kRootNodeRef);
    for (const int node : nodes) {
        EXPECT_EQ(s.renderer.renderPass(node), nullptr) << node;
        EXPECT_FALSE(s.renderer.enabled(node)) << node;
    }
}

TEST(RendererTotality, RemovedNodeStillAnswersItsPass)
{
    WildScene s;
    EXPECT_EQ(s.at(s.removed).name, "R");
    EXPECT_TRUE(s.renderer.enabled(s.removed));
}

TEST(RendererTotality, SetEnabledOnANodeThatIsNoPassDoesNothing)
{
    WildScene s;
    s.setup();
    s.render();
    std::vector<int> nodes = s.wildNodes();
    nodes.push_back(s.g);
    nodes.push_back(Graph::kRootNodeRef);
    for (const int node : nodes) {
        s.renderer.setEnabled(node, true);
        s.renderer.setEnabled(node, false);
    }
    s.log.keepOnly("setup start");
    EXPECT_EQ(s.frame(), "A.start(7) B.start(7)") << "not even a setup";
}

TEST(RendererTotality, SetEnabledOnANodeOfAWildValueDoesNothing)
{
    WildScene s;
    s.setup();
    s.log.keepOnly("setup");
    for (const int value : {-1, INT_MIN, INT_MAX, 3, 4}) {
        s.graph.setNodeValue(s.g, value);
        s.renderer.setEnabled(s.g, false);
        EXPECT_FALSE(s.renderer.enabled(s.g)) << value;
        EXPECT_EQ(s.renderer.renderPass(s.g), nullptr) << value;
        EXPECT_EQ(s.frame(), "") << value;
    }
}

TEST(RendererTotality, ParametersThatDoNotExistAnswerInvalid)
{
    WildScene s;
    for (const int index : kWildIndices) {
        EXPECT_EQ(s.renderer.parameterType(index), QVariant::Invalid) << index;
        EXPECT_FALSE(s.renderer.parameterValue(index).isValid()) << index;
        s.renderer.setParameter(index, 5);
    }
    EXPECT_EQ(s.renderer.numParameters(), 1);
    EXPECT_EQ(s.renderer.parameterValue(0), QVariant(1));
}

TEST(RendererTotality, OutputsThatDoNotExistAnswerInvalid)
{
    WildScene s;
    s.setup();
    s.render();
    for (const int index : kWildIndices) {
        EXPECT_EQ(s.renderer.outputType(index), QVariant::Invalid) << index;
        EXPECT_FALSE(s.renderer.output(index).isValid()) << index;
    }
    EXPECT_TRUE(s.renderer.output(0).isValid());
}

TEST(RendererTotality, SetParameterOfMinusOneIsNotTheStaggeredParameter)
{
    // The look-up of an absent parameter answers -1 too.
    Scene s;
    s.chain(2);
    s.renderer.setParameter(-1, true);
    EXPECT_EQ(s.renderer.getGraphProcessingMode(), 2);
    s.setup();
    s.log.keepOnly("start skip");
    EXPECT_EQ(s.frame(), "A.start(7) B.start(7)");
}

TEST(RendererTotality, AnyTargetIsAccepted)
{
    WildScene s;
    std::vector<int> targets = s.wildNodes();
    targets.push_back(s.removed);
    targets.push_back(Graph::kRootNodeRef);
    for (const int target : targets) {
        s.renderer.setTarget(target);
        EXPECT_EQ(s.renderer.getTarget(), target);
        s.setup();
        EXPECT_EQ(s.order(), "A B") << target;
    }
}

TEST(RendererTotality, PortCountsBeyondMemoryEndInBadAlloc)
{
    Scene s;
    EXPECT_THROW(s.renderer.addGroup(QString(), INT_MAX, 0, 0), std::bad_alloc);
    EXPECT_THROW(s.renderer.addGroup(QString(), 0, INT_MAX, 0), std::bad_alloc);
    EXPECT_EQ(s.graph.numNodesGlobal(), 1);
    EXPECT_EQ(s.graph.numNodes(Graph::kRootNodeRef), 0);
}

TEST(RendererTotality, PassWithPortCountsBeyondMemoryIsOwnedAllTheSame)
{
    CallLog log;
    {
        Renderer renderer;
        auto* pass = new RecordingPass(log, "A", 0, 0);
        pass->extraOutputs = INT_MAX;
        EXPECT_THROW(renderer.addPass(QString(), pass, 0), std::bad_alloc);
        EXPECT_EQ(renderer.getGraph()->numNodesGlobal(), 1);
        const int b = renderer.addPass(QString(), new RecordingPass(log, "B", 0, 0), 0);
        EXPECT_EQ(static_cast<RecordingPass*>(renderer.renderPass(b))->name, "B");
        log.take();
    }
    EXPECT_EQ(log.take(), "A.delete B.delete");
}

TEST(RendererTotality, CountsThatChangeWhileRegisteringAreHarmless)
{
    Scene s;
    auto* pass = new RecordingPass(s.log, "A", 1, 1);
    int asked = 0;
    pass->onCall = [pass, &asked](const std::string& operation) {
        if ((operation == "numInputs" || operation == "numOutputs") && ++asked > 2)
            pass->extraInputs = pass->extraOutputs = 2;
    };
    const int a = s.renderer.addPass(QString(), pass, 0);
    EXPECT_EQ(s.graph.numInputs(a), 1);
    EXPECT_EQ(s.graph.numOutputs(a), 1);
    EXPECT_EQ(s.graph.inputName(a, 0), QStringLiteral("in0"));
    pass->onCall = nullptr;
}

TEST(NullPass, IsANodeWithoutPorts)
{
    Scene s;
    const int node = s.renderer.addPass(QStringLiteral("null"), nullptr, 0);
    EXPECT_EQ(node, 1);
    EXPECT_EQ(s.graph.numInputs(node), 0);
    EXPECT_EQ(s.graph.numOutputs(node), 0);
    EXPECT_EQ(s.graph.nodeValue(node), 0);
    EXPECT_EQ(s.renderer.renderPass(node), nullptr);
    EXPECT_EQ(s.renderer.findPass(QStringLiteral("null")), node);
    EXPECT_NE(s.renderer.getGraphProcessingMode(), 0) << "it is registered";
}

TEST(NullPass, TakesItsPassIndex)
{
    Scene s;
    s.renderer.addPass(QString(), nullptr, 0);
    const int a = s.pass("A", 0, 0);
    EXPECT_EQ(s.graph.nodeValue(a), 1);
    EXPECT_EQ(s.at(a).name, "A");
}

TEST(NullPass, AsTargetRunsNothing)
{
    Scene s;
    s.renderer.setTarget(s.renderer.addPass(QString(), nullptr, 0));
    s.setup();
    EXPECT_TRUE(s.render());
    s.setup();
    s.teardown();
}

TEST(NullPass, InTheMiddleOfAChainGivesTheDefaultOnwards)
{
    Scene s;
    const int a = s.pass("A", 0, 1);
    const int null = s.renderer.addPass(QString(), nullptr, 0);
    const int b = s.pass("B", 1, 1);
    s.graph.addInput(null, QString(), Graph::kInvalidGroupRef);
    s.graph.addOutput(null, QString(), Graph::kInvalidGroupRef);
    s.edge(a, 0, null, 0);
    s.edge(null, 0, b, 0);
    s.up(b, 0, s.output());
    s.log.keepOnly("setup setInput start teardown");
    s.setup();
    EXPECT_EQ(s.log.take(), "A.setup(7) B.setInput(0,B0?) B.setup(7)");
    EXPECT_EQ(s.frame(), "A.start(7) B.setInput(0,B0?) B.start(7)");
    EXPECT_TRUE(s.render());
    s.log.take();
    s.teardown();
    EXPECT_EQ(s.log.take(), "A.teardown(7) B.teardown(7)");
}

TEST(NullPass, FeedingAnOutputLeavesItsValue)
{
    Scene s;
    const int a = s.chain(1);
    s.setup();
    s.render();
    const int null = s.renderer.addPass(QString(), nullptr, 0);
    s.graph.addOutput(null, QString(), Graph::kInvalidGroupRef);
    s.graph.removeEdge(s.graph.outputSource(Graph::kRootNodeRef, 0));
    s.up(null, 0, 0);
    s.renderer.setTarget(a);
    s.setup();
    EXPECT_TRUE(s.render());
    EXPECT_EQ(s.renderer.output(0), QVariant(QStringLiteral("A0#1")));
}

TEST(NullPass, RenderedOnItsOwnIsHarmless)
{
    Scene s;
    const int null = s.renderer.addPass(QString(), nullptr, 0);
    internals::setRenderPassInputs(internals::of(s.renderer), null);
    EXPECT_TRUE(internals::render(internals::of(s.renderer), null, nullptr));
}

TEST(NullPass, CanBeEnabledAndDisabled)
{
    Scene s;
    const int null = s.renderer.addPass(QString(), nullptr, 0);
    s.renderer.setEnabled(null, false);
    s.setup();
    EXPECT_TRUE(s.render());
}

TEST(RemovedRoot, TakesNoPortsAndNoNodes)
{
    Scene s;
    s.graph.removeNode(Graph::kRootNodeRef);
    EXPECT_EQ(s.parameter(1), -1);
    EXPECT_EQ(s.output(), -1);
    EXPECT_EQ(s.staggered(), -1);
    EXPECT_EQ(s.group("G", 0, 0), -1);
    EXPECT_EQ(s.pass("A", 0, 0), -1);
    EXPECT_EQ(s.renderer.numParameters(), 0) << "in step with the inputs of the root";
    EXPECT_EQ(s.renderer.numOutputs(), 0);
    EXPECT_EQ(s.renderer.findPass(QString()), -1);
}

TEST(RemovedRoot, RefusedParameterDoesNotStagger)
{
    Scene s;
    s.chain(2);
    s.setup();
    s.graph.removeNode(Graph::kRootNodeRef);
    s.staggered();
    EXPECT_EQ(s.renderer.getGraphProcessingMode(), 2);
}

TEST(RemovedRoot, SetsUpAndRenders)
{
    Scene s;
    s.chain(2);
    s.setup();
    s.render();
    s.graph.removeNode(Graph::kRootNodeRef);
    EXPECT_TRUE(s.render()) << "in the order of the last setup";
    EXPECT_EQ(s.renderer.output(0), QVariant(QStringLiteral("B0#1"))) << "nothing feeds it now";
    s.setup();
    EXPECT_EQ(s.order(), "");
}

TEST(ChangedGraph, RemovedPassRunsUntilTheNextSetup)
{
    Scene s;
    const int a = s.chain(2);
    s.setup();
    s.graph.removeNode(a);
    s.log.keepOnly("setInput start");
    EXPECT_EQ(s.frame(), "A.setInput(0,A0?) A.start(7) B.setInput(0,B0?) B.start(7)");
    s.setup();
    EXPECT_EQ(s.order(), "B");
}

TEST(ChangedGraph, ScheduledNodeThatIsNoPassAnyMoreIsPassedOver)
{
    Scene s;
    const int a = s.chain(3);
    s.setup();
    for (const int value : {-1, INT_MIN, INT_MAX, 3}) {
        s.graph.setNodeValue(a + 1, value);
        s.log.keepOnly("start");
        EXPECT_EQ(s.frame(), "A.start(7) C.start(7)") << value;
        EXPECT_TRUE(s.render());
    }
    s.setup();
    EXPECT_EQ(s.order(), "A C");
}

TEST(ChangedGraph, OutputFedByANodeThatIsNoPassAnyMoreKeepsItsValue)
{
    Scene s;
    const int a = s.chain(1);
    const int b = s.pass("B", 0, 1);
    s.up(b, 0, s.output());
    s.setup();
    s.render();
    s.graph.setNodeValue(a, 77);
    s.render();
    EXPECT_EQ(s.renderer.output(0), QVariant(QStringLiteral("A0#1")));
    EXPECT_EQ(s.renderer.output(1), QVariant(QStringLiteral("B0#2")));
}

TEST(ChangedGraph, PurgeAfterASetupIsHarmless)
{
    Scene s;
    const int a = s.chain(4);
    s.setup();
    s.graph.removeNode(a);
    s.graph.removeNode(a + 1);
    s.graph.purge();
    s.render();
    s.setup();
    s.render();
    s.renderer.setTarget(1);
    s.setup();
    s.render();
    s.teardown();
    EXPECT_EQ(s.graph.numNodesGlobal(), 3);
}

TEST(ChangedGraph, PurgeOfEverythingIsHarmless)
{
    Scene s;
    s.parameter(1);
    s.chain(3);
    s.setup();
    s.graph.removeNode(Graph::kRootNodeRef);
    s.graph.purge();
    EXPECT_EQ(s.graph.numNodesGlobal(), 0);
    EXPECT_TRUE(s.render());
    s.setup();
    EXPECT_TRUE(s.render());
    EXPECT_EQ(s.parameter(1), -1);
    EXPECT_EQ(s.output(), -1);
    EXPECT_EQ(s.pass("X", 0, 0), -1);
    EXPECT_EQ(s.renderer.findPass(QString()), -1);
    EXPECT_EQ(s.renderer.findParameter(QStringLiteral("p")), -1);
    EXPECT_EQ(s.renderer.findOutput(QStringLiteral("out")), -1);
    EXPECT_EQ(s.renderer.numParameters(), 1);
    EXPECT_EQ(s.renderer.parameterValue(0), QVariant(1));
}

TEST(ChangedGraph, PortsTakenOffThePassesAndTheRootAreHarmless)
{
    Scene s;
    s.parameter(1);
    const int a = s.chain(3);
    s.down(0, a, 0);
    s.setup();
    s.graph.removeInput(a + 1, 0);
    s.graph.removeOutput(a + 1, 0);
    s.graph.removeInput(Graph::kRootNodeRef, 0);
    s.graph.removeOutput(Graph::kRootNodeRef, 0);
    s.render();
    s.setup();
    s.render();
    EXPECT_EQ(s.renderer.numParameters(), 1);
    EXPECT_EQ(s.renderer.numOutputs(), 1);
    EXPECT_EQ(s.renderer.findParameter(QStringLiteral("p")), -1);
}

TEST(ChangedGraph, OutputsOfTheRootAddedBehindTheRenderersBackAreHarmless)
{
    Scene s;
    s.chain(1);
    const int stray =
        s.graph.addOutput(Graph::kRootNodeRef, QStringLiteral("stray"), Graph::kInvalidGroupRef);
    const int b = s.pass("B", 0, 1);
    s.up(b, 0, stray);
    s.setup();
    EXPECT_EQ(s.order(), "A") << "the renderer has one output";
    EXPECT_FALSE(s.renderer.output(stray).isValid());
}
