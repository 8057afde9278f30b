// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Inspect/Diff/ComparedHost.h"
#include "Inspect/support/LargeGraphs.h"

#include <gtest/gtest.h>

using namespace Kestrin::Orv;
using namespace Kestrin::Orv::Inspect;

namespace {

/// Another name for every node but the root.
Snapshot renamed(Snapshot snapshot)
{
    for (int i = 1; i < snapshot.nodes.size(); ++i)
        snapshot.nodes[i].name += QLatin1Char('x');
    return snapshot;
}

} // namespace

TEST(DiffSize, AChainOfAHundredThousandPassesAllRenamed)
{
    Host host;
    const int count = 100000;
    for (int i = 0; i < count; ++i)
        host.pass(std::to_string(i).c_str(), "x", "x");
    for (int i = count - 1; i > 0; --i)
        host.graph.addEdge(i, 0, i + 1, 0);
    host.output("Picture");
    host.graph.addUpEdge(0, count, 0);
    const Snapshot snapshot = host.snapshot();
    EXPECT_EQ(diff(snapshot, snapshot).size(), 0);
    EXPECT_EQ(diff(snapshot, renamed(snapshot)).size(), count);
}

TEST(DiffSize, AFanOfAHundredThousandPassesAllRenamed)
{
    Host host;
    const int count = 100000;
    host.parameter("p");
    for (int i = 0; i < count; ++i)
        host.graph.addDownEdge(0, host.pass(std::to_string(i).c_str(), "x", "x"), 0);
    const Snapshot snapshot = host.snapshot();
    EXPECT_EQ(diff(snapshot, snapshot).size(), 0);
    EXPECT_EQ(diff(snapshot, renamed(snapshot)).size(), count);
}

TEST(DiffSize, GroupsNestedTenThousandDeep)
{
    Host host;
    int parent = 0;
    for (int i = 0; i < 10000; ++i)
        parent = host.group("G", "in", "out", parent);
    const Snapshot snapshot = host.snapshot();
    Snapshot after = snapshot;
    after.nodes[parent].name = QStringLiteral("H");
    after.nodes[1].name = QStringLiteral("H");
    EXPECT_EQ(diff(snapshot, after).size(), 2);
}

TEST(DiffSize, AGroupWithAHundredThousandPortsAllRenamed)
{
    Host host;
    const int count = 100000;
    const int a = host.pass("A", "", "x");
    const int g = host.renderer.addGroup(QStringLiteral("G"), count, 0, 0);
    for (int i = 0; i < count; ++i) {
        host.graph.setInputName(g, i, QString::number(i));
        host.graph.addEdge(a, 0, g, i);
    }
    const Snapshot snapshot = host.snapshot();
    Snapshot after = snapshot;
    for (PortRecord& input : after.nodes[g].inputs)
        input.name += QLatin1Char('x');
    EXPECT_EQ(diff(snapshot, after).size(), count);
}

namespace {

void diffWithItself(LargeGraph& graph)
{
    diff(graph.snapshot, graph.snapshot);
}

void diffWithAllRenamed(LargeGraph& graph)
{
    diff(graph.snapshot, renamed(graph.snapshot));
}

template<typename Graph>
void expectLinearDiff()
{
    expectLinearUpTo<Graph>(20000, [](Graph& graph) { diffWithItself(graph); });
    expectLinearUpTo<Graph>(20000, [](Graph& graph) { diffWithAllRenamed(graph); });
}

} // namespace

TEST(DiffGrowth, IsLinearInTheLengthOfAChain)
{
    expectLinearDiff<LargeChain>();
}

TEST(DiffGrowth, IsLinearInTheWidthOfAFan)
{
    expectLinearDiff<LargeFan>();
}

TEST(DiffGrowth, IsLinearInThePortsOfAGroup)
{
    expectLinearDiff<LargeGroup>();
}
