// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "GraphHistory.h"

#include "MessageSink.h"
#include "support/GraphInvariants.h"

#include <algorithm>

namespace {

std::string lines(const std::vector<QString>& messages)
{
    std::string text;
    for (const QString& message : messages)
        text += "\n    " + message.left(200).toStdString();
    return text;
}

/// Whether a call is one of those that keep the invariants in any case.
bool keepsInvariants(const GraphCall& call, const Oracle::Graph& graph)
{
    switch (call.op) {
    case GraphOp::removeInput:
    case GraphOp::removeOutput:
    case GraphOp::purge:
        return false;
    case GraphOp::addEdge:
    case GraphOp::connectGroups:
        return graph.parentNode(call.ints[0]) == graph.parentNode(call.ints[2]);
    case GraphOp::addEdgeByName:
    case GraphOp::connectByName:
    case GraphOp::connectNamedGroups:
        return graph.parentNode(call.ints[0]) == graph.parentNode(call.ints[1]);
    default:
        return true;
    }
}

} // namespace

std::string GraphHistory::run(const std::vector<GraphStep>& steps) const
{
    MessageSink sink;
    Kestrin::Orv::Graph graph;
    Oracle::Graph model;
    std::vector<GraphCall> calls;
    GraphInvariants invariants(graph);
    bool invariantsHold = true;

    const auto failure = [&calls](const std::string& what) {
        std::string text = what + "\nGraph graph;\n";
        for (const GraphCall& call : calls)
            text += call.text() + "\n";
        return text;
    };

    for (const GraphStep& step : steps) {
        calls.push_back(resolve(step, model));
        const Outcome expected = perform(model, calls.back());
        const Outcome answered = perform(graph, calls.back());
        if (model.open)
            return std::string(); // that it ended is all there is to check
        if (!(answered == expected))
            return failure("answered " + answered.print() + " instead of " + expected.print());
        if (sink.messages != model.messages)
            return failure("logged" + lines(sink.messages) + "\n  instead of"
                           + lines(model.messages));
        sink.messages.clear();
        model.messages.clear();
        if (compareStateAfterEachCall || calls.back().op == GraphOp::purge) {
            const std::string found = difference(graph, model);
            if (!found.empty())
                return failure(found);
        }
        invariantsHold = invariantsHold && keepsInvariants(calls.back(), model);
        if (checkInvariantsAfterEachCall && invariantsHold) {
            const GraphInvariants::Violations violations = invariants.check();
            if (!violations.empty())
                return failure("violates " + violations.front());
        }
    }
    const std::string found = difference(graph, model);
    return found.empty() ? found : failure(found);
}

std::vector<GraphStep> decodeGraphSteps(const std::uint8_t* data, std::size_t size,
                                        std::size_t atMost)
{
    std::vector<GraphStep> steps;
    // Two of three first bytes stand for a call that edits: without edits there is little to ask.
    for (std::size_t at = 0; at < size && steps.size() < atMost; at += 5) {
        GraphStep step = {};
        const int first = data[at];
        step.op = static_cast<std::uint8_t>(first < 170 ? first % kNumGraphEdits
                                                        : kNumGraphEdits
                                                    + first % (kNumGraphOps - kNumGraphEdits));
        std::copy_n(data + at + 1, std::min<std::size_t>(4, size - at - 1), step.args);
        steps.push_back(step);
    }
    return steps;
}
