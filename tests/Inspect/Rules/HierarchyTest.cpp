// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Rules/Hierarchy.h"

#include "Inspect/support/OddSnapshot.h"

#include <gtest/gtest.h>

using namespace Kestrin::Orv::Inspect;

namespace {

/// By climbing from the node as far as there are parents.
bool isSameOrAboveByClimbing(const Snapshot& snapshot, int ancestor, int node)
{
    const int numNodes = snapshot.nodes.size();
    for (int steps = 0; steps <= numNodes && node >= 0 && node < numNodes; ++steps) {
        if (node == ancestor)
            return true;
        node = snapshot.nodes.at(node).parent;
    }
    return false;
}

bool endsByClimbing(const Snapshot& snapshot, int node)
{
    const int numNodes = snapshot.nodes.size();
    for (int steps = 0; steps <= numNodes; ++steps) {
        if (node < 0 || node >= numNodes)
            return true;
        node = snapshot.nodes.at(node).parent;
    }
    return false;
}

} // namespace

TEST(Hierarchy, AnswersAsClimbingDoesWhateverTheParentsAre)
{
    int numInCycles = 0;
    for (unsigned seed = 0; seed < 2000; ++seed) {
        const Snapshot snapshot = oddWiredSnapshot(seed);
        const Hierarchy hierarchy(snapshot);
        for (int node = 0; node < snapshot.nodes.size(); ++node) {
            const bool leadsIntoCycle = !endsByClimbing(snapshot, node);
            numInCycles += leadsIntoCycle;
            ASSERT_EQ(hierarchy.leadsIntoCycle(node), leadsIntoCycle) << seed << ' ' << node;
            for (int ancestor = -2; ancestor < snapshot.nodes.size() + 2; ++ancestor)
                ASSERT_EQ(hierarchy.isSameOrAbove(ancestor, node),
                          isSameOrAboveByClimbing(snapshot, ancestor, node))
                    << seed << ": " << ancestor << ' ' << node;
        }
    }
    EXPECT_GT(numInCycles, 300) << "odd snapshots hold cycles";
}

TEST(Hierarchy, HasNothingAboveANodeThatDoesNotExist)
{
    const Hierarchy hierarchy{Snapshot()};
    EXPECT_FALSE(hierarchy.isSameOrAbove(0, -1));
    EXPECT_FALSE(hierarchy.isSameOrAbove(0, 1));
    EXPECT_TRUE(hierarchy.isSameOrAbove(0, 0));
}

TEST(Hierarchy, ListsParentsBeforeTheirChildren)
{
    for (unsigned seed = 0; seed < 500; ++seed) {
        const Snapshot snapshot = oddWiredSnapshot(seed);
        const Hierarchy hierarchy(snapshot);
        QVector<int> positions(snapshot.nodes.size(), -1);
        int position = 0;
        for (const int node : hierarchy.parentsFirst())
            positions[node] = position++;
        for (int node = 0; node < snapshot.nodes.size(); ++node) {
            const int parent = snapshot.nodes.at(node).parent;
            ASSERT_GE(positions.at(node), 0) << seed;
            if (parent >= 0 && parent < snapshot.nodes.size() && !hierarchy.leadsIntoCycle(node)) {
                EXPECT_LT(positions.at(parent), positions.at(node)) << seed;
            }
        }
    }
}
