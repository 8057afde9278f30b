// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Steps.h"
#include "oracle/RendererHistory.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

namespace {

using Steps = std::vector<RendererStep>;

rc::Gen<RendererStep> step(std::vector<RendererOp> ops)
{
    return rc::gen::map(
        rc::gen::tuple(rc::gen::elementOf(std::move(ops)), graphStep(0, kNumGraphEdits)),
        [](const std::tuple<RendererOp, GraphStep>& t) {
            return RendererStep{static_cast<std::uint8_t>(std::get<0>(t)), std::get<1>(t)};
        });
}

rc::Gen<Steps> steps(std::vector<RendererOp> ops)
{
    return rc::gen::container<Steps>(step(std::move(ops)));
}

Steps joined(std::initializer_list<Steps> parts)
{
    Steps all;
    for (const Steps& part : parts)
        all.insert(all.end(), part.begin(), part.end());
    return all;
}

void agree(const Steps& all)
{
    const std::string failure = runRendererHistory(all);
    if (!failure.empty())
        RC_FAIL(failure);
}

/// A hierarchy of passes and groups, soundly wired to each other, to parameters and to outputs.
Steps renderGraph()
{
    using Op = RendererOp;
    return joined({*steps({Op::addParameter, Op::addOutput, Op::addOutput}),
                   *steps({Op::addPass, Op::addPass, Op::addGroup}),
                   *steps({Op::siblingEdge, Op::siblingEdge, Op::hierarchyEdge})});
}

const std::vector<RendererOp> kFrames = {
    RendererOp::render,    RendererOp::render,       RendererOp::render,
    RendererOp::setup,     RendererOp::setEnabled,   RendererOp::setTarget,
    RendererOp::passFails, RendererOp::setParameter, RendererOp::passTakesTime,
    RendererOp::teardown,  RendererOp::output,       RendererOp::getNumPasses,
};

} // namespace

RC_GTEST_PROP(RendererAgreesWithTheOracle, InTheCallsOfFrames, ())
{
    agree(joined({renderGraph(), Steps(1, *step({RendererOp::setup})), *steps(kFrames)}));
}

RC_GTEST_PROP(RendererAgreesWithTheOracle, InTheStaggeredFirstFrame, ())
{
    using Op = RendererOp;
    agree(joined({renderGraph(), Steps(1, *step({Op::addStaggered})), Steps(1, *step({Op::setup})),
                  *steps({Op::render, Op::render, Op::setEnabled, Op::setParameterBool,
                          Op::getGraphProcessingMode, Op::setup, Op::passFails})}));
}

RC_GTEST_PROP(RendererAgreesWithTheOracle, WhenPassesThrowOrCallBack, ())
{
    using Op = RendererOp;
    agree(joined({renderGraph(), Steps(1, *step({Op::setup})),
                  *steps({Op::render, Op::render, Op::setup, Op::passThrows, Op::passCallsBack,
                          Op::passLies, Op::teardown})}));
}

RC_GTEST_PROP(RendererAgreesWithTheOracle, WhateverIsDoneToItsGraph, ())
{
    using Op = RendererOp;
    agree(joined({renderGraph(), *steps({Op::graphCall, Op::render, Op::setup}),
                  *steps({Op::graphCall, Op::addPass, Op::addNullPass, Op::render, Op::setup,
                          Op::enabled, Op::renderPass, Op::parameterValue})}));
}
