// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Inspect/Lint/LintedHost.h"
#include "Inspect/support/LargeGraphs.h"

#include <gtest/gtest.h>

using namespace Kestrin::Orv;
using namespace Kestrin::Orv::Inspect;

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
