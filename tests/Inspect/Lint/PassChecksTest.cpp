// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Inspect/Lint/LintedHost.h"

#include <gtest/gtest.h>

using namespace Kestrin::Orv;
using namespace Kestrin::Orv::Inspect;

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

TEST(LintDefaults, AValidDefaultIsAccepted)
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

TEST(LintDefaults, ADisabledPassTakesNoDefault)
{
    Chain host;
    host.renderer.setEnabled(host.pass("C", "x", "", 0, QVariant()), false);
    EXPECT_EQ(linted(host), "");
}

TEST(LintDefaults, TheOutermostUnfedInputIsNamed)
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

TEST(LintPasses, ATargetThatIsAGroupDoesNotNeedThePassesInside)
{
    Chain host;
    const int g = host.group("G", "", "");
    host.pass("P", "", "", g);
    host.renderer.setTarget(g);
    EXPECT_EQ(
        linted(host),
        "unneeded-pass: G/P never runs: the target is a group, and the renderer runs the passes "
        "that feed it, not the passes inside it.\n");
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
