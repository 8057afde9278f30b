// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "SmallGraphs.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>

// The lengths are such that all of this takes about a minute in a release build on one core; see
// SmallGraphs.h for how it gets that far. Few kinds of edits at a time make long sequences
// possible: with all of them, a graph of four nodes with two ports a side has over a hundred edits
// to choose from. So each plan takes the kinds that belong together, and two take everything, but
// briefly.

namespace {

/// How much a search must have done at least, so that it cannot shrink unseen.
struct Floor
{
    double sequences;
    std::size_t states;
};

void agree(const char* name, SmallGraphs::Plan plan, Floor floor)
{
#ifdef ORV_SHORT_SEQUENCES
    --plan.length; // an instrumented build
    floor = {0, 0};
#endif
    SmallGraphs graphs(plan);
    const std::string failure = graphs.run();
    ASSERT_TRUE(failure.empty()) << failure;
    const SmallGraphs::Count& count = graphs.count;
    std::printf("%s: all %.0f sequences of up to %d edits; %zu distinct states, %zu edits made, "
                "%zu answers compared\n",
                name, count.sequences, plan.length, count.states, count.edits, count.comparisons);
    EXPECT_GE(count.sequences, floor.sequences);
    EXPECT_GE(count.states, floor.states);
    EXPECT_GE(count.comparisons, 600 * count.edits); // all queries after each
}

} // namespace

#define ORV_SMALL(shape, plan, numPorts, kinds, length, sequences, states)                         \
    TEST(SmallGraphs, shape##_##plan)                                                              \
    {                                                                                              \
        const bool wired = std::string(#plan) == "wired";                                          \
        agree(#shape ", " #plan, {SmallGraphs::shape, numPorts, kinds, length, wired},             \
              {sequences, states});                                                                \
    }

const unsigned kWires = 0;
const unsigned kCuts = SmallGraphs::RemovePorts;
const unsigned kNodes = SmallGraphs::RemovePorts | SmallGraphs::RemoveNodes | SmallGraphs::AddNodes;
const unsigned kAll = SmallGraphs::All;

ORV_SMALL(flat, wires, 1, kWires, 6, 9600000, 100000)
ORV_SMALL(flat, cuts, 1, kCuts, 4, 150000, 17000)
ORV_SMALL(flat, nodes, 1, kNodes, 4, 540000, 49000)
ORV_SMALL(flat, wired, 1, kNodes, 4, 810000, 14000)
ORV_SMALL(flat, twoPorts, 2, kCuts, 3, 260000, 100000)
ORV_SMALL(flat, all, 1, kAll, 3, 490000, 19000)
ORV_SMALL(flat, allWithTwoPorts, 2, kAll, 2, 22000, 9100)

ORV_SMALL(aGroup, wires, 1, kWires, 6, 1300000, 36000)
ORV_SMALL(aGroup, cuts, 1, kCuts, 5, 940000, 43000)
ORV_SMALL(aGroup, nodes, 1, kNodes, 4, 350000, 25000)
ORV_SMALL(aGroup, wired, 1, kNodes, 4, 590000, 11000)
ORV_SMALL(aGroup, twoPorts, 2, kCuts, 3, 110000, 45000)
ORV_SMALL(aGroup, all, 1, kAll, 3, 490000, 18000)
ORV_SMALL(aGroup, allWithTwoPorts, 2, kAll, 2, 22000, 9100)

ORV_SMALL(aFullGroup, wires, 1, kWires, 6, 1300000, 35000)
ORV_SMALL(aFullGroup, cuts, 1, kCuts, 5, 940000, 42000)
ORV_SMALL(aFullGroup, nodes, 1, kNodes, 4, 340000, 23000)
ORV_SMALL(aFullGroup, wired, 1, kNodes, 4, 570000, 10000)
ORV_SMALL(aFullGroup, twoPorts, 2, kCuts, 3, 110000, 45000)
ORV_SMALL(aFullGroup, all, 1, kAll, 3, 490000, 18000)
ORV_SMALL(aFullGroup, allWithTwoPorts, 2, kAll, 2, 22000, 9100)

ORV_SMALL(groupOfGroups, wires, 1, kWires, 6, 390000, 21000)
ORV_SMALL(groupOfGroups, cuts, 1, kCuts, 5, 480000, 27000)
ORV_SMALL(groupOfGroups, nodes, 1, kNodes, 4, 280000, 16000)
ORV_SMALL(groupOfGroups, wired, 1, kNodes, 5, 13000000, 56000)
ORV_SMALL(groupOfGroups, twoPorts, 2, kCuts, 3, 65000, 27000)
ORV_SMALL(groupOfGroups, all, 1, kAll, 3, 490000, 18000)
ORV_SMALL(groupOfGroups, allWithTwoPorts, 2, kAll, 2, 22000, 9100)
