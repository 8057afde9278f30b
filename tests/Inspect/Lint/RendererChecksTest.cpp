// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Inspect/Lint/LintedHost.h"

#include <gtest/gtest.h>

using namespace Kestrin::Orv;
using namespace Kestrin::Orv::Inspect;

TEST(LintRendererOutputs, AnOutputOfTheRendererThatNothingFeedsIsReported)
{
    Chain host;
    const int index = host.output("Debug");
    EXPECT_EQ(linted(host), "dead-output: No pass feeds the output Debug.\n");
    EXPECT_EQ(lint(host.snapshot()).first().port, (PortRef{0, index, true}));
}

TEST(LintRendererOutputs, AnOutputOfTheRendererThatReadsAnUnfedGroupOutputIsReported)
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

TEST(LintRendererOutputs, AnOutputOfADisabledPassIsNotDead)
{
    Chain host;
    host.renderer.setEnabled(host.b, false);
    EXPECT_TRUE(found(host.snapshot(), "dead-output").isEmpty());
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
