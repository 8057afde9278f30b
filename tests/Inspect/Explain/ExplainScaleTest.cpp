// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include <Kestrin/Orv/Inspect/Explain.h>

#include "Inspect/support/LargeGraphs.h"

#include <gtest/gtest.h>

using namespace Kestrin::Orv;
using namespace Kestrin::Orv::Inspect;

namespace {

/// The longest path of the graph.
template<typename Graph>
void explainDeepest(Graph& graph)
{
    const Explainer explainer(graph.snapshot);
    const NodeExplanation explained = explainer.node(graph.deepest);
    ASSERT_EQ(explained.state, NodeExplanation::Scheduled);
    ASSERT_FALSE(explained.path.isEmpty());
}

/// The same without an output, so that the path is searched downstream.
template<typename Graph>
void explainUnneeded(Graph& graph)
{
    graph.snapshot.numOutputs = 0;
    const Explainer explainer(graph.snapshot);
    const NodeExplanation explained = explainer.node(graph.deepest);
    ASSERT_EQ(explained.state, NodeExplanation::NotNeeded);
    ASSERT_FALSE(explained.nearestPath.isEmpty());
}

void explainCycle(LargeChain& chain)
{
    const int last = chain.snapshot.nodes.size() - 1;
    chain.snapshot.nodes[last].outputs[0].destinations.clear();
    chain.snapshot.nodes[chain.deepest].inputs.resize(1);
    const Explainer explainer(chain.snapshot);
    const EdgeExplanation explained = explainer.edge({last, 0, true}, {chain.deepest, 0, false});
    ASSERT_EQ(explained.rule, EdgeExplanation::Cycle);
    ASSERT_EQ(explained.cycle.size(), 2 * last);
}

} // namespace

TEST(ExplainGrowth, IsLinearInTheLengthOfAChain)
{
    expectLinearUpTo<LargeChain>(20000, &explainDeepest);
}

TEST(ExplainGrowth, IsLinearInTheLengthOfAChainThatNothingNeeds)
{
    expectLinearUpTo<LargeChain>(20000, &explainUnneeded);
}

TEST(ExplainGrowth, IsLinearInTheLengthOfACycle)
{
    expectLinearUpTo<LargeChain>(20000, &explainCycle);
}

TEST(ExplainGrowth, IsLinearInTheWidthOfAFan)
{
    expectLinearUpTo<LargeFan>(20000, &explainUnneeded);
}

TEST(ExplainGrowth, IsLinearInThePortsOfAGroup)
{
    expectLinearUpTo<LargeGroup>(20000, &explainUnneeded);
}

TEST(ExplainGrowth, IsLinearInTheDepthOfGroups)
{
    expectLinearUpTo<LargeNest>(20000, &explainDeepest);
}

TEST(ExplainGrowth, IsLinearInTheDepthOfGroupsThatNothingNeeds)
{
    expectLinearUpTo<LargeNest>(20000, &explainUnneeded);
}
