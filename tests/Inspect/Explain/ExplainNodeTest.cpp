// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Inspect/Explain/ExplainedHost.h"

#include <gtest/gtest.h>

using namespace Kestrin::Orv;
using namespace Kestrin::Orv::Inspect;

TEST(ExplainNode, APassThatRunsIsShownWithThePathFromTheOutput)
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

TEST(ExplainNode, OfSeveralOutputsTheFirstIsNamed)
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

TEST(ExplainNode, TheTargetIsNamedAsTheTarget)
{
    Frame f;
    f.renderer.setTarget(f.debug);
    EXPECT_EQ(f.node(f.debug), "Debug runs as 6 of 6: it is the target.\n");
}

TEST(ExplainNode, APassThatTheTargetNeedsIsShownWithThePathFromItsInput)
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

TEST(ExplainNode, OfATargetThatAnOutputNeedsTheOutputIsNamed)
{
    Frame f;
    f.renderer.setTarget(f.toneMap);
    EXPECT_EQ(f.node(f.toneMap),
              "ToneMap runs as 4 of 4, needed by the renderer's output Picture:\n"
              "  output Picture\n"
              "  output ToneMap.Color\n");
}

TEST(ExplainNode, ADisabledPassIsShownWithThePathToIt)
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

TEST(ExplainNode, ADisabledTargetIsNamedAsBoth)
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

TEST(ExplainNode, OfAPassThatNothingNeedsTheNearestEndDownstreamIsNamed)
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

TEST(ExplainNode, APassThatNothingReadsIsItsOwnNearestEnd)
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

TEST(ExplainNode, ADisabledPassThatNothingNeedsIsExplainedByBoth)
{
    Frame f;
    f.renderer.setEnabled(f.debug, false);
    EXPECT_EQ(f.node(f.debug),
              "Debug does not run: no output of the renderer and no target leads to it, and it is "
              "disabled. Make it the target, and it runs once it is enabled.\n");
}

TEST(ExplainNode, TheNearestEndIsFoundInsideAndOutOfGroups)
{
    ExplainedHost s;
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

TEST(ExplainNode, APathMayEndAtAGroupThatFeedsNothing)
{
    ExplainedHost s;
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

TEST(ExplainNode, OfSeveralEndsTheNearestAndThenTheOldestIsNamed)
{
    ExplainedHost s;
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

TEST(ExplainNode, WhereAllPathsFormACycleThePassItselfIsTheEnd)
{
    // A is fed from a group, and the group from a pass in it that A feeds: a cycle that the graph
    // does not see.
    ExplainedHost s;
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

TEST(ExplainNode, RemovedAndMissingNodesAreNamedAsSuch)
{
    Frame f;
    f.graph.removeNode(f.glow);
    EXPECT_EQ(f.node(f.glow), "Bloom/Glow[removed 4] has been removed.\n");
    EXPECT_EQ(f.node(99), "There is no node 99.\n");
    EXPECT_EQ(f.node(-1), "There is no node -1.\n");
}

TEST(ExplainNode, PercentSignsInNamesAreEscaped)
{
    ExplainedHost s;
    const int node = s.pass("50%1 %2", "%3", "%4");
    s.renderer.setTarget(node);
    s.renderer.setParameter(0, 1);
    EXPECT_EQ(s.node(node), "50%251 %252 runs as 1 of 1: it is the target.\n");
    EXPECT_EQ(s.input(node, 0),
              "50%251 %252.%253 takes its default (0.5), because nothing feeds it.\n");
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
