// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Inspect/Lint/LintedHost.h"

#include <gtest/gtest.h>

using namespace Kestrin::Orv;
using namespace Kestrin::Orv::Inspect;

TEST(LintEdges, AnEdgeBehindARemovedInputIsReported)
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

TEST(LintEdges, AnEdgeAtARemovedOutputIsReported)
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

TEST(LintEdges, AnEdgeBetweenUnrelatedNodesIsReportedAndSoIsWhatItLeaves)
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
