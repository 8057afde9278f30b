// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include <Kestrin/Orv/Inspect/Document.h>
#include <Kestrin/Orv/Inspect/Explain.h>

#include <gtest/gtest.h>

#include "Inspect/support/LargeGraphs.h"
#include "Inspect/support/RandomRenderer.h"
#include "support/LightPass.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>

#include <initializer_list>

using namespace Kestrin::Orv;
using namespace Kestrin::Orv::Inspect;

namespace {

/// A pass with named ports; the default of every input is 0.5.
class NamedPass : public LightPass
{
public:
    NamedPass(const QStringList& ins, const QStringList& outs)
        : LightPass(ins.size(), outs.size())
        , inputNames(ins)
        , outputNames(outs)
    {
    }
    QString inputName(int index) const override { return inputNames.value(index); }
    QString outputName(int index) const override { return outputNames.value(index); }
    QVariant defaultValue(int) const override { return 0.5; }

private:
    QStringList inputNames, outputNames;
};

QStringList split(const char* names)
{
    return QString::fromUtf8(names).split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

/// A renderer that is wired by names, and what is explained of it.
struct Scene
{
    Renderer renderer;
    Graph& graph = *renderer.getGraph();

    int pass(const char* name, const char* inputs, const char* outputs, int parent = 0)
    {
        return renderer.addPass(QString::fromUtf8(name),
                                new NamedPass(split(inputs), split(outputs)), parent);
    }
    int group(const char* name, const char* inputs, const char* outputs, int parent = 0)
    {
        const QStringList ins = split(inputs), outs = split(outputs);
        const int node =
            renderer.addGroup(QString::fromUtf8(name), ins.size(), outs.size(), parent);
        for (int i = 0; i < ins.size(); ++i)
            graph.setInputName(node, i, ins.at(i));
        for (int i = 0; i < outs.size(); ++i)
            graph.setOutputName(node, i, outs.at(i));
        return node;
    }
    std::string node(int ref)
    {
        const Snapshot snapshot = Snapshot::of(renderer);
        const Explainer explainer(snapshot);
        return explainer.toText(explainer.node(ref)).toStdString();
    }
    std::string input(int ref, int index)
    {
        const Snapshot snapshot = Snapshot::of(renderer);
        const Explainer explainer(snapshot);
        return explainer.toText(explainer.input(ref, index)).toStdString();
    }
    std::string edge(const PortRef& from, const PortRef& to)
    {
        const Snapshot snapshot = Snapshot::of(renderer);
        const Explainer explainer(snapshot);
        return explainer.toText(explainer.edge(from, to)).toStdString();
    }
};

///     Angle -> Shadow -> [Bloom: Blur -> Glow] -+-> ToneMap -> Picture
///                                               +-> LightMeter -> Debug
///
/// The group Bloom has an input and an output to spare, which nothing feeds.
struct Frame : Scene
{
    int angle = renderer.addParameter(QStringLiteral("Angle"), 42);
    int picture = renderer.addOutput(QStringLiteral("Picture"));
    int shadow = pass("Shadow", "Angle Bias", "Map");
    int bloom = group("Bloom", "Scene Spare", "Color Spare");
    int blur = pass("Blur", "Color", "Color", bloom);
    int glow = pass("Glow", "Color Mask", "Color", bloom);
    int toneMap = pass("ToneMap", "Color Other", "Color");
    int meter = pass("LightMeter", "Color", "Exposure");
    int debug = pass("Debug", "Exposure", "");

    Frame()
    {
        graph.addDownEdge(angle, shadow, 0);
        graph.addEdge(shadow, 0, bloom, 0);
        graph.addDownEdge(0, blur, 0);
        graph.addEdge(blur, 0, glow, 0);
        graph.addDownEdge(1, glow, 1);
        graph.addUpEdge(0, glow, 0);
        graph.addEdge(bloom, 0, toneMap, 0);
        graph.addEdge(bloom, 1, toneMap, 1);
        graph.addUpEdge(picture, toneMap, 0);
        graph.addEdge(bloom, 0, meter, 0);
        graph.addEdge(meter, 0, debug, 0);
    }
};

/// What a page quotes from a raw string: without the lines that mark the region.
std::string quoted(const char* text)
{
    std::string result;
    const QStringList lines = QString::fromUtf8(text).split(QLatin1Char('\n'));
    for (const QString& line : lines) {
        if (!line.isEmpty() && !line.startsWith(QLatin1String("//!")))
            result += line.toStdString() + "\n";
    }
    return result;
}

} // namespace

// Nodes

TEST(ExplainNode, APassThatRunsIsToldWithTheWayFromTheOutput)
{
    Frame f;
    EXPECT_EQ(f.node(f.shadow), quoted(R"(
//! [runs]
Shadow runs as 1 of 4, needed by the renderer's output Picture:
  output Picture
  output ToneMap.Color
  input ToneMap.Color
  output Bloom.Color
  output Bloom/Glow.Color
  input Bloom/Glow.Color
  output Bloom/Blur.Color
  input Bloom/Blur.Color
  input Bloom.Scene
  output Shadow.Map
//! [runs]
)"));
}

TEST(ExplainNode, OfSeveralOutputsTheFirstIsTold)
{
    Frame f;
    const int second = f.renderer.addOutput(QStringLiteral("Second"));
    const int third = f.renderer.addOutput(QStringLiteral("Third"));
    f.graph.addUpEdge(third, f.debug, 0); // refused: Debug has no output
    f.graph.addUpEdge(second, f.meter, 0);
    EXPECT_EQ(f.node(f.meter),
              "LightMeter runs as 5 of 5, needed by the renderer's output Second:\n"
              "  output Second\n"
              "  output LightMeter.Exposure\n");
    EXPECT_EQ(f.node(f.toneMap),
              "ToneMap runs as 4 of 5, needed by the renderer's output Picture:\n"
              "  output Picture\n"
              "  output ToneMap.Color\n");
}

TEST(ExplainNode, TheTargetIsToldToBeIt)
{
    Frame f;
    f.renderer.setTarget(f.debug);
    EXPECT_EQ(f.node(f.debug), "Debug runs as 6 of 6: it is the target.\n");
}

TEST(ExplainNode, WhatTheTargetNeedsIsToldWithTheWayFromItsInput)
{
    Frame f;
    f.renderer.setTarget(f.debug);
    EXPECT_EQ(f.node(f.meter), quoted(R"(
//! [for-the-target]
LightMeter runs as 5 of 6, needed by the target Debug:
  input Debug.Exposure
  output LightMeter.Exposure
//! [for-the-target]
)"));
}

TEST(ExplainNode, ATargetThatAnOutputLeadsToIsToldByTheOutput)
{
    Frame f;
    f.renderer.setTarget(f.toneMap);
    EXPECT_EQ(f.node(f.toneMap),
              "ToneMap runs as 4 of 4, needed by the renderer's output Picture:\n"
              "  output Picture\n"
              "  output ToneMap.Color\n");
}

TEST(ExplainNode, ADisabledPassIsToldWithWhatLeadsToIt)
{
    Frame f;
    f.renderer.setEnabled(f.toneMap, false);
    EXPECT_EQ(f.node(f.toneMap), quoted(R"(
//! [disabled]
ToneMap does not run: it is disabled. The renderer's output Picture leads to it:
  output Picture
  output ToneMap.Color
//! [disabled]
)"));
}

TEST(ExplainNode, ADisabledTargetIsToldToBeBoth)
{
    Frame f;
    f.renderer.setTarget(f.debug);
    f.renderer.setEnabled(f.debug, false);
    f.renderer.setEnabled(f.meter, false);
    EXPECT_EQ(f.node(f.debug), "Debug does not run: it is disabled. It is the target.\n");
    EXPECT_EQ(f.node(f.meter),
              "LightMeter does not run: it is disabled. The target Debug leads to it:\n"
              "  input Debug.Exposure\n"
              "  output LightMeter.Exposure\n");
}

TEST(ExplainNode, WhatNothingNeedsIsToldTheNearestEndOfItsWays)
{
    Frame f;
    EXPECT_EQ(f.node(f.meter), quoted(R"(
//! [not-needed]
LightMeter does not run: no output of the renderer and no target leads to it. The nearest one downstream that nothing reads is Debug: make Debug the target, and LightMeter runs:
  input Debug.Exposure
  output LightMeter.Exposure
//! [not-needed]
)"));
}

TEST(ExplainNode, WhatNothingReadsIsItsOwnNearestEnd)
{
    Frame f;
    EXPECT_EQ(f.node(f.debug),
              "Debug does not run: no output of the renderer and no target leads to it. Make it "
              "the target, and it runs.\n");
    const int spare = f.pass("Spare", "", "Color");
    EXPECT_EQ(f.node(spare),
              "Spare does not run: no output of the renderer and no target leads to it. Make it "
              "the target or feed an output of the renderer from it, and it runs.\n");
}

TEST(ExplainNode, WhatNothingNeedsAndIsDisabledIsToldBoth)
{
    Frame f;
    f.renderer.setEnabled(f.debug, false);
    EXPECT_EQ(f.node(f.debug),
              "Debug does not run: no output of the renderer and no target leads to it, and it is "
              "disabled. Make it the target, and it runs once it is enabled.\n");
}

TEST(ExplainNode, TheNearestEndIsFoundInsideAndOutOfGroups)
{
    Scene s;
    const int source = s.pass("Source", "", "Color");
    const int outer = s.group("Outer", "In", "Out");
    const int inner = s.group("Inner", "In", "Out", outer);
    const int worker = s.pass("Worker", "In", "Out", inner);
    const int sink = s.pass("Sink", "In", "");
    s.graph.addEdge(source, 0, outer, 0);
    s.graph.addDownEdge(0, inner, 0);
    s.graph.addDownEdge(0, worker, 0);
    s.graph.addUpEdge(0, worker, 0);
    s.graph.addUpEdge(0, inner, 0);
    s.graph.addEdge(outer, 0, sink, 0);
    EXPECT_EQ(
        s.node(source),
        "Source does not run: no output of the renderer and no target leads to it. The nearest one "
        "downstream that nothing reads is Sink: make Sink the target, and Source runs:\n"
        "  input Sink.In\n"
        "  output Outer.Out\n"
        "  output Outer/Inner.Out\n"
        "  output Outer/Inner/Worker.Out\n"
        "  input Outer/Inner/Worker.In\n"
        "  input Outer/Inner.In\n"
        "  input Outer.In\n"
        "  output Source.Color\n");
}

TEST(ExplainNode, AWayMayEndAtAGroupThatLeadsNowhere)
{
    Scene s;
    const int source = s.pass("Source", "", "Color");
    const int outer = s.group("Outer", "In", "");
    const int inner = s.group("Inner", "In", "Out", outer);
    s.graph.addEdge(source, 0, outer, 0);
    s.graph.addDownEdge(0, inner, 0);
    EXPECT_EQ(
        s.node(source),
        "Source does not run: no output of the renderer and no target leads to it. The nearest one "
        "downstream that nothing reads is Outer/Inner: make Outer/Inner the target or feed an "
        "output of the renderer from it, and Source runs:\n"
        "  input Outer/Inner.In\n"
        "  input Outer.In\n"
        "  output Source.Color\n");
    s.renderer.setTarget(inner);
    EXPECT_EQ(s.node(source),
              "Source runs as 1 of 1, needed by the target Outer/Inner:\n"
              "  input Outer/Inner.In\n"
              "  input Outer.In\n"
              "  output Source.Color\n");
}

TEST(ExplainNode, OfSeveralEndsTheNearestAndThenTheOldestIsTold)
{
    Scene s;
    const int source = s.pass("Source", "", "Color");
    const int relay = s.pass("Relay", "In", "Out");
    const int end = s.pass("End", "In", "");
    const int far = s.pass("Far", "In", "");
    const int late = s.pass("Late", "In", "");
    s.graph.addEdge(relay, 0, far, 0);
    s.graph.addEdge(source, 0, relay, 0);
    s.graph.addEdge(source, 0, end, 0);
    s.graph.addEdge(source, 0, late, 0);
    const Snapshot snapshot = Snapshot::of(s.renderer);
    EXPECT_EQ(Explainer(snapshot).node(source).nearest, end);
    EXPECT_EQ(Explainer(snapshot).node(relay).nearest, far);
}

TEST(ExplainNode, WhereAllWaysLeadInACircleThePassItselfIsTheEnd)
{
    // A is fed from a group, and the group from a pass in it that A feeds: a cycle that the graph
    // does not see.
    Scene s;
    const int group = s.group("Group", "In", "Out");
    const int inside = s.pass("Inside", "In", "Out", group);
    const int a = s.pass("A", "In", "Out");
    s.graph.addEdge(group, 0, a, 0);
    s.graph.addEdge(a, 0, group, 0);
    s.graph.addDownEdge(0, inside, 0);
    s.graph.addUpEdge(0, inside, 0);
    EXPECT_EQ(s.node(a),
              "A does not run: no output of the renderer and no target leads to it. Make it the "
              "target or feed an output of the renderer from it, and it runs.\n");
}

TEST(ExplainNode, GroupsAndPassesThatAreNullHaveNothingToRun)
{
    Frame f;
    const int null = f.renderer.addPass(QStringLiteral("Null"), nullptr, 0);
    EXPECT_EQ(f.node(f.bloom), "Bloom is a group: there is nothing to run.\n");
    EXPECT_EQ(f.node(null), "Null has no pass: there is nothing to run.\n");
    EXPECT_EQ(f.node(0), "The renderer is not a pass: there is nothing to run.\n");
}

TEST(ExplainNode, WhatHasBeenRemovedOrNeverWasIsToldSo)
{
    Frame f;
    f.graph.removeNode(f.glow);
    EXPECT_EQ(f.node(f.glow), "Bloom/Glow[removed 4] has been removed.\n");
    EXPECT_EQ(f.node(99), "There is no node 99.\n");
    EXPECT_EQ(f.node(-1), "There is no node -1.\n");
}

TEST(ExplainNode, NamesAreTakenAsTheyAre)
{
    Scene s;
    const int node = s.pass("50%1 %2", "%3", "%4");
    s.renderer.setTarget(node);
    s.renderer.setParameter(0, 1);
    EXPECT_EQ(s.node(node), "50%251 %252 runs as 1 of 1: it is the target.\n");
    EXPECT_EQ(s.input(node, 0),
              "50%251 %252.%253 takes its default (0.5), because nothing feeds it.\n");
}

// Inputs

TEST(ExplainInput, AParameterIsToldWithItsValue)
{
    Frame f;
    EXPECT_EQ(f.input(f.shadow, 0), quoted(R"(
//! [parameter]
Shadow.Angle takes the parameter Angle (42 now):
  input Shadow.Angle
  parameter Angle
//! [parameter]
)"));
    f.renderer.setParameter(f.angle, QStringLiteral("two\n\"lines\""));
    EXPECT_EQ(f.input(0, f.angle),
              "Angle is a parameter of the renderer (\"two\\n\\\"lines\\\"\" now).\n");
    f.renderer.setParameter(f.angle, QVariant());
    EXPECT_EQ(f.input(0, f.angle), "Angle is a parameter of the renderer (no value now).\n");
    f.renderer.setParameter(f.angle, 0.9F);
    EXPECT_EQ(f.input(0, f.angle), "Angle is a parameter of the renderer (0.9 now).\n");
    f.renderer.setParameter(f.angle, QByteArray("x"));
    EXPECT_EQ(f.input(0, f.angle),
              "Angle is a parameter of the renderer (a value of the type QByteArray now).\n");
}

TEST(ExplainInput, AValueOfATypeOfTheHostIsToldAsTheDocumentHasIt)
{
    Frame f;
    const auto foreign = [](const QJsonValue& value) {
        return QVariant::fromValue(ForeignValue{QStringLiteral("Color"), value});
    };
    f.renderer.setParameter(f.angle, foreign(QJsonArray{0.5, QStringLiteral("a\nb")}));
    EXPECT_EQ(f.input(0, f.angle),
              "Angle is a parameter of the renderer ([0.5,\"a\\nb\"] of the type Color now).\n");
    f.renderer.setParameter(f.angle, foreign(QString(100, QLatin1Char('x'))));
    EXPECT_EQ(f.input(0, f.angle),
              "Angle is a parameter of the renderer (a value of the type Color now).\n");
}

TEST(ExplainInput, AnUpstreamOutputIsToldWithEveryGroupBoundary)
{
    Frame f;
    EXPECT_EQ(f.input(f.toneMap, 0), quoted(R"(
//! [output]
ToneMap.Color takes the output Bloom/Glow.Color:
  input ToneMap.Color
  output Bloom.Color
  output Bloom/Glow.Color
//! [output]
)"));
    EXPECT_EQ(f.input(f.blur, 0),
              "Bloom/Blur.Color takes the output Shadow.Map:\n"
              "  input Bloom/Blur.Color\n"
              "  input Bloom.Scene\n"
              "  output Shadow.Map\n");
}

TEST(ExplainInput, OfAPassThatDoesNotRunIsToldWhatItWouldTake)
{
    Frame f;
    EXPECT_EQ(f.input(f.debug, 0),
              "Debug.Exposure would take the output LightMeter.Exposure:\n"
              "  input Debug.Exposure\n"
              "  output LightMeter.Exposure\n");
}

TEST(ExplainInput, AnUnfedInputTakesItsDefault)
{
    Frame f;
    EXPECT_EQ(f.input(f.shadow, 1),
              "Shadow.Bias takes its default (0.5), because nothing feeds it.\n");
    EXPECT_EQ(f.input(f.glow, 1), quoted(R"(
//! [unfed]
Bloom/Glow.Mask takes its default (0.5), because nothing feeds the input Bloom.Spare:
  input Bloom/Glow.Mask
  input Bloom.Spare
//! [unfed]
)"));
}

TEST(ExplainInput, TheOutputOfAGroupMayLeadNowhere)
{
    Frame f;
    EXPECT_EQ(f.input(f.toneMap, 1), quoted(R"(
//! [no-pass-behind]
ToneMap.Other takes its default (0.5), because no pass feeds the output Bloom.Spare:
  input ToneMap.Other
  output Bloom.Spare
//! [no-pass-behind]
)"));
}

TEST(ExplainInput, ADisabledPassUpstreamIsTold)
{
    Frame f;
    f.renderer.setEnabled(f.glow, false);
    EXPECT_EQ(f.input(f.toneMap, 0), quoted(R"(
//! [upstream-disabled]
ToneMap.Color takes its default (0.5), because Bloom/Glow, which feeds it, is disabled:
  input ToneMap.Color
  output Bloom.Color
  output Bloom/Glow.Color
//! [upstream-disabled]
)"));
}

TEST(ExplainInput, APassThatIsNullUpstreamIsTold)
{
    Frame f;
    const int null = f.renderer.addPass(QStringLiteral("Null"), nullptr, 0);
    const int output = f.graph.addOutput(null, QStringLiteral("Out"), -1);
    f.graph.addEdge(null, output, f.shadow, 1);
    EXPECT_EQ(f.input(f.shadow, 1),
              "Shadow.Bias takes its default (0.5), because Null, which feeds it, has no pass:\n"
              "  input Shadow.Bias\n"
              "  output Null.Out\n");
}

TEST(ExplainInput, AGroupCarriesWhatItIsFed)
{
    Frame f;
    EXPECT_EQ(f.input(f.bloom, 0),
              "Bloom.Scene carries the output Shadow.Map:\n"
              "  input Bloom.Scene\n"
              "  output Shadow.Map\n");
    EXPECT_EQ(f.input(f.bloom, 1), "Bloom.Spare carries nothing, because nothing feeds it.\n");
}

TEST(ExplainInput, WhatDoesNotExistIsToldSo)
{
    Frame f;
    EXPECT_EQ(f.input(f.toneMap, 2), "ToneMap has no such input.\n");
    EXPECT_EQ(f.input(0, -1), "The renderer has no such input.\n");
    EXPECT_EQ(f.input(-7, 0), "There is no node -7.\n");
}

// Edges

TEST(ExplainEdge, WhatTheGraphTakesIsAccepted)
{
    Frame f;
    EXPECT_EQ(f.edge({f.meter, 0, true}, {f.toneMap, 1, false}),
              "An edge from the output LightMeter.Exposure to the input ToneMap.Other is refused: "
              "ToneMap.Other is already fed by the output Bloom.Spare.\n");
    f.graph.disconnectInput(f.toneMap, 1);
    EXPECT_EQ(f.edge({f.meter, 0, true}, {f.toneMap, 1, false}),
              "An edge from the output LightMeter.Exposure to the input ToneMap.Other is "
              "accepted.\n");
    EXPECT_EQ(f.edge({f.blur, 0, true}, {f.bloom, 1, true}),
              "An edge from the output Bloom/Blur.Color to the output Bloom.Spare is accepted.\n");
    f.graph.disconnectInput(f.glow, 1);
    EXPECT_EQ(f.edge({f.bloom, 0, false}, {f.glow, 1, false}),
              "An edge from the input Bloom.Scene to the input Bloom/Glow.Mask is accepted.\n");
    f.graph.disconnectInput(f.shadow, 0);
    EXPECT_EQ(f.edge({0, f.angle, false}, {f.shadow, 0, false}),
              "An edge from the parameter Angle to the input Shadow.Angle is accepted.\n");
}

TEST(ExplainEdge, AFedPortIsToldWhatFeedsIt)
{
    Frame f;
    EXPECT_EQ(f.edge({f.meter, 0, true}, {0, f.picture, true}), quoted(R"(
//! [already-fed]
An edge from the output LightMeter.Exposure to the output Picture is refused: Picture is already fed by the output ToneMap.Color.
//! [already-fed]
)"));
    EXPECT_EQ(f.edge({f.bloom, 1, false}, {f.blur, 0, false}),
              "An edge from the input Bloom.Spare to the input Bloom/Blur.Color is refused: "
              "Bloom/Blur.Color is already fed by the input Bloom.Scene.\n");
}

TEST(ExplainEdge, AnOutputThatLeavesItsGroupFeedsNoSibling)
{
    Frame f;
    EXPECT_EQ(f.edge({f.toneMap, 0, true}, {f.shadow, 1, false}), quoted(R"(
//! [leaves-group]
An edge from the output ToneMap.Color to the input Shadow.Bias is refused: the oldest edge of ToneMap.Color leads to the output Picture, not to a sibling.
//! [leaves-group]
)"));
}

TEST(ExplainEdge, ACycleIsToldPortByPort)
{
    Frame f;
    EXPECT_EQ(f.edge({f.meter, 0, true}, {f.shadow, 1, false}), quoted(R"(
//! [cycle]
An edge from the output LightMeter.Exposure to the input Shadow.Bias is refused: it would close a cycle:
  output LightMeter.Exposure
  input LightMeter.Color
  output Bloom.Color
  output Bloom/Glow.Color
  input Bloom/Glow.Color
  output Bloom/Blur.Color
  input Bloom/Blur.Color
  input Bloom.Scene
  output Shadow.Map
  input Shadow.Bias
//! [cycle]
)"));
}

TEST(ExplainEdge, APassCannotFeedItself)
{
    Frame f;
    EXPECT_EQ(f.edge({f.shadow, 0, true}, {f.shadow, 1, false}),
              "An edge from the output Shadow.Map to the input Shadow.Bias is refused: it would "
              "close a cycle:\n"
              "  output Shadow.Map\n"
              "  input Shadow.Bias\n");
}

TEST(ExplainEdge, AFedInputIsToldBeforeACycle)
{
    Frame f;
    EXPECT_EQ(f.edge({f.meter, 0, true}, {f.meter, 0, false}),
              "An edge from the output LightMeter.Exposure to the input LightMeter.Color is "
              "refused: LightMeter.Color is already fed by the output Bloom.Color.\n");
}

TEST(ExplainEdge, WhatTheGraphMakesBetweenOthersThanSiblingsGoesAstray)
{
    Frame f;
    const int other = f.pass("Other", "In", "");
    EXPECT_EQ(f.edge({f.blur, 0, true}, {other, 0, false}), quoted(R"(
//! [not-related]
An edge from the output Bloom/Blur.Color to the input Other.In is accepted but does not carry that output: the nodes are not siblings.
//! [not-related]
)"));
}

TEST(ExplainEdge, AnEdgeFromAGroupsOutputIntoTheGroupCarriesAnother)
{
    Frame f;
    f.graph.disconnectInput(f.glow, 1);
    EXPECT_EQ(f.edge({f.bloom, 0, true}, {f.glow, 1, false}),
              "An edge from the output Bloom.Color to the input Bloom/Glow.Mask is accepted but "
              "does not carry that output: the nodes are not siblings.\n");
    ASSERT_GE(f.graph.addEdge(f.bloom, 1, f.glow, 1), 0);
    EXPECT_EQ(
        f.input(f.glow, 1),
        "Bloom/Glow.Mask takes its default (0.5), because nothing feeds the input Bloom.Spare:\n"
        "  input Bloom/Glow.Mask\n"
        "  input Bloom.Spare\n");
}

TEST(ExplainEdge, NoEdgeBypassesABoundary)
{
    Frame f;
    EXPECT_EQ(
        f.edge({f.blur, 0, true}, {0, f.picture, true}),
        "An edge from the output Bloom/Blur.Color to the output Picture is refused: an output "
        "feeds another only from a child to its group.\n");
    EXPECT_EQ(f.edge({f.shadow, 0, true}, {f.bloom, 1, true}),
              "An edge from the output Shadow.Map to the output Bloom.Spare is refused: an output "
              "feeds another only from a child to its group.\n");
    EXPECT_EQ(f.edge({0, f.angle, false}, {f.glow, 1, false}),
              "An edge from the parameter Angle to the input Bloom/Glow.Mask is refused: an input "
              "feeds another only from a group to its child.\n");
    EXPECT_EQ(f.edge({f.bloom, 0, false}, {f.bloom, 1, true}),
              "An edge from the input Bloom.Scene to the output Bloom.Spare is refused: no edge "
              "leads from an input to an output.\n");
}

TEST(ExplainEdge, WhatDoesNotExistIsToldSo)
{
    Frame f;
    EXPECT_EQ(f.edge({f.shadow, 3, true}, {f.toneMap, 1, false}),
              "An edge from the output Shadow.[no output 3] to the input ToneMap.Other is refused: "
              "the output Shadow.[no output 3] does not exist.\n");
    EXPECT_EQ(f.edge({f.shadow, 0, true}, {f.toneMap, 9, false}),
              "An edge from the output Shadow.Map to the input ToneMap.[no input 9] is refused: "
              "the input ToneMap.[no input 9] does not exist.\n");
    f.graph.removeNode(f.shadow);
    EXPECT_EQ(f.edge({f.shadow, 0, true}, {f.toneMap, 1, false}),
              "An edge from the output Shadow[removed 1].Map to the input ToneMap.Other is "
              "refused: Shadow[removed 1] does not exist.\n");
    EXPECT_EQ(f.edge({f.toneMap, 0, true}, {42, 1, false}),
              "An edge from the output ToneMap.Color to the input node 42.[no input 1] is refused: "
              "node 42 does not exist.\n");
}

// JSON

namespace {

std::string json(const QJsonObject& object)
{
    return QJsonDocument(object).toJson(QJsonDocument::Compact).toStdString();
}

} // namespace

TEST(ExplainJson, TellsNodesByTheirPaths)
{
    Frame f;
    f.renderer.setEnabled(f.glow, false);
    f.graph.removeNode(f.blur);
    const Snapshot snapshot = Snapshot::of(f.renderer);
    const Explainer explainer(snapshot);
    const auto node = [&](int ref) { return json(explainer.toJson(explainer.node(ref))); };
    EXPECT_EQ(node(f.toneMap),
              R"({"enabled":true,"node":"ToneMap","of":2,"output":"Picture",)"
              R"("path":[{"output":"Picture"},{"output":"ToneMap.Color"}],"position":1,)"
              R"("state":"scheduled"})");
    EXPECT_EQ(
        node(f.glow),
        R"({"enabled":false,"node":"Bloom/Glow","output":"Picture",)"
        R"("path":[{"output":"Picture"},{"output":"ToneMap.Color"},{"input":"ToneMap.Color"},)"
        R"({"output":"Bloom.Color"},{"output":"Bloom/Glow.Color"}],"state":"disabled"})");
    EXPECT_EQ(node(f.meter),
              R"({"enabled":true,"nearest":"Debug","nearestPath":[{"input":"Debug.Exposure"},)"
              R"({"output":"LightMeter.Exposure"}],"node":"LightMeter","state":"not-needed"})");
    EXPECT_EQ(node(f.blur), R"({"enabled":true,"node":"Bloom/Blur[removed 3]","state":"removed"})");
    EXPECT_EQ(node(99), R"({"node":"","state":"missing"})");
}

TEST(ExplainJson, TellsTheTargetByItsPath)
{
    Frame f;
    f.renderer.setTarget(f.debug);
    const Snapshot snapshot = Snapshot::of(f.renderer);
    const Explainer explainer(snapshot);
    EXPECT_EQ(json(explainer.toJson(explainer.node(f.debug))),
              R"({"enabled":true,"node":"Debug","of":6,"path":[],"position":5,)"
              R"("state":"scheduled","target":"Debug"})");
    EXPECT_EQ(json(explainer.toJson(explainer.node(f.bloom))),
              R"({"node":"Bloom","output":"Picture","path":[{"output":"Picture"},)"
              R"({"output":"ToneMap.Color"},{"input":"ToneMap.Other"},{"output":"Bloom.Spare"}],)"
              R"("state":"group"})");
}

TEST(ExplainJson, TellsInputs)
{
    Frame f;
    const Snapshot snapshot = Snapshot::of(f.renderer);
    const Explainer explainer(snapshot);
    const auto input = [&](int node, int index) {
        return json(explainer.toJson(explainer.input(node, index)));
    };
    EXPECT_EQ(input(f.shadow, 0),
              R"({"end":{"input":"Angle"},"input":"Shadow.Angle",)"
              R"("path":[{"input":"Shadow.Angle"},{"input":"Angle"}],"source":"parameter",)"
              R"("value":42})");
    EXPECT_EQ(input(f.blur, 0),
              R"({"end":{"output":"Shadow.Map"},"input":"Bloom/Blur.Color",)"
              R"("path":[{"input":"Bloom/Blur.Color"},{"input":"Bloom.Scene"},)"
              R"({"output":"Shadow.Map"}],"source":"output"})");
    EXPECT_EQ(input(f.shadow, 1),
              R"({"cause":"unfed","end":{"input":"Shadow.Bias"},"input":"Shadow.Bias",)"
              R"("path":[{"input":"Shadow.Bias"}],"source":"default","value":0.5})");
    EXPECT_EQ(input(f.shadow, 9), R"({"input":"Shadow.[no input 9]","source":"no-such-input"})");
}

TEST(ExplainJson, TellsEdges)
{
    Frame f;
    const Snapshot snapshot = Snapshot::of(f.renderer);
    const Explainer explainer(snapshot);
    const auto edge = [&](const PortRef& from, const PortRef& to) {
        return json(explainer.toJson(explainer.edge(from, to)));
    };
    EXPECT_EQ(edge({f.shadow, 0, true}, {f.shadow, 1, false}),
              R"({"cycle":[{"output":"Shadow.Map"},{"input":"Shadow.Bias"}],)"
              R"("from":{"output":"Shadow.Map"},"made":false,"rule":"cycle",)"
              R"("to":{"input":"Shadow.Bias"}})");
    EXPECT_EQ(edge({f.toneMap, 0, true}, {f.shadow, 1, false}),
              R"({"from":{"output":"ToneMap.Color"},"made":false,"oldest":{"output":"Picture"},)"
              R"("rule":"leaves-group","to":{"input":"Shadow.Bias"}})");
    EXPECT_EQ(edge({f.shadow, 0, true}, {f.debug, 0, false}),
              R"({"fedBy":{"output":"LightMeter.Exposure"},"from":{"output":"Shadow.Map"},)"
              R"("made":false,"rule":"already-fed","to":{"input":"Debug.Exposure"}})");
}

TEST(ExplainText, IsAskedForByRef)
{
    Frame f;
    Renderer& renderer = f.renderer;
    const int node = f.debug;
    //! [ask]
    const Snapshot snapshot = Snapshot::of(renderer);
    const Explainer explainer(snapshot);
    const QString text = explainer.toText(explainer.node(node));
    //! [ask]
    EXPECT_EQ(text.toStdString(), f.node(f.debug));
}

// Whatever the graph

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

TEST(ExplainProperties, InputsTakeWhatIsTold)
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
                const InputExplanation told = explainer.input(node, i);
                const QVariant value = told.source == InputExplanation::Output
                    ? random.pass(told.end.node)->output(told.end.index)
                    : told.value;
                EXPECT_EQ(value, received.at(i)) << node << "." << i;
                EXPECT_EQ(told.path.first(), told.input);
                EXPECT_EQ(told.path.last(), told.end);
                expectConnected(snapshot, told.path);
            }
        }
    });
}

TEST(ExplainProperties, NodesAreNeededAsTold)
{
    forRandomRenderers([](RandomRenderer& random) {
        const Snapshot snapshot = Snapshot::of(random.renderer);
        const Explainer explainer(snapshot);
        const Schedule& schedule = explainer.schedule();
        for (int node = 0; node < snapshot.nodes.size(); ++node) {
            const NodeExplanation told = explainer.node(node);
            EXPECT_EQ(told.state == NodeExplanation::Scheduled, schedule.order.contains(node));
            EXPECT_EQ(told.position, schedule.order.indexOf(node));
            EXPECT_EQ(told.needed, schedule.needed.at(node));
            expectConnected(snapshot, told.path);
            if (!told.needed) {
                EXPECT_TRUE(told.path.isEmpty());
                continue;
            }
            if (!told.path.isEmpty()) {
                EXPECT_EQ(told.path.last().node, node);
                EXPECT_TRUE(told.path.last().isOutput);
            }

            // Without the outputs from the told one on, and without the target, it is not needed.
            Snapshot less = snapshot;
            less.target = -1;
            if (told.output >= 0) {
                EXPECT_EQ(told.path.first(), (PortRef{0, told.output, true}));
                less.numOutputs = told.output + 1;
                EXPECT_TRUE(predictSchedule(less).needed.at(node));
                less.numOutputs = told.output;
            } else {
                EXPECT_EQ(told.path.isEmpty(), node == snapshot.target);
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
            const NodeExplanation told = explainer.node(node);
            EXPECT_EQ(told.state == NodeExplanation::NotNeeded, told.nearest >= 0);
            if (told.nearest < 0 || snapshot.node(told.nearest).removed)
                continue;
            Snapshot wiser = snapshot;
            wiser.target = told.nearest;
            wiser.nodes[node].enabled = true;
            EXPECT_GE(predictSchedule(wiser).positions.at(node), 0) << node;
            EXPECT_EQ(told.nearestPath.isEmpty(), told.nearest == node);
            expectConnected(snapshot, told.nearestPath);
            if (told.nearestPath.isEmpty())
                continue;
            ++numFarther;
            EXPECT_EQ(told.nearestPath.first().node, told.nearest);
            EXPECT_EQ(told.nearestPath.last().node, node);
            // It is an end: whatever else is the target, it is not needed. Odd graphs have edges
            // that only the port that they enter knows of.
            for (int other = 0; random.kind != RandomRenderer::Odd && other < snapshot.nodes.size();
                 ++other) {
                wiser.target = other;
                const bool isNeeded = predictSchedule(wiser).needed.at(told.nearest);
                EXPECT_EQ(isNeeded, other == told.nearest) << other;
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

            const EdgeExplanation told = explainer.edge(from, to);
            ++numOfRule[told.rule];
            int ref = -1;
            if (from.isOutput && !to.isOutput)
                ref = graph.addEdge(from.node, from.index, to.node, to.index);
            else if (from.isOutput && to.isOutput && graph.parentNode(from.node) == to.node)
                ref = graph.addUpEdge(to.index, from.node, from.index);
            else if (!from.isOutput && !to.isOutput && graph.parentNode(to.node) == from.node)
                ref = graph.addDownEdge(from.index, to.node, to.index);
            EXPECT_EQ(told.made, ref >= 0) << shown(from) << " to " << shown(to);
            if (told.rule == EdgeExplanation::Accepted) {
                EXPECT_GE(ref, 0);
                EXPECT_TRUE(graph.isRegularEdge(ref) || graph.isUpEdge(ref)
                            || graph.isDownEdge(ref));
            }
            if (told.rule == EdgeExplanation::Cycle) {
                expectConnected(snapshot, told.cycle);
                EXPECT_EQ(told.cycle.first(), from);
                EXPECT_EQ(told.cycle.last(), to);
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
        const Snapshot snapshot = randomTables(seed);
        const Explainer explainer(snapshot);
        for (int node = -2; node < snapshot.nodes.size() + 2; ++node) {
            const NodeExplanation told = explainer.node(node);
            length += explainer.toText(told).toStdString().size();
            length += json(explainer.toJson(told)).size();
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

namespace {

/// The longest way that there is in the graph, told in full.
template<typename Graph>
void explainDeepest(Graph& graph)
{
    const Explainer explainer(graph.snapshot);
    const NodeExplanation told = explainer.node(graph.deepest);
    ASSERT_EQ(told.state, NodeExplanation::Scheduled);
    ASSERT_FALSE(told.path.isEmpty());
}

/// The same without an output, so that the way is searched downstream.
template<typename Graph>
void explainUnneeded(Graph& graph)
{
    graph.snapshot.numOutputs = 0;
    const Explainer explainer(graph.snapshot);
    const NodeExplanation told = explainer.node(graph.deepest);
    ASSERT_EQ(told.state, NodeExplanation::NotNeeded);
    ASSERT_FALSE(told.nearestPath.isEmpty());
}

void explainCycle(LargeChain& chain)
{
    const int last = chain.snapshot.nodes.size() - 1;
    chain.snapshot.nodes[last].outputs[0].destinations.clear();
    chain.snapshot.nodes[chain.deepest].inputs.resize(1);
    const Explainer explainer(chain.snapshot);
    const EdgeExplanation told = explainer.edge({last, 0, true}, {chain.deepest, 0, false});
    ASSERT_EQ(told.rule, EdgeExplanation::Cycle);
    ASSERT_EQ(told.cycle.size(), 2 * last);
}

} // namespace

TEST(ExplainGrowth, IsLinearInTheLengthOfAChain)
{
    expectLinearUpTo<LargeChain>(20000, &explainDeepest);
}

TEST(ExplainGrowth, IsLinearInTheLengthOfAChainThatNothingNeeds)
{
    expectLinearUpTo<LargeChain>(20000, &explainUnneeded);
}

TEST(ExplainGrowth, IsLinearInTheLengthOfACycle)
{
    expectLinearUpTo<LargeChain>(20000, &explainCycle);
}

TEST(ExplainGrowth, IsLinearInTheWidthOfAFan)
{
    expectLinearUpTo<LargeFan>(20000, &explainUnneeded);
}

TEST(ExplainGrowth, IsLinearInThePortsOfAGroup)
{
    expectLinearUpTo<LargeGroup>(20000, &explainUnneeded);
}

TEST(ExplainGrowth, IsLinearInTheDepthOfGroups)
{
    expectLinearUpTo<LargeNest>(20000, &explainDeepest);
}

TEST(ExplainGrowth, IsLinearInTheDepthOfGroupsThatNothingNeeds)
{
    expectLinearUpTo<LargeNest>(20000, &explainUnneeded);
}
