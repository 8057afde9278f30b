// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include <Kestrin/Orv/Inspect/Lint.h>

#include "Inspect/support/Host.h"
#include "Inspect/support/LargeGraphs.h"

#include <gtest/gtest.h>

#include <QtCore/QFile>
#include <QtCore/QRegularExpression>
#include <QtCore/QSet>

#include <random>

using namespace Kestrin::Orv;
using namespace Kestrin::Orv::Inspect;

namespace {

/// The findings, one a line, as "code: text".
std::string linted(const Snapshot& snapshot)
{
    std::string all;
    const QVector<Finding> findings = lint(snapshot);
    for (const Finding& finding : findings)
        all += finding.code.toStdString() + ": " + finding.text.toStdString() + "\n";
    return all;
}

std::string linted(Host& host)
{
    return linted(host.snapshot());
}

/// The findings of one code.
QVector<Finding> found(const Snapshot& snapshot, const char* code)
{
    QVector<Finding> some;
    const QVector<Finding> findings = lint(snapshot);
    for (const Finding& finding : findings) {
        if (finding.code == QLatin1String(code))
            some.append(finding);
    }
    return some;
}

/// A, which feeds B, which feeds an output: nothing to complain about.
struct Chain : Host
{
    int a = pass("A", "", "x");
    int b = pass("B", "x", "y");
    int edge = link(a, "x", b, "x");
    int picture = output("Picture");
    int last = up("Picture", b, "y");
};

/// A pass P in a group G, whose value leads to readers outside.
struct Grouped : Host
{
    int g = group("G", "", "g");
    int p = pass("P", "", "p", g);
    int inner = up("g", p, "p");
    int reader(const char* name)
    {
        const int node = pass(name, "in", "out");
        link(g, "g", node, "in");
        const int index = output(name);
        graph.addUpEdge(index, node, 0);
        return node;
    }
};

/// A small deferred renderer: shadow map, G-buffer, occlusion and bloom in groups, with one group
/// in another, tone mapping.
struct Deferred : Host
{
    Deferred()
    {
        parameter("Angle");
        parameter("Exposure");
        parameter("Orv_bool_staggeredFirstFrame", false);
        output("Picture");
        output("Debug");
        const int cameras = pass("Cameras", "Angle", "View Projection LightMatrix");
        const int shadow = pass("ShadowMap", "LightMatrix", "ShadowDepth");
        const int gBuffer = pass("GBuffer", "View Projection", "Albedo Normal Depth");
        const int occlusion = group("AmbientOcclusion", "Normal Depth Projection", "Occlusion");
        const int raw = pass("Occlusion", "Normal Depth Projection", "RawOcclusion", occlusion);
        const int blur = pass("Blur", "RawOcclusion Depth Projection", "Occlusion", occlusion);
        const int lighting =
            pass("Lighting", "Albedo Normal Depth Occlusion ShadowDepth View", "Color Terms");
        const int bloom = group("Bloom", "Color", "Bloom");
        const int threshold = pass("Threshold", "Color", "Bright", bloom);
        const int pyramid = group("Pyramid", "Color", "Color", bloom);
        const int half = pass("Half", "Color", "Color", pyramid);
        const int full = pass("Full", "Color", "Color", pyramid);
        const int glow = pass("Glow", "Color", "Bloom", bloom);
        const int toneMap = pass("ToneMap", "Color Bloom Exposure", "Picture");
        const int debug = pass("DebugView", "Terms Depth", "Debug");

        graph.connectByName(raw, blur);
        graph.connectByName(half, full);
        graph.connectDownByName(half);
        graph.connectUpByName(full);
        link(threshold, "Bright", pyramid, "Color");
        graph.connectByName(pyramid, glow);
        graph.connectDownByName(threshold);
        graph.connectUpByName(glow);
        graph.connectDownByName(raw);
        graph.connectDownByName(blur);
        graph.connectUpByName(blur);
        for (const int node : {shadow, gBuffer, occlusion, lighting})
            graph.connectByName(cameras, node);
        graph.connectByName(gBuffer, occlusion);
        for (const int node : {shadow, gBuffer, occlusion})
            graph.connectByName(node, lighting);
        graph.connectByName(lighting, bloom);
        graph.connectByName(lighting, toneMap);
        graph.connectByName(bloom, toneMap);
        graph.connectByName(lighting, debug);
        graph.connectByName(gBuffer, debug);
        for (int i = 0; i < graph.numNodes(0); ++i)
            graph.connectDownByName(graph.getNode(i, 0));
        graph.connectUpByName(toneMap);
        graph.connectUpByName(debug);
    }
};

} // namespace

TEST(Lint, AnEmptyRendererIsSilent)
{
    EXPECT_EQ(linted(Snapshot()), "");
}

TEST(Lint, AChainThatFeedsAnOutputIsSilent)
{
    Chain host;
    EXPECT_EQ(linted(host), "");
}

TEST(Lint, AWholeDeferredRendererIsSilent)
{
    Deferred host;
    EXPECT_EQ(linted(host), "");
}

TEST(Lint, FindingsComeInTheOrderOfNodesThenPorts)
{
    Host host;
    host.pass("B", "in", "out", 0, QVariant());
    host.pass("A", "in", "", 0, QVariant());
    host.output("Picture");
    std::string codes;
    const QVector<Finding> findings = lint(host.snapshot());
    for (const Finding& finding : findings)
        codes += std::to_string(finding.node) + finding.code.toStdString() + " ";
    EXPECT_EQ(codes,
              "0dead-output 1unneeded-pass 1invalid-default 2unneeded-pass 2invalid-default ");
}

TEST(Lint, NamesWithPercentSignsAreShownAsTheyAre)
{
    Host host;
    host.pass("%1", "", "");
    host.pass("%2", "", "");
    EXPECT_EQ(found(host.snapshot(), "unneeded-pass").at(1).text.toStdString().substr(0, 9),
              "%252 neve");
}

// Defaults

TEST(LintDefaults, AnUnfedInputWithAnInvalidDefaultIsReported)
{
    Chain host;
    const int c = host.pass("C", "x", "", 0, QVariant());
    host.renderer.setTarget(c);
    EXPECT_EQ(
        linted(host),
        "invalid-default: C.x takes its default value, which is invalid: nothing feeds it.\n");
    const Finding finding = lint(host.snapshot()).first();
    EXPECT_EQ(finding.node, c);
    EXPECT_EQ(finding.port, (PortRef{c, 0, false}));
    EXPECT_EQ(finding.edge, -1);
}

TEST(LintDefaults, AValidDefaultIsFine)
{
    Chain host;
    host.renderer.setTarget(host.pass("C", "x", "", 0, 0));
    EXPECT_EQ(linted(host), "");
}

TEST(LintDefaults, AParameterStandsInForTheDefault)
{
    Chain host;
    host.parameter("x", QVariant());
    const int c = host.pass("C", "x", "", 0, QVariant());
    host.down("x", c, "x");
    host.renderer.setTarget(c);
    EXPECT_EQ(linted(host), "");
}

TEST(LintDefaults, ADisabledProducerLeavesTheDefault)
{
    Chain host;
    const int c = host.pass("C", "x", "", 0, QVariant());
    host.link(host.a, "x", c, "x");
    host.renderer.setTarget(c);
    EXPECT_EQ(linted(host), "");
    host.renderer.setEnabled(host.a, false);
    EXPECT_EQ(linted(host),
              "invalid-default: C.x takes its default value, which is invalid: it reads A.x, whose "
              "pass is disabled.\n");
}

TEST(LintDefaults, ADisabledPassTakesNothing)
{
    Chain host;
    host.renderer.setEnabled(host.pass("C", "x", "", 0, QVariant()), false);
    EXPECT_EQ(linted(host), "");
}

TEST(LintDefaults, TheInputThatTheWayOutOfTheGroupsEndsAtIsNamed)
{
    Chain host;
    const int g = host.group("G", "in", "");
    const int c = host.pass("C", "x", "", g, QVariant());
    host.down("in", c, "x");
    host.renderer.setTarget(c);
    EXPECT_EQ(linted(host),
              "unfed-group-input: Nothing feeds G.in, which is read inside the group.\n"
              "invalid-default: G/C.x takes its default value, which is invalid: nothing feeds "
              "G.in.\n");
}

TEST(LintDefaults, AGroupOutputWithoutAPassLeavesTheDefault)
{
    Chain host;
    const int g = host.group("G", "", "out");
    host.renderer.setTarget(host.pass("P", "", "", g));
    const int c = host.pass("C", "x", "z", 0, QVariant());
    host.link(g, "out", c, "x");
    host.output("Other");
    host.up("Other", c, "z");
    EXPECT_EQ(linted(host),
              "unfed-group-output: Nothing inside the group feeds G.out, which is read outside.\n"
              "invalid-default: C.x takes its default value, which is invalid: it reads G.out, "
              "which no pass feeds.\n");
}

// What is read and what is needed

TEST(LintOutputs, AnOutputThatNobodyReadsIsReported)
{
    Host host;
    const int a = host.pass("A", "", "x y");
    host.output("Picture");
    host.up("Picture", a, "x");
    EXPECT_EQ(linted(host), "unread-output: Nobody reads A.y.\n");
    EXPECT_EQ(lint(host.snapshot()).first().port, (PortRef{a, 1, true}));
}

TEST(LintOutputs, AnOutputThatEndsInAGroupIsReportedOnce)
{
    Grouped host;
    host.reader("R");
    const int h = host.group("H", "in", "");
    host.pass("Q", "", "", h);
    host.renderer.setTarget(host.graph.findNode(QStringLiteral("Q"), h));
    const int a = host.pass("A", "", "x y");
    host.output("Other");
    host.graph.addUpEdge(1, a, 0);
    host.link(a, "y", h, "in");
    EXPECT_EQ(linted(host),
              "unread-output: Nobody reads A.y: H.in, which it feeds, leads to no pass.\n");
}

TEST(LintOutputs, AFedGroupInputThatNothingInsideReadsIsReported)
{
    Chain host;
    const int g = host.group("G", "in", "");
    host.renderer.setTarget(host.pass("P", "", "", g));
    host.link(host.a, "x", g, "in");
    EXPECT_EQ(linted(host), "unread-group-input: Nothing inside the group reads G.in.\n");
}

TEST(LintOutputs, AGroupOutputThatNobodyReadsIsReportedWhereThePassIsReadOtherwise)
{
    Chain host;
    const int g = host.group("G", "", "g");
    const int p = host.pass("P", "", "p", g);
    const int q = host.pass("Q", "p", "", g);
    host.link(p, "p", q, "p");
    host.up("g", p, "p");
    host.renderer.setTarget(q);
    EXPECT_EQ(linted(host), "unread-output: Nobody reads G.g.\n");
}

TEST(LintOutputs, TheOutputsOfTheTargetAreTheHostsToRead)
{
    Host host;
    const int a = host.pass("A", "", "x");
    host.renderer.setTarget(a);
    EXPECT_EQ(linted(host), "");
}

TEST(LintOutputs, AReaderThatIsDisabledStillReads)
{
    Chain host;
    host.renderer.setEnabled(host.b, false);
    EXPECT_EQ(linted(host), "");
}

TEST(LintOutputs, AnOutputOfTheRendererThatNothingFeedsIsReported)
{
    Chain host;
    const int index = host.output("Debug");
    EXPECT_EQ(linted(host), "dead-output: No pass feeds the output Debug.\n");
    EXPECT_EQ(lint(host.snapshot()).first().port, (PortRef{0, index, true}));
}

TEST(LintOutputs, AnOutputOfTheRendererThatLeadsIntoAnEmptyEndIsReported)
{
    Chain host;
    const int g = host.group("G", "", "out");
    host.renderer.setTarget(host.pass("P", "", "", g));
    host.output("Debug");
    host.up("Debug", g, "out");
    EXPECT_EQ(linted(host),
              "dead-output: No pass feeds the output Debug: it reads G.out, which nothing feeds.\n"
              "unfed-group-output: Nothing inside the group feeds G.out, which is read outside.\n");
}

TEST(LintOutputs, AnOutputOfADisabledPassIsNotDead)
{
    Chain host;
    host.renderer.setEnabled(host.b, false);
    EXPECT_TRUE(found(host.snapshot(), "dead-output").isEmpty());
}

TEST(LintPasses, APassThatNothingNeedsIsReported)
{
    Chain host;
    const int c = host.pass("C", "x", "z");
    host.link(host.a, "x", c, "x");
    EXPECT_EQ(linted(host),
              "unneeded-pass: C never runs: neither an output of the renderer nor the target needs "
              "it.\n");
    EXPECT_EQ(lint(host.snapshot()).first().node, c);
    host.renderer.setEnabled(c, false);
    EXPECT_EQ(linted(host), "");
}

TEST(LintPasses, ATargetThatIsAGroupDoesNotAskForWhatLiesInside)
{
    Chain host;
    const int g = host.group("G", "", "");
    host.pass("P", "", "", g);
    host.renderer.setTarget(g);
    EXPECT_EQ(linted(host),
              "unneeded-pass: G/P never runs: a target that is a group asks for what feeds the "
              "group, not for what lies inside it.\n");
}

TEST(LintPasses, TwoNodesWithOnePassAreReported)
{
    Chain host;
    host.graph.setNodeValue(host.b, host.graph.nodeValue(host.a));
    EXPECT_EQ(linted(host),
              "shared-pass: B has the same pass as A, which therefore takes the inputs of both.\n");
}

TEST(LintGroups, AGroupWithoutPassesIsReportedOnce)
{
    Chain host;
    const int g = host.group("G", "", "");
    host.group("H", "", "", g);
    EXPECT_EQ(linted(host), "empty-group: G holds no pass.\n");
}

TEST(LintParameters, AParameterThatNoPassReadsIsReported)
{
    Chain host;
    const int angle = host.parameter("Angle");
    EXPECT_EQ(linted(host), "unread-parameter: No pass reads the parameter Angle.\n");
    EXPECT_EQ(lint(host.snapshot()).first().port, (PortRef{0, angle, false}));
}

TEST(LintParameters, TheStaggeredFirstFrameIsReadByTheRenderer)
{
    Chain host;
    host.parameter("Orv_bool_staggeredFirstFrame", true);
    EXPECT_EQ(linted(host), "");
}

TEST(LintParameters, PortsOfTheRootThatTheRendererDoesNotKnowAreReported)
{
    Chain host;
    host.graph.addInput(0, QStringLiteral("In"), -1);
    host.graph.addOutput(0, QStringLiteral("Out"), -1);
    EXPECT_EQ(linted(host),
              "unregistered-port: In is an input of the root but no parameter of the renderer: its "
              "readers take an invalid value.\n"
              "unregistered-port: Out is an output of the root but none of the renderer: it is "
              "never filled.\n");
}

TEST(LintParameters, PortsThatTheRootHasLostAreReported)
{
    Host host;
    host.parameter("Angle");
    host.output("Picture");
    host.graph.removeInput(0, 0);
    host.graph.removeOutput(0, 0);
    EXPECT_EQ(linted(host),
              "unregistered-port: The renderer has 1 parameters but the root has 0 inputs.\n"
              "unregistered-port: The renderer has 1 outputs but the root has 0.\n");
}

TEST(LintTarget, ATargetThatHasBeenRemovedIsReported)
{
    Chain host;
    const int c = host.pass("C", "", "");
    host.renderer.setTarget(c);
    host.graph.removeNode(c);
    EXPECT_EQ(linted(host), "stale-target: The target, node 3, has been removed.\n");
    host.renderer.setTarget(99);
    EXPECT_EQ(linted(host), "stale-target: The target, node 99, does not exist.\n");
}

// Names

TEST(LintNames, SiblingsOfOneNameAreReported)
{
    Chain host;
    const int first = host.pass("C", "", "");
    const int second = host.pass("C", "", "");
    host.renderer.setEnabled(first, false);
    host.renderer.setEnabled(second, false);
    EXPECT_EQ(linted(host),
              "duplicate-name: C[1] has the name of an older sibling, C[0], which is the only one "
              "that look-ups by name find.\n");
    EXPECT_EQ(lint(host.snapshot()).first().node, second);
}

TEST(LintNames, EqualNamesInDifferentGroupsAreFine)
{
    Chain host;
    const int g = host.group("G", "", "");
    host.renderer.setEnabled(host.pass("A", "", "", g), false);
    EXPECT_EQ(linted(host), "");
}

TEST(LintNames, PortsOfOneNameAreReportedButNotUnnamedOnes)
{
    Chain host;
    host.renderer.setTarget(host.pass("C", "in in", "out out in"));
    EXPECT_EQ(
        linted(host),
        "duplicate-port: C.in[1] has the name of C.in[0], which is the only one that look-ups "
        "by name find.\n"
        "duplicate-port: C.out[1] has the name of C.out[0], which is the only one that "
        "look-ups by name find.\n");
    host.graph.setInputName(host.renderer.getTarget(), 0, QString());
    host.graph.setInputName(host.renderer.getTarget(), 1, QString());
    EXPECT_EQ(found(host.snapshot(), "duplicate-port").size(), 1);
}

// Cycles

TEST(LintCycles, ACircleThroughAGroupIsNamed)
{
    Host host;
    const int g = host.group("G", "in", "out");
    const int p = host.pass("P", "in", "out", g);
    const int a = host.pass("A", "in", "out");
    host.output("Picture");
    host.up("Picture", a, "out");
    host.down("in", p, "in");
    host.up("out", p, "out");
    host.link(g, "out", a, "in");
    EXPECT_EQ(linted(host),
              "unfed-group-input: Nothing feeds G.in, which is read inside the group.\n");
    // The oldest edge that leaves A is an up edge, so that it cannot feed a sibling any more.
    const int b = host.pass("B", "in", "out");
    host.link(g, "out", b, "in");
    host.link(b, "out", g, "in");
    EXPECT_EQ(found(host.snapshot(), "cycle-through-group").size(), 1);
    const Finding finding = found(host.snapshot(), "cycle-through-group").first();
    EXPECT_EQ(finding.text.toStdString(), "Values run in a cycle: G/P -> B -> G/P.");
    EXPECT_EQ(finding.node, p);
    EXPECT_EQ(finding.port, (PortRef{p, 0, false}));
    EXPECT_EQ(finding.edge, host.graph.inputSource(p, 0));
}

TEST(LintCycles, APassThatFeedsItselfThroughItsGroupIsACircle)
{
    Host host;
    const int g = host.group("G", "in", "out");
    const int p = host.pass("P", "in", "out", g);
    host.down("in", p, "in");
    host.up("out", p, "out");
    Snapshot snapshot = host.snapshot();
    snapshot.nodes[g].inputs[0].source = snapshot.edges.size();
    snapshot.nodes[g].outputs[0].destinations.append(snapshot.edges.size());
    snapshot.edges.append({g, 0, g, 0, false});
    EXPECT_EQ(found(snapshot, "cycle-through-group").first().text.toStdString(),
              "Values run in a cycle: G/P -> G/P.");
}

TEST(LintCycles, OfSeveralCirclesThroughANodeTheShortestIsTold)
{
    // P and Q lie in the group; outside, P is fed through A and B, or by A at once.
    Host host;
    const int g = host.group("G", "long short", "out");
    const int p = host.pass("P", "long short", "out", g);
    const int a = host.pass("A", "in", "out");
    const int b = host.pass("B", "in", "out");
    host.graph.connectDownByName(p);
    host.up("out", p, "out");
    host.link(g, "out", a, "in");
    host.link(a, "out", b, "in");
    host.link(b, "out", g, "long");
    host.link(a, "out", g, "short");
    const QVector<Finding> findings = found(host.snapshot(), "cycle-through-group");
    ASSERT_EQ(findings.size(), 1);
    EXPECT_EQ(findings.first().text.toStdString(), "Values run in a cycle: G/P -> A -> G/P.");
    EXPECT_EQ(findings.first().port, (PortRef{p, 1, false}));
}

TEST(LintCycles, EachCircleIsToldOnceAndLongOnesInShort)
{
    Host host;
    for (const int length : {1, 40}) {
        const int g = host.group("G", "in", "out");
        const int p = host.pass("P", "in", "out", g);
        host.down("in", p, "in");
        host.up("out", p, "out");
        int last = g;
        for (int i = 0; i < length; ++i) {
            const int next = host.pass("A", "in", "out");
            host.link(last, "out", next, "in");
            last = next;
        }
        host.link(last, "out", g, "in");
    }
    const QVector<Finding> findings = found(host.snapshot(), "cycle-through-group");
    ASSERT_EQ(findings.size(), 2);
    EXPECT_EQ(findings.at(0).text.count(QLatin1String(" -> ")), 2);
    EXPECT_EQ(findings.at(1).text.count(QLatin1String(" -> ")), 17);
    EXPECT_TRUE(findings.at(1).text.endsWith(QLatin1String("A[15] -> 25 more -> G[1]/P.")))
        << findings.at(1).text.toStdString();
}

// User counts

TEST(LintUserCounts, ReadersBeyondTheEdgesOfThePassGoUncounted)
{
    Grouped host;
    host.reader("R");
    EXPECT_EQ(linted(host), "");
    host.reader("S");
    EXPECT_EQ(linted(host),
              "uncounted-users: G/P.p has 2 users, of whom the renderer counts 1; not counted: "
              "S.in.\n");
    EXPECT_EQ(lint(host.snapshot()).first().port, (PortRef{host.p, 0, true}));
}

TEST(LintUserCounts, ManyUncountedReadersAreNamedInShort)
{
    Grouped host;
    for (const char* name : {"R", "S", "T", "U", "V", "W"})
        host.reader(name);
    EXPECT_EQ(linted(host),
              "uncounted-users: G/P.p has 6 users, of whom the renderer counts 1; not counted: "
              "S.in, T.in, U.in, 2 more.\n");
}

TEST(LintUserCounts, AReaderTwoGroupsAwayGoesUncounted)
{
    // Out of two groups.
    Host outer;
    const int o = outer.group("O", "", "o");
    const int g = outer.group("G", "", "g", o);
    const int p = outer.pass("P", "", "p", g);
    const int r = outer.pass("R", "in", "out");
    outer.output("Picture");
    outer.up("g", p, "p");
    outer.up("o", g, "g");
    outer.link(o, "o", r, "in");
    outer.up("Picture", r, "out");
    EXPECT_EQ(linted(outer),
              "uncounted-users: O/G/P.p has 1 user, of whom the renderer counts 0; not counted: "
              "R.in.\n");

    // Into two groups.
    Host inner;
    const int a = inner.pass("A", "", "a");
    const int i = inner.group("I", "in", "");
    const int j = inner.group("J", "in", "", i);
    const int q = inner.pass("Q", "in", "", j);
    inner.link(a, "a", i, "in");
    inner.down("in", j, "in");
    inner.down("in", q, "in");
    inner.renderer.setTarget(q);
    EXPECT_EQ(linted(inner),
              "uncounted-users: A.a has 1 user, of whom the renderer counts 0; not counted: "
              "I/J/Q.in.\n");
}

TEST(LintUserCounts, AReaderInAnotherGroupGoesUncounted)
{
    Grouped host;
    const int h = host.group("H", "in", "");
    const int q = host.pass("Q", "in", "", h);
    host.link(host.g, "g", h, "in");
    host.down("in", q, "in");
    host.renderer.setTarget(q);
    EXPECT_EQ(linted(host),
              "uncounted-users: G/P.p has 1 user, of whom the renderer counts 0; not counted: "
              "H/Q.in.\n");
}

TEST(LintUserCounts, AnOutputOfTheRendererIsAUserToo)
{
    Grouped host;
    host.reader("R");
    const int index = host.output("Raw");
    host.graph.addUpEdge(index, host.g, 0);
    EXPECT_EQ(linted(host),
              "uncounted-users: G/P.p has 2 users, of whom the renderer counts 1; not counted: "
              "Raw.\n");
}

TEST(LintUserCounts, AGroupOutputWithFewerReadersThanThePassHasEdgesIsReported)
{
    Grouped host;
    host.reader("R");
    const int q = host.pass("Q", "in", "", host.g);
    EXPECT_EQ(host.link(host.p, "p", q, "in"), -1); // the up edge came first
    host.graph.removeEdge(host.inner);
    host.link(host.p, "p", q, "in");
    host.inner = host.up("g", host.p, "p");
    host.renderer.setTarget(q);
    EXPECT_EQ(linted(host),
              "fewer-readers: G.g has 1 reader, fewer than the 2 edges that leave G/P.p, which "
              "feeds it.\n");
    EXPECT_EQ(lint(host.snapshot()).first().port, (PortRef{host.g, 0, true}));
    EXPECT_EQ(lint(host.snapshot()).first().edge, host.inner);
    host.reader("S");
    EXPECT_EQ(linted(host), "");
}

// Leftovers of editing

TEST(LintEditing, AnEdgeBehindARemovedInputIsReported)
{
    Host host;
    const int a = host.pass("A", "", "x");
    const int b = host.group("B", "p q", "");
    const int c = host.pass("C", "in", "", b);
    host.link(a, "x", b, "q");
    host.down("q", c, "in");
    host.renderer.setTarget(c);
    EXPECT_EQ(linted(host), "");
    host.graph.removeInput(b, 0);
    const QVector<Finding> findings = found(host.snapshot(), "stale-index");
    ASSERT_EQ(findings.size(), 2);
    EXPECT_EQ(findings.at(0).text.toStdString(),
              "Edge 0 enters input 1 of B, which does not exist, but is connected to B.q.");
    EXPECT_EQ(findings.at(0).edge, 0);
    EXPECT_EQ(findings.at(0).node, b);
    EXPECT_EQ(findings.at(1).text.toStdString(),
              "Edge 1 leaves input 1 of B, which does not exist, but is connected to B.q.");
}

TEST(LintEditing, AnEdgeAtARemovedOutputIsReported)
{
    Host host;
    const int a = host.group("A", "", "x y");
    const int b = host.pass("B", "in", "");
    host.link(a, "x", b, "in");
    host.graph.removeOutput(a, 0);
    const QVector<Finding> findings = found(host.snapshot(), "stale-index");
    ASSERT_EQ(findings.size(), 1);
    EXPECT_EQ(findings.first().text.toStdString(),
              "Edge 0 leaves output 0 of A, now A.y, but no port of the node has it.");
}

TEST(LintEditing, AnEdgeBetweenUnrelatedNodesIsReportedAndSoIsWhatItLeaves)
{
    Chain host;
    const int g = host.group("G", "", "");
    const int c = host.pass("C", "in", "", g);
    host.renderer.setTarget(c);
    const int edge = host.link(host.a, "x", c, "in");
    EXPECT_EQ(linted(host),
              "unrelated-edge: A.x -> G/C.in carries nothing: its ends are neither siblings nor "
              "parent and child.\n");
    EXPECT_EQ(lint(host.snapshot()).first().edge, edge);
    host.graph.removeEdge(edge);
    EXPECT_EQ(linted(host),
              "stuck-port: G/C.in is taken by an edge that has been removed, so that nothing can "
              "feed it.\n");
}

TEST(LintEditing, ARemovedChildThatIsStillListedIsReported)
{
    Chain host;
    const int c = host.pass("C", "", "");
    host.graph.removeChildNode(c);
    EXPECT_EQ(linted(host),
              "removed-but-listed: C[removed 3] has been removed but is still a child of the "
              "root.\n");
    EXPECT_EQ(lint(host.snapshot()).first().node, c);
    host.graph.removeNode(c);
    EXPECT_EQ(linted(host), "");
}

TEST(LintEditing, APurgeLeavesTheHierarchyOutOfStep)
{
    Chain host;
    EXPECT_EQ(linted(host), "");
    host.graph.purge();
    EXPECT_EQ(linted(host),
              "hierarchy-out-of-step: The root lists a child that has another parent, the root.\n"
              "hierarchy-out-of-step: B[unlisted 2] is not among the children of its parent, the "
              "root.\n");
}

TEST(LintEditing, EveryWayToBeOutOfStepIsTold)
{
    Host host;
    for (const char* name : {"A", "B", "C", "D", "E", "F"})
        host.group(name, "", "");
    Snapshot snapshot = host.snapshot();
    snapshot.nodes[0].children = {1, 1, 2, 9};
    snapshot.nodes[3].parent = 3;
    snapshot.nodes[4].parent = 77;
    snapshot.nodes[2].children = {1};
    snapshot.nodes[6].parent = 5;
    snapshot.nodes[5].removed = true;
    std::string texts;
    for (const Finding& finding : found(snapshot, "hierarchy-out-of-step"))
        texts += finding.text.toStdString() + "\n";
    EXPECT_EQ(texts,
              "The root lists a child twice, A.\n"
              "The root lists a child that does not exist, node 9.\n"
              "B lists a child that has another parent, A.\n"
              "[cycle]/C[unlisted 3] has parents that form a cycle.\n"
              "D[unlisted 4] has no parent: node 77 does not exist.\n"
              "E[removed 5]/F[unlisted 6] has a parent that has been removed, E[removed 5].\n");
}

// Against the renderer itself

namespace {

using Random = std::mt19937;

int below(Random& random, int limit)
{
    return static_cast<int>(random() % static_cast<unsigned>(limit));
}

/// Passes and groups at random, wired at random.
struct RandomHost : Host
{
    Random random;
    QVector<int> passes;

    explicit RandomHost(unsigned seed)
        : random(seed)
    {
        QVector<int> groups{0};
        for (int i = 0; i < 2; ++i) {
            parameter("p");
            output("o");
        }
        const char* const names[] = {"", "a", "a b", "a b c"};
        const int count = 3 + below(random, 12);
        for (int i = 0; i < count; ++i) {
            const int parent = groups.at(below(random, groups.size()));
            const char* inputs = names[below(random, 4)];
            const char* outputs = names[below(random, 4)];
            if (below(random, 3) == 0)
                groups.append(group("G", inputs, outputs, parent));
            else
                passes.append(pass("P", inputs, outputs, parent, QVariant()));
        }
        const int numNodes = graph.numNodesGlobal();
        for (int i = 0; i < 12 * count; ++i) {
            const int a = below(random, numNodes);
            const int b = below(random, numNodes);
            switch (below(random, 4)) {
            case 0:
                graph.addDownEdge(below(random, 3), b, below(random, 3));
                break;
            case 1:
                graph.addUpEdge(below(random, 3), b, below(random, 3));
                break;
            default:
                if (graph.parentNode(a) == graph.parentNode(b) || below(random, 40) == 0)
                    graph.addEdge(a, below(random, 3), b, below(random, 3));
            }
        }
        for (const int node : qAsConst(passes)) {
            if (below(random, 8) == 0)
                renderer.setEnabled(node, false);
        }
        if (below(random, 3) == 0)
            renderer.setTarget(below(random, numNodes));
    }

    /// Leaves the graph in a state that editing may lead to.
    void edit()
    {
        for (int i = below(random, 4); i > 0; --i) {
            const int node = 1 + below(random, graph.numNodesGlobal());
            switch (below(random, 6)) {
            case 0:
                graph.removeNode(node);
                break;
            case 1:
                graph.removeChildNode(node);
                break;
            case 2:
                graph.removeInput(node, 0);
                break;
            case 3:
                graph.removeOutput(node, 0);
                break;
            case 4:
                graph.purge();
                break;
            default:
                graph.removeEdge(below(random, 20));
            }
        }
    }

    bool hasCircularParents() const
    {
        for (int node = 0; node < graph.numNodesGlobal(); ++node) {
            int parent = node;
            int steps = graph.numNodesGlobal() + 1;
            while (parent >= 0 && steps-- > 0)
                parent = graph.parentNode(parent);
            if (parent >= 0)
                return true;
        }
        return false;
    }
};

QSet<QString> places(const Snapshot& snapshot, const char* code)
{
    QSet<QString> all;
    for (const Finding& finding : found(snapshot, code))
        all.insert(QString::number(finding.node) + QLatin1Char('.')
                   + QString::number(finding.port.index));
    return all;
}

QString place(int node, int index)
{
    return QString::number(node) + QLatin1Char('.') + QString::number(index);
}

void compareWithRenderer(RandomHost& host)
{
    Graph& graph = host.graph;
    Renderer& renderer = host.renderer;
    const Snapshot snapshot = host.snapshot();
    for (int node = 0; node < graph.numNodesGlobal(); ++node) {
        if (IdlePass* pass = host.idlePass(node))
            pass->isSetUp = false;
    }
    renderer.setup(nullptr);

    QSet<QString> unneeded;
    QSet<QString> invalid;
    QSet<QString> dead;
    QHash<QString, int> users;
    for (int index = 0; index < renderer.numOutputs(); ++index) {
        int node = 0;
        int port = index;
        if (graph.walkDown(node, port) && renderer.renderPass(node))
            ++users[place(node, port)];
        else if (index < graph.numOutputs(0) && graph.isValidNode(0))
            dead.insert(place(0, index));
    }
    for (int node = 1; node < graph.numNodesGlobal(); ++node) {
        if (!graph.isValidNode(node) || !renderer.renderPass(node) || !renderer.enabled(node))
            continue;
        if (!host.idlePass(node)->isSetUp)
            unneeded.insert(place(node, -1));
        for (int i = 0; i < graph.numInputs(node); ++i) {
            int source = node;
            int port = i;
            const bool up = graph.walkUp(source, port);
            if (up && source == 0)
                continue;
            if (graph.walkAcross(source, port)) {
                graph.walkDown(source, port);
                if (renderer.renderPass(source) && renderer.enabled(source)) {
                    if (host.idlePass(node)->isSetUp)
                        ++users[place(source, port)];
                    continue;
                }
            }
            invalid.insert(place(node, i));
        }
    }
    QSet<QString> uncounted;
    for (int node = 1; node < graph.numNodesGlobal(); ++node) {
        const IdlePass* pass = host.idlePass(node);
        if (!pass || !renderer.enabled(node) || !pass->isSetUp)
            continue;
        for (int i = 0; i < graph.numOutputs(node); ++i) {
            if (pass->users(i) < users.value(place(node, i)))
                uncounted.insert(place(node, i));
        }
    }
    EXPECT_EQ(places(snapshot, "unneeded-pass"), unneeded);
    EXPECT_EQ(places(snapshot, "invalid-default"), invalid);
    EXPECT_EQ(places(snapshot, "dead-output"), dead);
    EXPECT_EQ(places(snapshot, "uncounted-users"), uncounted);

    // Cycles: nodes that are upstream of themselves, one finding for those upstream of each other.
    const int numNodes = graph.numNodesGlobal();
    QVector<QVector<bool>> upstream(numNodes, QVector<bool>(numNodes, false));
    for (int node = 0; node < numNodes; ++node) {
        for (int i = 0; i < graph.numInputs(node); ++i) {
            int source = node;
            int port = i;
            if (graph.walkToSourceNode(source, port) && source >= 0)
                upstream[node][source] = true;
        }
    }
    for (int k = 0; k < numNodes; ++k) {
        for (int i = 0; i < numNodes; ++i) {
            for (int j = 0; j < numNodes; ++j)
                upstream[i][j] = upstream[i][j] || (upstream[i][k] && upstream[k][j]);
        }
    }
    QSet<int> cycles;
    for (int node = 1; node < numNodes; ++node) {
        int first = node;
        bool hasPass = false;
        for (int other = numNodes - 1; other > 0; --other) {
            if (upstream[node][other] && upstream[other][node]) {
                first = qMin(first, other);
                hasPass = hasPass || renderer.renderPass(other);
            }
        }
        if (upstream[node][node] && hasPass)
            cycles.insert(first);
    }
    QSet<int> told;
    for (const Finding& finding : found(snapshot, "cycle-through-group"))
        told.insert(finding.node);
    EXPECT_EQ(told, cycles);
}

} // namespace

TEST(LintAgainstTheRenderer, RandomGraphsAgree)
{
    for (unsigned seed = 0; seed < 1500; ++seed) {
        RandomHost host(seed);
        compareWithRenderer(host);
        if (::testing::Test::HasFailure())
            FAIL() << "seed " << seed;
    }
}

TEST(LintAgainstTheRenderer, EditedGraphsAgree)
{
    int numCompared = 0;
    for (unsigned seed = 0; seed < 1500; ++seed) {
        RandomHost host(seed);
        host.edit();
        if (host.hasCircularParents()) {
            lint(host.snapshot()); // ends, whatever it says
            continue;
        }
        ++numCompared;
        compareWithRenderer(host);
        if (::testing::Test::HasFailure())
            FAIL() << "seed " << seed;
    }
    EXPECT_GT(numCompared, 500);
}

TEST(LintOddSnapshots, WhateverTheFieldsHoldNothingIsReadOutside)
{
    for (unsigned seed = 0; seed < 3000; ++seed) {
        Random random(seed);
        const auto any = [&random] { return below(random, 9) - 2; };
        Snapshot snapshot;
        snapshot.nodes.resize(below(random, 6));
        snapshot.edges.resize(below(random, 8));
        for (NodeRecord& node : snapshot.nodes) {
            node.parent = any();
            node.value = any();
            node.removed = below(random, 4) == 0;
            node.pass = below(random, 2) == 0;
            node.enabled = below(random, 2) == 0;
            node.children.resize(below(random, 4));
            for (int& child : node.children)
                child = any();
            for (QVector<PortRecord>* ports : {&node.inputs, &node.outputs}) {
                ports->resize(below(random, 4));
                for (PortRecord& port : *ports) {
                    port.source = any();
                    port.destinations.resize(below(random, 4));
                    for (int& edge : port.destinations)
                        edge = any();
                }
            }
        }
        for (EdgeRecord& edge : snapshot.edges)
            edge = {any(), any(), any(), any(), below(random, 4) == 0};
        snapshot.target = any();
        snapshot.numOutputs = any();
        const QVector<Finding> findings = lint(snapshot);
        for (const Finding& finding : findings) {
            EXPECT_LT(finding.node, qMax(1, snapshot.nodes.size()));
            EXPECT_FALSE(finding.text.contains(QLatin1Char('\n')));
            EXPECT_FALSE(finding.text.endsWith(QLatin1Char(' ')));
        }
    }
}

// Size

TEST(LintSize, AChainOfAHundredThousandPasses)
{
    Host host;
    const int count = 100000;
    for (int i = 0; i < count; ++i)
        host.pass(std::to_string(i).c_str(), i == 0 ? "" : "x", "x");
    // From the end, so that there is nothing upstream yet to be searched for cycles.
    for (int i = count - 1; i > 0; --i)
        host.graph.addEdge(i, 0, i + 1, 0);
    host.output("Picture");
    host.graph.addUpEdge(0, count, 0);
    EXPECT_TRUE(lint(host.snapshot()).isEmpty());
}

TEST(LintSize, AGroupWithAHundredThousandPorts)
{
    Host host;
    const int count = 100000;
    const int a = host.pass("A", "", "x");
    const int g = host.renderer.addGroup(QStringLiteral("G"), count, 0, 0);
    const int p = host.pass("P", "", "", g);
    for (int i = 0; i < count; ++i) {
        host.graph.setInputName(g, i, QString::number(i));
        host.graph.addInput(p, QString::number(i), -1);
        host.graph.addEdge(a, 0, g, i);
        host.graph.addDownEdge(i, p, i);
    }
    host.renderer.setTarget(p);
    EXPECT_TRUE(lint(host.snapshot()).isEmpty());
}

TEST(LintSize, GroupsNestedTenThousandDeepWithAReaderInEach)
{
    Host host;
    const int depth = 10000;
    const int a = host.pass("A", "", "x");
    int parent = host.group("G", "in", "out");
    host.link(a, "x", parent, "in");
    host.output("Picture");
    host.graph.addUpEdge(0, parent, 0);
    for (int i = 1; i < depth; ++i) {
        host.renderer.setEnabled(host.pass("P", "in", "", parent), false);
        host.graph.addDownEdge(0, host.graph.getNode(0, parent), 0);
        const int g = host.group("G", "in", "out", parent);
        host.graph.addDownEdge(0, g, 0);
        host.graph.addUpEdge(0, g, 0);
        parent = g;
    }
    const int p = host.pass("P", "in", "out", parent);
    host.graph.addDownEdge(0, p, 0);
    host.graph.addUpEdge(0, p, 0);
    const QVector<Finding> findings = lint(host.snapshot());
    ASSERT_EQ(findings.size(), 2); // A is read, and P's value leaves, through too many groups
    EXPECT_EQ(findings.at(0).code, QStringLiteral("uncounted-users"));
    EXPECT_EQ(findings.at(1).code, QStringLiteral("uncounted-users"));
}

namespace {

template<typename Graph>
void expectLinearLint(int size)
{
    expectLinearUpTo<Graph>(size, [](Graph& graph) { lint(graph.snapshot); });
}

} // namespace

TEST(LintGrowth, IsLinearInTheLengthOfAChain)
{
    expectLinearLint<LargeChain>(20000);
}

TEST(LintGrowth, IsLinearInTheWidthOfAFan)
{
    expectLinearLint<LargeFan>(20000);
}

TEST(LintGrowth, IsLinearInThePortsOfAGroup)
{
    expectLinearLint<LargeGroup>(20000);
}

TEST(LintGrowth, IsLinearInTheDepthOfGroups)
{
    expectLinearLint<LargeNest>(20000);
}

// Documentation

TEST(LintCodes, AreInAlphabeticalOrder)
{
    const QVector<LintCode> codes = lintCodes();
    for (int i = 1; i < codes.size(); ++i)
        EXPECT_LT(codes.at(i - 1).code, codes.at(i).code);
}

TEST(LintCodes, AreThoseThatAreDocumented)
{
    QFile file(QStringLiteral(ORV_SOURCE_DIR "/docs/lint.md"));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QString text = QString::fromUtf8(file.readAll());
    std::string documented;
    const QRegularExpression heading(QStringLiteral("^## ([a-z-]+)$"),
                                     QRegularExpression::MultilineOption);
    for (auto match = heading.globalMatch(text); match.hasNext();)
        documented += match.next().captured(1).toStdString() + "\n";
    std::string known;
    const QVector<LintCode> codes = lintCodes();
    for (const LintCode& code : codes)
        known += code.code.toStdString() + "\n";
    EXPECT_EQ(documented, known);
}
