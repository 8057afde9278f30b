// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Rules/ValueFlow.h"

#include "Inspect/support/OddSnapshot.h"

#include <gtest/gtest.h>

#include <functional>

using namespace Kestrin::Orv::Inspect;

namespace {

/// Calls `check` with every port, and with some that do not exist.
void forPorts(const Snapshot& snapshot, const std::function<void(const PortRef&)>& check)
{
    for (int node = -1; node <= snapshot.nodes.size(); ++node) {
        for (int i = -1; i < 5; ++i) {
            check({node, i, false});
            check({node, i, true});
        }
    }
}

std::string text(const PortRef& port)
{
    return std::to_string(port.node) + (port.isOutput ? ".o" : ".i") + std::to_string(port.index);
}

} // namespace

TEST(ValueFlow, EndsWhereTheWalksOfTheSnapshotEnd)
{
    int numWalks = 0;
    int numWithoutEnd = 0;
    for (unsigned seed = 0; seed < 12000; ++seed) {
        const Snapshot snapshot = oddWiredSnapshot(seed);
        const ValueFlow flow(snapshot);
        forPorts(snapshot, [&](const PortRef& port) {
            PortRef expected = port;
            if (port.isOutput)
                snapshot.walkDown(expected.node, expected.index);
            else
                snapshot.walkUp(expected.node, expected.index);
            const ValueFlow::End end = flow.end(port);
            EXPECT_EQ(text(end.at), text(expected)) << seed << ' ' << text(port);
            numWalks += end.steps > 0;
            numWithoutEnd += end.steps == snapshot.nodes.size();
        });
        if (testing::Test::HasFailure())
            return;
    }
    EXPECT_GT(numWalks, 3000);
    EXPECT_GT(numWithoutEnd, 60) << "some walks go round in a cycle";
}

TEST(ValueFlow, FindsTheSourceThatTheWalkToTheSourceNodeFinds)
{
    int numFound = 0;
    for (unsigned seed = 0; seed < 12000; ++seed) {
        const Snapshot snapshot = oddWiredSnapshot(seed);
        const ValueFlow flow(snapshot);
        forPorts(snapshot, [&](const PortRef& port) {
            if (port.isOutput)
                return;
            PortRef expected = port;
            expected.isOutput = snapshot.walkToSourceNode(expected.node, expected.index);
            const ValueFlow::Source source = flow.source(port);
            EXPECT_EQ(source.found, expected.isOutput) << seed << ' ' << text(port);
            EXPECT_EQ(text(source.at), text(expected)) << seed << ' ' << text(port);
            numFound += source.found;
        });
        if (testing::Test::HasFailure())
            return;
    }
    EXPECT_GT(numFound, 1000);
}

TEST(ValueFlow, CountsTheGroupsThatAValueLeavesAndEnters)
{
    // From C in the group B in the group A, to E in the group D.
    Snapshot snapshot;
    const auto add = [&snapshot](int parent, bool pass) {
        NodeRecord node;
        node.parent = parent;
        node.removed = false;
        node.pass = node.enabled = pass;
        node.inputs.resize(1);
        node.outputs.resize(1);
        snapshot.nodes.append(node);
        snapshot.nodes[parent].children.append(snapshot.nodes.size() - 1);
        return snapshot.nodes.size() - 1;
    };
    const auto connect = [&snapshot](const PortRef& from, const PortRef& to) {
        const int ref = snapshot.edges.size();
        snapshot.edges.append({from.node, from.index, to.node, to.index, false});
        NodeRecord& src = snapshot.nodes[from.node];
        NodeRecord& dst = snapshot.nodes[to.node];
        (from.isOutput ? src.outputs : src.inputs)[from.index].destinations.append(ref);
        (to.isOutput ? dst.outputs : dst.inputs)[to.index].source = ref;
    };
    const int a = add(0, false);
    const int b = add(a, false);
    const int c = add(b, true);
    const int d = add(0, false);
    const int e = add(d, true);
    connect({c, 0, true}, {b, 0, true});
    connect({b, 0, true}, {a, 0, true});
    connect({a, 0, true}, {d, 0, false});
    connect({d, 0, false}, {e, 0, false});

    const ValueFlow flow(snapshot);
    const ValueFlow::Source source = flow.source({e, 0, false});
    EXPECT_TRUE(source.found);
    EXPECT_EQ(text(source.at), text({c, 0, true}));
    EXPECT_EQ(source.ups, 1);
    EXPECT_EQ(source.edge, 2);
    EXPECT_EQ(source.downs, 2);
    EXPECT_TRUE(flow.carriesValue({e, 0, false}));
    EXPECT_TRUE(flow.carriesValue({a, 0, true}));
    EXPECT_FALSE(flow.carriesValue({a, 0, false}));

    snapshot.nodes[c].enabled = false;
    EXPECT_FALSE(ValueFlow(snapshot).carriesValue({e, 0, false}));
}

TEST(ValueFlow, CarriesAParameterIntoGroups)
{
    Snapshot snapshot;
    snapshot.nodes[0].inputs.resize(1);
    NodeRecord pass;
    pass.parent = 0;
    pass.removed = false;
    pass.inputs.resize(2);
    pass.inputs[0].source = 0;
    snapshot.nodes.append(pass);
    snapshot.edges.append({0, 0, 1, 0, false});
    snapshot.nodes[0].inputs[0].destinations.append(0);
    const ValueFlow flow(snapshot);
    EXPECT_TRUE(flow.carriesValue({1, 0, false}));
    EXPECT_FALSE(flow.carriesValue({1, 1, false}));
}
