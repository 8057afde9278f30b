// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Inspect/Lint/LintedHost.h"

#include <gtest/gtest.h>

using namespace Kestrin::Orv;
using namespace Kestrin::Orv::Inspect;

TEST(LintCycles, ACycleThroughAGroupIsNamed)
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

TEST(LintCycles, APassThatFeedsItselfThroughItsGroupIsACycle)
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

TEST(LintCycles, OfSeveralCyclesThroughANodeTheShortestIsReported)
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

TEST(LintCycles, EachCycleIsReportedOnceAndLongOnesAreShortened)
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
