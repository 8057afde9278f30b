// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Steps.h"
#include "oracle/GraphHistory.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

namespace {

using Steps = std::vector<GraphStep>;

Steps joined(Steps first, const Steps& second)
{
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

/// A handful of nodes to work on.
rc::Gen<Steps> someNodes()
{
    return rc::gen::container<Steps>(graphStep(GraphOp::addNode));
}

/// Any edits, those that wire more often than the others.
rc::Gen<Steps> edits()
{
    return rc::gen::container<Steps>(rc::gen::weightedOneOf<GraphStep>(
        {{3, graphStep(0, static_cast<int>(GraphOp::removeEdge))},
         {2, graphStep(0, static_cast<int>(GraphOp::purge))},
         {1, graphStep(static_cast<int>(GraphOp::purge) + 1, kNumGraphEdits)}}));
}

rc::Gen<Steps> queries()
{
    return rc::gen::container<Steps>(graphStep(kNumGraphEdits, kNumGraphOps));
}

void agree(const Steps& steps, bool afterEachCall)
{
    GraphHistory history;
    history.compareStateAfterEachCall = afterEachCall;
    const std::string failure = history.run(steps);
    if (!failure.empty())
        RC_FAIL(failure);
}

} // namespace

RC_GTEST_PROP(GraphAgreesWithTheOracle, AfterEveryEdit, ())
{
    agree(joined(*someNodes(), *edits()), true);
}

RC_GTEST_PROP(GraphAgreesWithTheOracle, InTheAnswersToAllQueries, ())
{
    agree(joined(joined(*someNodes(), *edits()), *queries()), false);
}

RC_GTEST_PROP(GraphAgreesWithTheOracle, AfterCompaction, ())
{
    const Steps purge(1, *graphStep(GraphOp::purge));
    Steps steps = joined(joined(*someNodes(), *edits()), purge);
    steps = joined(joined(joined(steps, *edits()), *queries()), purge);
    agree(joined(joined(steps, *edits()), *queries()), true);
}
