// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "GraphHistory.h"

#include "MessageSink.h"

#include <algorithm>

namespace {

std::string lines(const std::vector<QString>& messages)
{
    std::string text;
    for (const QString& message : messages)
        text += "\n    " + message.left(200).toStdString();
    return text;
}

} // namespace

std::string GraphHistory::run(const std::vector<GraphStep>& steps) const
{
    MessageSink sink;
    Kestrin::Orv::Graph graph;
    Oracle::Graph model;
    std::vector<GraphCall> calls;

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
        if (check) {
            const std::string wrong = check(graph);
            if (!wrong.empty())
                return failure(wrong);
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
