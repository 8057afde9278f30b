// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Inspect/support/DocumentSupport.h"

#include <gtest/gtest.h>

#include <Kestrin/Orv/Graph.h>
#include <Kestrin/Orv/Inspect/BuildRenderer.h>
#include <Kestrin/Orv/Inspect/StandInPass.h>
#include <Kestrin/Orv/Renderer.h>

using namespace Kestrin::Orv;
using namespace Kestrin::Orv::Inspect;

namespace {

int passesAlive = 0;

/// A pass with an input "i" and an output "o", which counts itself.
class CountedPass : public RenderPassHelper
{
public:
    explicit CountedPass(const QString& inputName = QStringLiteral("i"))
    {
        ++passesAlive;
        RenderPassHelper::addInput(inputName, 1);
        RenderPassHelper::addOutput(QStringLiteral("o"));
    }
    ~CountedPass() override { --passesAlive; }
};

const char kTwo[] = R"("nodes":[
{"path":"A","pass":"Counted","inputs":[{"name":"i","default":{"type":"int","value":5}}],"outputs":["o"]},
{"path":"B","pass":"Counted","enabled":false,"inputs":["i"],"outputs":["o"]}],
"edges":["A.o -> B.i"],"target":"B")";

PassFactory counting(const QString& inputName = QStringLiteral("i"))
{
    PassFactory factory;
    factory.add(QStringLiteral("Counted"),
                [inputName](const PassRequest&) { return new CountedPass(inputName); });
    return factory;
}

std::string build(const char* members, Renderer& renderer, const PassFactory& factory)
{
    const ReadResult read = readDocument(documentOf(members));
    EXPECT_EQ(listed(read.problems), "");
    return listed(buildRenderer(read.snapshot, renderer, factory, read.places));
}

bool isEmpty(Renderer& renderer)
{
    return renderer.getGraph()->numNodesGlobal() == 1 && renderer.getGraphProcessingMode() == 0;
}

} // namespace

TEST(BuildRenderer, MakesPassesThroughTheFactory)
{
    Renderer renderer;
    EXPECT_EQ(build(kTwo, renderer, counting()), "");
    EXPECT_EQ(passesAlive, 2);
    ASSERT_NE(dynamic_cast<CountedPass*>(renderer.renderPass(1)), nullptr);
    EXPECT_TRUE(renderer.enabled(1));
    EXPECT_FALSE(renderer.enabled(2));
    EXPECT_EQ(renderer.getTarget(), 2);
    EXPECT_EQ(renderer.getGraph()->inputSource(2, 0), 0);
}

TEST(BuildRenderer, AsksForEachPassByTheNodeThatItGetsInTheRenderer)
{
    // Removed nodes have no place in the renderer, so the refs of the snapshot do not hold there.
    Renderer original;
    original.addPass(QStringLiteral("Gone"), new CountedPass, Graph::kRootNodeRef);
    const int group = original.addGroup(QStringLiteral("G"), 0, 0, Graph::kRootNodeRef);
    original.addPass(QStringLiteral("Inner"), new CountedPass, group);
    original.addPass(QStringLiteral("Twin"), new CountedPass, Graph::kRootNodeRef);
    original.addPass(QStringLiteral("Twin"), new CountedPass, Graph::kRootNodeRef);
    original.getGraph()->removeNode(1);

    std::string asked;
    PassFactory factory;
    factory.setFallback([&asked](const PassRequest& request) -> RenderPass* {
        asked += std::to_string(request.ref) + ' ' + request.path.toStdString() + ' '
            + request.node.name.toStdString() + '\n';
        return new CountedPass;
    });
    Renderer built;
    EXPECT_EQ(listed(buildRenderer(Snapshot::of(original), built, factory)), "");
    EXPECT_EQ(asked, "2 G/Inner Inner\n3 Twin[0] Twin\n4 Twin[1] Twin\n");
    EXPECT_EQ(built.getGraph()->nodeName(2), QStringLiteral("Inner"));
    EXPECT_EQ(built.getGraph()->nodeName(4), QStringLiteral("Twin"));
}

TEST(BuildRenderer, GivesInputsTheDefaultsOfTheDocumentAndNoOthers)
{
    Renderer renderer;
    EXPECT_EQ(build(kTwo, renderer, counting()), "");
    EXPECT_EQ(renderer.renderPass(1)->defaultValue(0), QVariant(5));
    EXPECT_EQ(renderer.renderPass(2)->defaultValue(0), QVariant());
}

TEST(BuildRenderer, ReportsEachUnknownTypeOnce)
{
    Renderer renderer;
    EXPECT_EQ(build(kTwo, renderer, PassFactory()),
              "3:1 unknown-type: A: nothing makes passes of type \"Counted\"\n");
    EXPECT_TRUE(isEmpty(renderer));
}

TEST(BuildRenderer, DeletesThePassesThatItHasMadeWhenItFails)
{
    Renderer renderer;
    PassFactory factory = counting();
    EXPECT_EQ(build(R"("nodes":[{"path":"A","pass":"Counted","inputs":["i"],"outputs":["o"]},
{"path":"B","pass":"Other"}])",
                    renderer, factory),
              "3:1 unknown-type: B: nothing makes passes of type \"Other\"\n");
    EXPECT_EQ(passesAlive, 0);
    EXPECT_TRUE(isEmpty(renderer));
}

TEST(BuildRenderer, ReportsPassesWithOtherNames)
{
    Renderer renderer;
    EXPECT_EQ(build(kTwo, renderer, counting(QStringLiteral("j"))),
              "3:1 wrong-ports: A: the pass's input 0 is called \"j\", not \"i\"\n"
              "4:1 wrong-ports: B: the pass's input 0 is called \"j\", not \"i\"\n");
    EXPECT_TRUE(isEmpty(renderer));
}

TEST(BuildRenderer, ReportsPassesWithOtherNumbersOfPorts)
{
    Renderer renderer;
    EXPECT_EQ(
        build(R"("nodes":[{"path":"A","pass":"Counted","inputs":["i"]}])", renderer, counting()),
        "2:10 wrong-ports: A: the pass has 1 outputs, not 0\n");
}

TEST(BuildRenderer, ReportsMakersThatMakeNothing)
{
    Renderer renderer;
    PassFactory factory;
    factory.setFallback([](const PassRequest&) -> RenderPass* { return nullptr; });
    EXPECT_EQ(build(R"("nodes":[{"path":"A","pass":"X"}])", renderer, factory),
              "2:10 no-pass: A: no pass of type \"X\" was made\n");
}

TEST(BuildRenderer, ReportsMakersThatMakeOnePassForTwoNodes)
{
    Renderer renderer;
    auto* const pass = new CountedPass;
    PassFactory factory;
    factory.setFallback([pass](const PassRequest&) -> RenderPass* { return pass; });
    EXPECT_EQ(build(kTwo, renderer, factory),
              "4:1 shared-pass: B: its pass has already been made for another node\n");
    EXPECT_EQ(passesAlive, 0);
}

TEST(BuildRenderer, WantsAnEmptyRenderer)
{
    Renderer renderer;
    renderer.addOutput(QStringLiteral("O"));
    EXPECT_EQ(build(kTwo, renderer, counting()),
              "0:0 renderer-not-empty: the renderer is not empty\n");
    EXPECT_EQ(passesAlive, 0);
}

TEST(BuildRenderer, WantsNoPassWithoutANodeEither)
{
    Renderer renderer;
    EXPECT_EQ(renderer.addPass(QStringLiteral("X"), new CountedPass, 99), -1);
    EXPECT_EQ(build(kTwo, renderer, PassFactory::standIns()),
              "0:0 renderer-not-empty: the renderer is not empty\n");
}

TEST(BuildRenderer, ReportsTheProblemsOfASnapshotMadeByHand)
{
    ReadResult read = readDocument(documentOf(kTwo));
    EdgeRecord back;
    back.srcNode = 2;
    back.srcIndex = 0;
    back.dstNode = 1;
    back.dstIndex = 0;
    back.removed = false;
    read.snapshot.nodes[1].inputs[0].source = read.snapshot.edges.size();
    read.snapshot.edges.append(back);
    Renderer renderer;
    EXPECT_EQ(listed(buildRenderer(read.snapshot, renderer, counting(), read.places)),
              "0:0 cycle: B.o -> A.i closes a cycle, so a graph refuses it\n");
    EXPECT_TRUE(isEmpty(renderer));
    EXPECT_EQ(passesAlive, 0);
}

TEST(BuildRenderer, KeepsTheGroupsOfAPassesPorts)
{
    Renderer renderer;
    EXPECT_EQ(
        build(
            R"("nodes":[{"path":"A","pass":"Counted","groups":["g"],"inputs":[{"name":"i","group":"g"}],"outputs":["o"]}])",
            renderer, counting()),
        "");
    EXPECT_EQ(renderer.getGraph()->inputGroup(1, 0), 0);
    EXPECT_EQ(renderer.getGraph()->inputName(1, 0), QStringLiteral("i"));
}

TEST(StandInPass, KnowsItsTypeInASnapshot)
{
    Renderer renderer;
    NodeRecord node;
    node.type = QStringLiteral("Gauss");
    renderer.addPass(QStringLiteral("Blur"), new StandInPass(node), 0);
    EXPECT_EQ(Snapshot::of(renderer).node(1).type, QStringLiteral("Gauss"));
}

TEST(StandInPass, PutsOutTheNumberOfItsNameAndInputs)
{
    Renderer renderer;
    EXPECT_EQ(
        build(R"("parameters":[{"name":"P","type":"int","value":3}],"outputs":["X","Y"],"nodes":[
{"path":"A","pass":"","inputs":["i"],"outputs":["o"]},
{"path":"B","pass":"","inputs":["i",{"name":"j","default":{"value":"d"}}],"outputs":["o","p"]}],
"edges":["P -> A.i","A.o -> B.i","B.o -> X","B.p -> Y"])",
              renderer, PassFactory::standIns()),
        "");
    renderer.setup(nullptr);
    EXPECT_TRUE(renderer.render(nullptr));
    const uint a = StandInPass::number(QStringLiteral("A"), 0, {3});
    const QVector<QVariant> inputs{a, QStringLiteral("d")};
    EXPECT_EQ(renderer.output(0), QVariant(StandInPass::number(QStringLiteral("B"), 0, inputs)));
    EXPECT_EQ(renderer.output(1), QVariant(StandInPass::number(QStringLiteral("B"), 1, inputs)));
    EXPECT_NE(renderer.output(0), renderer.output(1));
}

TEST(StandInPass, DistinguishesTypesNamesAndInputs)
{
    const QString name = QStringLiteral("A");
    const uint number = StandInPass::number(name, 0, {1});
    EXPECT_NE(number, StandInPass::number(name, 0, {1.0}));
    EXPECT_NE(number, StandInPass::number(name, 0, {1, 1}));
    EXPECT_NE(number, StandInPass::number(name, 0, {}));
    EXPECT_NE(number, StandInPass::number(QStringLiteral("B"), 0, {1}));
    EXPECT_NE(number, StandInPass::number(name, 1, {1}));
}

TEST(StandInPass, GivesTheSameNumberEverywhere)
{
    // FNV-1a of the bytes "A\0" "{\"type\":\"int\",\"value\":3}\0" "0\0"
    uint hash = 2166136261U;
    const char bytes[] = "A\0{\"type\":\"int\",\"value\":3}\0"
                         "0";
    for (const char c : bytes)
        hash = (hash ^ static_cast<uchar>(c)) * 16777619U;
    EXPECT_EQ(StandInPass::number(QStringLiteral("A"), 0, {3}), hash);
}

TEST(StandInPass, FailsAndTakesTimeAsSet)
{
    Renderer renderer;
    auto* const pass = new StandInPass(NodeRecord());
    const int node = renderer.addPass(QStringLiteral("A"), pass, 0);
    renderer.setTarget(node);
    renderer.setup(nullptr);
    EXPECT_TRUE(renderer.render(nullptr));
    pass->setFailure(7);
    EXPECT_FALSE(renderer.render(nullptr));
    EXPECT_EQ(pass->errorCode(), 7U);
    pass->setFailure(0);
    pass->setDuration(20);
    QElapsedTimer timer;
    timer.start();
    EXPECT_TRUE(renderer.render(nullptr));
    EXPECT_GE(timer.elapsed(), 20);
}
