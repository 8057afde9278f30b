// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef ORV_TESTS_RENDERERHISTORY_H
#define ORV_TESTS_RENDERERHISTORY_H

#include "GraphCalls.h"

#include <cstdint>
#include <string>
#include <vector>

/// The operations of a renderer as data, as ORV_GRAPH_CALLS does for a graph; carried out on
/// `side`, which has a renderer `r` and recording passes. More roles: f a pass's own port count, k
/// a pass by index, x one of a pass's calls, y what a pass does when it calls back, u a small
/// number. The last three edit the graph: any call, and the two that only wire soundly.
#define ORV_RENDERER_CALLS(X)                                                                      \
    X(addPass, "sffn", out.is(side.addPass(s, a[0], a[1], a[2])))                                  \
    X(addGroup, "sccn", out.is(r.addGroup(s, a[0], a[1], a[2])))                                   \
    X(addNullPass, "sn", out.is(r.addPass(s, nullptr, a[0])))                                      \
    X(addParameter, "sv", out.is(r.addParameter(s, a[0])))                                         \
    X(addStaggered, "b", out.is(r.addParameter(staggered(), a[0] != 0)))                           \
    X(addOutput, "s", out.is(r.addOutput(s)))                                                      \
    X(setParameter, "iv", r.setParameter(a[0], a[1]))                                              \
    X(setParameterBool, "ib", r.setParameter(a[0], a[1] != 0))                                     \
    X(setEnabled, "nb", r.setEnabled(a[0], a[1] != 0))                                             \
    X(setTarget, "n", r.setTarget(a[0]))                                                           \
    X(setup, "v", r.setup(callbacksOf(a[0])))                                                      \
    X(render, "v", out.is(r.render(callbacksOf(a[0]))))                                            \
    X(teardown, "v", r.teardown(callbacksOf(a[0])))                                                \
    X(passFails, "ku", side.pass(a[0]).failsWith = static_cast<unsigned>(a[1]))                    \
    X(passTakesTime, "ku", side.pass(a[0]).unfinishedFor = a[1])                                   \
    X(passLies, "ku", side.pass(a[0]).lie = a[1] - 2)                                              \
    X(passThrows, "kx", side.pass(a[0]).throwsAt = a[1])                                           \
    X(passCallsBack, "kxyn", side.callBack(a[0], a[1], a[2], a[3]))                                \
    X(findPass, "s", out.is(r.findPass(s)))                                                        \
    X(findParameter, "s", out.is(r.findParameter(s)))                                              \
    X(findOutput, "s", out.is(r.findOutput(s)))                                                    \
    X(numParameters, "", out.is(r.numParameters()))                                                \
    X(parameterType, "i", out.is(static_cast<int>(r.parameterType(a[0]))))                         \
    X(parameterValue, "i", out.is(r.parameterValue(a[0]).toString()))                              \
    X(numOutputs, "", out.is(r.numOutputs()))                                                      \
    X(outputType, "i", out.is(static_cast<int>(r.outputType(a[0]))))                               \
    X(output, "i", out.is(r.output(a[0]).toString()))                                              \
    X(getNumPasses, "", out.is(r.getNumPasses()))                                                  \
    X(renderPass, "n", out.is(side.indexOf(r.renderPass(a[0]))))                                   \
    X(enabled, "n", out.is(r.enabled(a[0])))                                                       \
    X(getTarget, "", out.is(r.getTarget()))                                                        \
    X(getGraphProcessingMode, "", out.is(r.getGraphProcessingMode()))                              \
    X(graphCall, "", out = perform(*r.getGraph(), call.graphCall))                                 \
    X(siblingEdge, "", out = perform(*r.getGraph(), call.graphCall))                               \
    X(hierarchyEdge, "", out = perform(*r.getGraph(), call.graphCall))

enum class RendererOp : std::uint8_t {
#define ORV_ENUMERATOR(name, roles, expression) name,
    ORV_RENDERER_CALLS(ORV_ENUMERATOR)
#undef ORV_ENUMERATOR
};
const int kNumRendererOps = static_cast<int>(RendererOp::hierarchyEdge) + 1;

struct RendererStep
{
    std::uint8_t op;
    GraphStep graph; // of a graphCall; otherwise its args alone
};

/// Carries a history of calls out on the library's renderer and on the oracle's, and compares every
/// answer and every call that the passes receive, in order and with arguments, from registration to
/// destruction. Where passes call back in ways that leave the rest of the frame open, the library
/// goes on alone.
/// \return nothing when all agreed; otherwise what did not, and the calls up to there as source.
std::string runRendererHistory(const std::vector<RendererStep>& steps);

/// The steps that the bytes of a fuzzer's input stand for, at most so many.
std::vector<RendererStep> decodeRendererSteps(const std::uint8_t* data, std::size_t size,
                                              std::size_t atMost);

#endif
