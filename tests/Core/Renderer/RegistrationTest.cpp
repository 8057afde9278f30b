// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "support/RecordingPass.h"

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>

using namespace Kestrin::Orv;

TEST(Registration, NewRendererHoldsTheRootAlone)
{
    Renderer renderer;
    ASSERT_NE(renderer.getGraph(), nullptr);
    EXPECT_EQ(renderer.getGraph()->numNodesGlobal(), 1);
    EXPECT_EQ(renderer.getGraph()->numEdgesGlobal(), 0);
    EXPECT_EQ(renderer.getGraph()->numInputs(Graph::kRootNodeRef), 0);
    EXPECT_EQ(renderer.getGraph()->numOutputs(Graph::kRootNodeRef), 0);
    EXPECT_EQ(renderer.numParameters(), 0);
    EXPECT_EQ(renderer.numOutputs(), 0);
    EXPECT_EQ(renderer.getNumPasses(), 0);
    EXPECT_EQ(renderer.getTarget(), Graph::kInvalidNodeRef);
}

TEST(Registration, RenderersHaveGraphsOfTheirOwn)
{
    Renderer one;
    Renderer other;
    EXPECT_NE(one.getGraph(), other.getGraph());
    EXPECT_EQ(one.getGraph(), one.getGraph());
}

TEST(Registration, AddPassAsksForCountsThenForEachName)
{
    Scene s;
    s.renderer.addPass(QStringLiteral("pass"), new RecordingPass(s.log, "A", 2, 3), 0);
    EXPECT_EQ(s.log.take(),
              "A.numOutputs A.numInputs "
              "A.numInputs A.inputName(0) A.inputName(1) "
              "A.numOutputs A.outputName(0) A.outputName(1) A.outputName(2)");
}

TEST(Registration, AddPassAsksAPassWithoutPortsForNoName)
{
    Scene s;
    s.renderer.addPass(QStringLiteral("pass"), new RecordingPass(s.log, "A", 0, 0), 0);
    EXPECT_EQ(s.log.take(), "A.numOutputs A.numInputs A.numInputs A.numOutputs");
}

TEST(Registration, NodeMirrorsThePortsOfThePass)
{
    Scene s;
    const int node = s.pass("A", 2, 1);
    EXPECT_EQ(node, 1);
    EXPECT_EQ(s.graph.nodeName(node), QStringLiteral("A"));
    EXPECT_EQ(s.graph.parentNode(node), Graph::kRootNodeRef);
    EXPECT_EQ(s.graph.numInputs(node), 2);
    EXPECT_EQ(s.graph.numOutputs(node), 1);
    EXPECT_EQ(s.graph.inputName(node, 0), QStringLiteral("in0"));
    EXPECT_EQ(s.graph.inputName(node, 1), QStringLiteral("in1"));
    EXPECT_EQ(s.graph.outputName(node, 0), QStringLiteral("out0"));
    EXPECT_EQ(s.graph.inputGroup(node, 0), Graph::kInvalidGroupRef);
    EXPECT_EQ(s.graph.outputGroup(node, 0), Graph::kInvalidGroupRef);
}

TEST(Registration, PortNamesAreCopied)
{
    Scene s;
    const int node = s.pass("A", 1, 1);
    s.at(node).inputNames[0] = QStringLiteral("renamed");
    s.at(node).outputNames[0] = QStringLiteral("renamed");
    EXPECT_EQ(s.graph.inputName(node, 0), QStringLiteral("in0"));
    EXPECT_EQ(s.graph.outputName(node, 0), QStringLiteral("out0"));
}

TEST(Registration, PassIndicesCountInOrderOfRegistration)
{
    Scene s;
    const int a = s.pass("A", 0, 0);
    const int g = s.group("G", 0, 0);
    const int b = s.pass("B", 0, 0, g);
    const int c = s.pass("C", 0, 0);
    EXPECT_EQ(s.graph.nodeValue(a), 0);
    EXPECT_EQ(s.graph.nodeValue(g), -1);
    EXPECT_EQ(s.graph.nodeValue(b), 1);
    EXPECT_EQ(s.graph.nodeValue(c), 2);
    EXPECT_EQ(s.graph.parentNode(b), g);
}

TEST(Registration, RenderPassAnswersThePassOfItsNode)
{
    Scene s;
    auto* a = new RecordingPass(s.log, "A", 0, 0);
    auto* b = new RecordingPass(s.log, "B", 0, 0);
    const int g = s.group("G", 1, 1);
    const int nodeA = s.renderer.addPass(QStringLiteral("A"), a, 0);
    const int nodeB = s.renderer.addPass(QStringLiteral("B"), b, g);
    EXPECT_EQ(s.renderer.renderPass(nodeA), a);
    EXPECT_EQ(s.renderer.renderPass(nodeB), b);
    EXPECT_EQ(s.renderer.renderPass(g), nullptr);
    EXPECT_EQ(s.renderer.renderPass(Graph::kRootNodeRef), nullptr);
}

TEST(Registration, RenderPassGoesByTheValueOfTheNode)
{
    Scene s;
    const int a = s.pass("A", 0, 0);
    const int g = s.group("G", 0, 0);
    s.graph.setNodeValue(g, 0);
    EXPECT_EQ(s.renderer.renderPass(g), s.renderer.renderPass(a));
    s.graph.setNodeValue(g, 1);
    EXPECT_EQ(s.renderer.renderPass(g), nullptr);
    s.graph.setNodeValue(g, -2);
    EXPECT_EQ(s.renderer.renderPass(g), nullptr);
}

TEST(Registration, PassesAreEnabledAtFirst)
{
    Scene s;
    const int a = s.pass("A", 0, 0);
    const int b = s.pass("B", 0, 0);
    EXPECT_TRUE(s.renderer.enabled(a));
    s.renderer.setEnabled(a, false);
    EXPECT_FALSE(s.renderer.enabled(a));
    EXPECT_TRUE(s.renderer.enabled(b));
    s.renderer.setEnabled(a, true);
    EXPECT_TRUE(s.renderer.enabled(a));
}

TEST(Registration, NamesMayRepeat)
{
    Scene s;
    const int first = s.pass("A", 0, 0);
    const int second = s.pass("A", 0, 0);
    EXPECT_NE(first, second);
    EXPECT_NE(s.renderer.renderPass(first), s.renderer.renderPass(second));
    EXPECT_EQ(s.renderer.findPass(QStringLiteral("A")), first);
}

TEST(Registration, PercentSignsInNamesStayAsTheyAre)
{
    Scene s;
    const int a = s.pass("100%s%n", 0, 0);
    EXPECT_EQ(s.graph.nodeName(a), QStringLiteral("100%s%n"));
    EXPECT_EQ(s.renderer.findPass(QStringLiteral("100%s%n")), a);
}

TEST(Registration, RegisteringDoesNotRaiseASetup)
{
    Scene s;
    s.setup();
    const int a = s.pass("A", 0, 1);
    s.up(a, 0, s.output());
    EXPECT_EQ(s.frame(), "") << "no setup, so no pass runs";
    EXPECT_EQ(s.renderer.getNumPasses(), 0);
}

TEST(Registration, NegativePortCountsMakeNoPorts)
{
    Scene s;
    auto* pass = new RecordingPass(s.log, "A", 0, 0);
    pass->extraInputs = -3;
    pass->extraOutputs = -1;
    const int node = s.renderer.addPass(QStringLiteral("A"), pass, 0);
    EXPECT_EQ(s.graph.numInputs(node), 0);
    EXPECT_EQ(s.graph.numOutputs(node), 0);
    EXPECT_EQ(s.log.take(), "A.numOutputs A.numInputs A.numInputs A.numOutputs");
}

TEST(Registration, NodesMayBeRegisteredUnderAPass)
{
    Scene s;
    const int a = s.pass("A", 1, 1);
    const int inner = s.pass("inner", 1, 1, a);
    EXPECT_EQ(s.graph.parentNode(inner), a);
    EXPECT_EQ(s.graph.nodeValue(inner), 1);
}

TEST(Registration, AddGroupMakesANodeThatIsNoPass)
{
    Scene s;
    const int g = s.renderer.addGroup(QStringLiteral("G"), 2, 3, 0);
    EXPECT_EQ(g, 1);
    EXPECT_EQ(s.graph.nodeName(g), QStringLiteral("G"));
    EXPECT_EQ(s.graph.numInputs(g), 2);
    EXPECT_EQ(s.graph.numOutputs(g), 3);
    EXPECT_EQ(s.graph.nodeValue(g), -1);
    EXPECT_TRUE(s.graph.inputName(g, 0).isEmpty());
    const int nested = s.renderer.addGroup(QStringLiteral("H"), -1, -1, g);
    EXPECT_EQ(s.graph.parentNode(nested), g);
    EXPECT_EQ(s.graph.numInputs(nested), 0);
}

TEST(Registration, FindPassSearchesTheChildrenOfTheRoot)
{
    Scene s;
    const int g = s.group("G", 0, 0);
    s.pass("nested", 0, 0, g);
    const int a = s.pass("A", 0, 0);
    EXPECT_EQ(s.renderer.findPass(QStringLiteral("A")), a);
    EXPECT_EQ(s.renderer.findPass(QStringLiteral("G")), g) << "a group is found too";
    EXPECT_EQ(s.renderer.findPass(QStringLiteral("nested")), -1);
    EXPECT_EQ(s.renderer.findPass(QStringLiteral("a")), -1);
    EXPECT_EQ(s.renderer.findPass(QString()), -1) << "the root itself is no child";
}

TEST(Registration, ParametersAreInputsOfTheRoot)
{
    Scene s;
    EXPECT_EQ(s.renderer.addParameter(QStringLiteral("size"), 4), 0);
    EXPECT_EQ(s.renderer.addParameter(QStringLiteral("title"), QStringLiteral("x")), 1);
    EXPECT_EQ(s.renderer.numParameters(), 2);
    EXPECT_EQ(s.graph.numInputs(Graph::kRootNodeRef), 2);
    EXPECT_EQ(s.graph.inputName(Graph::kRootNodeRef, 1), QStringLiteral("title"));
    EXPECT_EQ(s.graph.inputGroup(Graph::kRootNodeRef, 0), Graph::kInvalidGroupRef);
    EXPECT_EQ(s.renderer.parameterValue(0), QVariant(4));
    EXPECT_EQ(s.renderer.parameterType(0), QVariant::Int);
    EXPECT_EQ(s.renderer.parameterValue(1), QVariant(QStringLiteral("x")));
    EXPECT_EQ(s.renderer.parameterType(1), QVariant::String);
    EXPECT_EQ(s.renderer.numOutputs(), 0);
}

TEST(Registration, FindParameterAnswersTheFirstOfAName)
{
    Scene s;
    s.parameter(1, "other");
    s.parameter(2, "twin");
    s.parameter(3, "twin");
    EXPECT_EQ(s.renderer.findParameter(QStringLiteral("twin")), 1);
    EXPECT_EQ(s.renderer.findParameter(QStringLiteral("Twin")), -1);
    EXPECT_EQ(s.renderer.findParameter(QStringLiteral("out")), -1);
}

TEST(Registration, SetParameterReplacesValueAndType)
{
    Scene s;
    s.parameter(1);
    s.parameter(2);
    s.renderer.setParameter(1, 2.5);
    EXPECT_EQ(s.renderer.parameterValue(1), QVariant(2.5));
    EXPECT_EQ(s.renderer.parameterType(1), QVariant::Double);
    EXPECT_EQ(s.renderer.parameterValue(0), QVariant(1));
    s.renderer.setParameter(1, QVariant());
    EXPECT_EQ(s.renderer.parameterType(1), QVariant::Invalid);
}

TEST(Registration, ParameterValueIsACopy)
{
    Scene s;
    s.parameter(1);
    QVariant value = s.renderer.parameterValue(0);
    value = 2;
    EXPECT_EQ(s.renderer.parameterValue(0), QVariant(1));
}

TEST(Registration, OutputsAreOutputsOfTheRootAndInvalidAtFirst)
{
    Scene s;
    EXPECT_EQ(s.renderer.addOutput(QStringLiteral("image")), 0);
    EXPECT_EQ(s.renderer.addOutput(QStringLiteral("depth")), 1);
    EXPECT_EQ(s.renderer.numOutputs(), 2);
    EXPECT_EQ(s.renderer.numParameters(), 0);
    EXPECT_EQ(s.graph.numOutputs(Graph::kRootNodeRef), 2);
    EXPECT_EQ(s.graph.outputName(Graph::kRootNodeRef, 1), QStringLiteral("depth"));
    EXPECT_EQ(s.graph.outputGroup(Graph::kRootNodeRef, 1), Graph::kInvalidGroupRef);
    EXPECT_FALSE(s.renderer.output(0).isValid());
    EXPECT_EQ(s.renderer.outputType(0), QVariant::Invalid);
}

TEST(Registration, FindOutputAnswersTheFirstOfAName)
{
    Scene s;
    s.output("other");
    s.output("twin");
    s.output("twin");
    s.parameter(1, "parameter");
    EXPECT_EQ(s.renderer.findOutput(QStringLiteral("twin")), 1);
    EXPECT_EQ(s.renderer.findOutput(QStringLiteral("TWIN")), -1);
    EXPECT_EQ(s.renderer.findOutput(QStringLiteral("parameter")), -1);
}

TEST(Registration, TargetIsKeptAsGiven)
{
    Scene s;
    for (const int target : {0, 5, -7, -1}) {
        s.renderer.setTarget(target);
        EXPECT_EQ(s.renderer.getTarget(), target);
    }
}

TEST(Registration, NumPassesIsZeroUntilAFrameRuns)
{
    Scene s;
    s.chain(3);
    EXPECT_EQ(s.renderer.getNumPasses(), 0);
    s.setup();
    EXPECT_EQ(s.renderer.getNumPasses(), 0);
    s.render();
    EXPECT_EQ(s.renderer.getNumPasses(), 3);
}

// With an enabled pass that was never started, mode 1 tells that the staggered first frame is on,
// and mode 2 that it is off.

TEST(StaggeredParameter, TakesEffectWhenAdded)
{
    Scene s;
    s.pass("A", 0, 0);
    EXPECT_EQ(s.renderer.getGraphProcessingMode(), 2);
    s.renderer.addParameter(QStringLiteral("Orv_bool_staggeredFirstFrame"), true);
    EXPECT_EQ(s.renderer.getGraphProcessingMode(), 1);
}

TEST(StaggeredParameter, MayBeAddedFalse)
{
    Scene s;
    s.pass("A", 0, 0);
    s.renderer.addParameter(QStringLiteral("Orv_bool_staggeredFirstFrame"), false);
    EXPECT_EQ(s.renderer.getGraphProcessingMode(), 2);
}

TEST(StaggeredParameter, FollowsSetParameter)
{
    Scene s;
    s.pass("A", 0, 0);
    s.parameter(1, "other");
    const int index = s.staggered(true);
    EXPECT_EQ(index, 1);
    s.renderer.setParameter(index, false);
    EXPECT_EQ(s.renderer.getGraphProcessingMode(), 2);
    EXPECT_EQ(s.renderer.parameterValue(index), QVariant(false));
    s.renderer.setParameter(index, true);
    EXPECT_EQ(s.renderer.getGraphProcessingMode(), 1);
    EXPECT_EQ(s.renderer.parameterValue(index), QVariant(true));
}

TEST(StaggeredParameter, IsReadAsABool)
{
    Scene s;
    s.pass("A", 0, 0);
    const int index = s.staggered(false);
    s.renderer.setParameter(index, 3);
    EXPECT_EQ(s.renderer.getGraphProcessingMode(), 1);
    s.renderer.setParameter(index, QStringLiteral("false"));
    EXPECT_EQ(s.renderer.getGraphProcessingMode(), 2);
    s.renderer.setParameter(index, QStringLiteral("true"));
    EXPECT_EQ(s.renderer.getGraphProcessingMode(), 1);
    s.renderer.setParameter(index, QVariant());
    EXPECT_EQ(s.renderer.getGraphProcessingMode(), 2);
}

TEST(StaggeredParameter, OtherNamesHaveNoEffect)
{
    Scene s;
    s.pass("A", 0, 0);
    const char* const names[] = {"orv_bool_staggeredFirstFrame", "Orv_bool_StaggeredFirstFrame",
                                 "ORV_BOOL_STAGGEREDFIRSTFRAME", "Orv_bool_staggeredFirstFrame ",
                                 "Orv_bool_staggeredFirstFram",  ""};
    for (const char* name : names) {
        const int index = s.parameter(true, name);
        EXPECT_EQ(s.renderer.getGraphProcessingMode(), 2) << name;
        s.renderer.setParameter(index, true);
        EXPECT_EQ(s.renderer.getGraphProcessingMode(), 2) << name;
    }
}

TEST(StaggeredParameter, OtherParametersDoNotSwitchItOff)
{
    Scene s;
    s.pass("A", 0, 0);
    const int other = s.parameter(true, "other");
    s.staggered(true);
    s.renderer.setParameter(other, false);
    EXPECT_EQ(s.renderer.getGraphProcessingMode(), 1);
}

TEST(StaggeredParameter, SecondOfTheNameCountsWhenAddedButNotWhenSet)
{
    Scene s;
    s.pass("A", 0, 0);
    const int first = s.staggered(false);
    const int second = s.staggered(true);
    EXPECT_EQ(s.renderer.getGraphProcessingMode(), 1);
    s.renderer.setParameter(second, false);
    EXPECT_EQ(s.renderer.getGraphProcessingMode(), 1);
    EXPECT_EQ(s.renderer.parameterValue(second), QVariant(false)) << "the value itself is set";
    s.renderer.setParameter(first, false);
    EXPECT_EQ(s.renderer.getGraphProcessingMode(), 2);
    s.staggered(true);
    EXPECT_EQ(s.renderer.getGraphProcessingMode(), 1);
    s.staggered(false);
    EXPECT_EQ(s.renderer.getGraphProcessingMode(), 2);
}

TEST(StaggeredParameter, IsLookedUpAnewByEverySetParameter)
{
    Scene s;
    s.pass("A", 0, 0);
    const int plain = s.parameter(0, "plain");
    s.graph.setInputName(Graph::kRootNodeRef, plain,
                         QStringLiteral("Orv_bool_staggeredFirstFrame"));
    EXPECT_EQ(s.renderer.getGraphProcessingMode(), 2);
    s.renderer.setParameter(plain, true);
    EXPECT_EQ(s.renderer.getGraphProcessingMode(), 1);
    s.graph.setInputName(Graph::kRootNodeRef, plain, QStringLiteral("plain"));
    s.renderer.setParameter(plain, false);
    EXPECT_EQ(s.renderer.getGraphProcessingMode(), 1);
}

TEST(PassOwnership, RendererDeletesItsPassesInOrderOfRegistration)
{
    CallLog log;
    {
        Renderer renderer;
        const int g = renderer.addGroup(QStringLiteral("G"), 0, 0, 0);
        renderer.addPass(QStringLiteral("x"), new RecordingPass(log, "A", 0, 0), g);
        renderer.addPass(QStringLiteral("x"), new RecordingPass(log, "B", 0, 0), 0);
        const int c = renderer.addPass(QStringLiteral("x"), new RecordingPass(log, "C", 0, 0), g);
        renderer.setEnabled(c, false);
        log.take();
    }
    EXPECT_EQ(log.take(), "A.delete B.delete C.delete") << "and no teardown";
}

TEST(PassOwnership, RendererInUseDeletesWithoutATeardown)
{
    CallLog log;
    {
        Renderer renderer;
        const int a = renderer.addPass(QString(), new RecordingPass(log, "A", 0, 1), 0);
        renderer.addOutput(QString());
        renderer.getGraph()->addUpEdge(0, a, 0);
        renderer.setup(nullptr);
        renderer.render(nullptr);
        log.take();
    }
    EXPECT_EQ(log.take(), "A.delete");
}

TEST(PassOwnership, NullPassesArePassedOver)
{
    CallLog log;
    {
        Renderer renderer;
        EXPECT_EQ(renderer.addPass(QString(), nullptr, 0), 1);
        renderer.addPass(QString(), new RecordingPass(log, "A", 0, 0), 0);
        EXPECT_EQ(renderer.addPass(QString(), nullptr, 0), 3) << "null is no pass twice";
        renderer.addPass(QString(), new RecordingPass(log, "B", 0, 0), 0);
        log.take();
    }
    EXPECT_EQ(log.take(), "A.delete B.delete");
}

TEST(PassOwnership, ARegisteredPassIsRefusedASecondTime)
{
    CallLog log;
    {
        Renderer renderer;
        auto* pass = new RecordingPass(log, "A", 1, 1);
        const int node = renderer.addPass(QStringLiteral("first"), pass, 0);
        log.take();
        EXPECT_EQ(renderer.addPass(QStringLiteral("again"), pass, 0), -1);
        EXPECT_EQ(log.take(), "") << "it is not even asked for its ports";
        EXPECT_EQ(renderer.getGraph()->numNodesGlobal(), 2);
        EXPECT_EQ(renderer.findPass(QStringLiteral("again")), -1);
        EXPECT_EQ(renderer.renderPass(node), pass);

        auto* next = new RecordingPass(log, "B", 0, 0);
        const int nextNode = renderer.addPass(QString(), next, 0);
        EXPECT_EQ(renderer.getGraph()->nodeValue(nextNode), 1) << "no pass index was used up";
        log.take();
    }
    EXPECT_EQ(log.take(), "A.delete B.delete");
}

TEST(PassOwnership, ARegisteredPassIsRefusedAlsoWhenItHasNoNode)
{
    CallLog log;
    {
        Renderer renderer;
        auto* pass = new RecordingPass(log, "A", 0, 0);
        EXPECT_EQ(renderer.addPass(QString(), pass, 17), -1) << "there is no node 17";
        EXPECT_EQ(renderer.addPass(QString(), pass, 0), -1);
        log.take();
    }
    EXPECT_EQ(log.take(), "A.delete");
}

TEST(PassOwnership, GraphOutlivesThePasses)
{
    CallLog log;
    int nodesSeen = 0;
    QString nameSeen;
    {
        Renderer renderer;
        Graph* graph = renderer.getGraph();
        auto* pass = new RecordingPass(log, "A", 0, 0);
        const int node = renderer.addPass(QStringLiteral("node of A"), pass, 0);
        pass->onDelete = [&nodesSeen, &nameSeen, graph, node] {
            nodesSeen = graph->numNodesGlobal();
            nameSeen = graph->nodeName(node);
        };
    }
    EXPECT_EQ(nodesSeen, 2);
    EXPECT_EQ(nameSeen, QStringLiteral("node of A"));
}

TEST(PassOwnership, TeardownAndRemovalOfTheNodeLeaveThePassAlive)
{
    CallLog log;
    {
        Renderer renderer;
        const int node = renderer.addPass(QString(), new RecordingPass(log, "A", 0, 0), 0);
        log.take();
        renderer.teardown(nullptr);
        renderer.getGraph()->removeNode(node);
        EXPECT_EQ(log.take(), "A.teardown(0)");
    }
    EXPECT_EQ(log.take(), "A.delete");
}

TEST(PassOwnership, PassThatThrowsWhileRegisteringIsOwned)
{
    CallLog log;
    {
        Renderer renderer;
        auto* pass = new RecordingPass(log, "A", 1, 1);
        pass->onCall = [](const std::string& operation) {
            if (operation == "inputName")
                throw std::runtime_error("no name");
        };
        EXPECT_THROW(renderer.addPass(QString(), pass, 0), std::runtime_error);
        log.take();
    }
    EXPECT_EQ(log.take(), "A.delete");
}

TEST(PassOwnership, DerivedRendererIsDeletedThroughItsBase)
{
    struct Derived : Renderer
    {
        explicit Derived(CallLog& callLog)
            : log(callLog)
        {
        }
        ~Derived() override { log.note("derived"); }
        CallLog& log;
    };
    CallLog log;
    std::unique_ptr<Renderer> renderer(new Derived(log));
    renderer->addPass(QString(), new RecordingPass(log, "A", 0, 0), 0);
    log.take();
    renderer.reset();
    EXPECT_EQ(log.take(), "derived A.delete");
}
