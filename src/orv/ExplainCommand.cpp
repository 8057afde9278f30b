// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Arguments.h"
#include "Command.h"
#include "CommandFunctions.h"
#include "Input.h"
#include "Output.h"
#include "PathResolver.h"

#include <Kestrin/Orv/Inspect/Explain.h>

#include <QtCore/QJsonArray>
#include <QtCore/QJsonObject>

#include <algorithm>

namespace Kestrin::Orv::Program {

using Inspect::EdgeExplanation;
using Inspect::EdgeKind;
using Inspect::EdgeRecord;
using Inspect::Explainer;
using Inspect::InputExplanation;
using Inspect::NodeExplanation;
using Inspect::NodeRecord;
using Inspect::PortRef;
using Inspect::Schedule;
using Inspect::Snapshot;

namespace {

/// The answer to a command line.
struct Answer
{
    QString text;
    QJsonObject json;
    ExitCode code = kSuccess;
};

// All passes

void listPasses(const Document& document, const Arguments& arguments, Output& output)
{
    const Snapshot& snapshot = document.snapshot;
    const Schedule schedule = Inspect::predictSchedule(snapshot);
    const Inspect::Paths paths(snapshot);
    QJsonArray passes;
    for (int node = 0; node < snapshot.nodes.size(); ++node) {
        const NodeRecord& record = snapshot.nodes.at(node);
        if (!record.pass || record.removed)
            continue;
        const int position = schedule.positions.at(node);
        const bool needed = schedule.needed.at(node);
        if (arguments.json()) {
            QJsonObject object{{QStringLiteral("pass"), paths.node(node)},
                               {QStringLiteral("runs"), position >= 0},
                               {QStringLiteral("enabled"), record.enabled},
                               {QStringLiteral("needed"), needed}};
            if (position >= 0)
                object.insert(QStringLiteral("position"), position);
            passes.append(object);
            continue;
        }
        output.write((position >= 0 ? QString::number(position + 1) : QStringLiteral("-"))
                     + QLatin1Char('\t') + paths.node(node) + QLatin1Char('\t')
                     + QLatin1String(position >= 0        ? "runs"
                                         : record.enabled ? "not needed"
                                         : needed         ? "disabled"
                                                          : "not needed, disabled")
                     + QLatin1Char('\n'));
    }
    if (arguments.json())
        output.write(QJsonObject{{QStringLiteral("passes"), passes}});
}

// One node or port

Answer explainNode(const Explainer& explainer, int node)
{
    const NodeExplanation explanation = explainer.node(node);
    const bool doesNotRun = explanation.state == NodeExplanation::Disabled
        || explanation.state == NodeExplanation::NotNeeded;
    return {explainer.toText(explanation), explainer.toJson(explanation),
            doesNotRun ? kFound : kSuccess};
}

Answer explainInput(const Explainer& explainer, const PortRef& input)
{
    const InputExplanation explanation = explainer.input(input.node, input.index);
    return {explainer.toText(explanation), explainer.toJson(explanation), kSuccess};
}

/// Names the pass that produces the output, and explains why that pass runs or does not run.
Answer explainOutput(const Snapshot& snapshot, const Explainer& explainer, const PortRef& output)
{
    const QString path = explainer.paths().port(output);
    PortRef producer = output;
    snapshot.walkDown(producer.node, producer.index);
    const bool isProduced = snapshot.node(producer.node).pass;

    QJsonObject json{{QStringLiteral("output"), path}};
    QString text = path + QLatin1String(" is an output of ")
        + (output.node == 0                      ? QLatin1String("the renderer")
               : snapshot.node(output.node).pass ? QLatin1String("a pass")
                                                 : QLatin1String("a group"));
    if (!isProduced)
        return {text + QLatin1String(". No pass produces it.\n"), json, kFound};

    const Answer pass = explainNode(explainer, producer.node);
    const QVector<int> users = explainer.schedule().users.value(producer.node);
    if (producer != output) {
        const QString producerPath = explainer.paths().port(producer);
        text += QLatin1String(". Its value comes from ") + producerPath;
        json.insert(QStringLiteral("producer"), producerPath);
    }
    if (!users.isEmpty()) {
        const int count = users.value(producer.index);
        text += QLatin1String(producer != output ? ", which has " : " and has ")
            + QString::number(count) + QLatin1String(count == 1 ? " user" : " users");
        json.insert(QStringLiteral("users"), count);
    }
    json.insert(QStringLiteral("pass"), pass.json);
    return {text + QLatin1String(".\n") + pass.text, json, pass.code};
}

// A new edge

/// Whether an edge between the nodes of two ports would leave the one port and enter the other.
bool fit(const Snapshot& snapshot, const PortRef& from, const PortRef& to)
{
    const EdgeKind kind = snapshot.kindBetween(from.node, to.node);
    EdgeRecord edge;
    edge.srcNode = from.node;
    edge.srcIndex = from.index;
    edge.dstNode = to.node;
    edge.dstIndex = to.index;
    return kind != EdgeKind::None && Snapshot::sourceOf(edge, kind) == from
        && Snapshot::destinationOf(edge, kind) == to;
}

Answer explainEdge(const Explainer& explainer, const PortRef& from, const PortRef& to)
{
    const EdgeExplanation explanation = explainer.edge(from, to);
    return {explainer.toText(explanation), explainer.toJson(explanation),
            explanation.rule == EdgeExplanation::Accepted ? kSuccess : kFound};
}

/// The first input or output among the ports; its node is -1 if there is none.
PortRef firstOf(const QVector<PortRef>& ports, bool isOutput)
{
    const auto* const port =
        std::find_if(ports.begin(), ports.end(),
                     [isOutput](const PortRef& each) { return each.isOutput == isOutput; });
    return port == ports.end() ? PortRef() : *port;
}

/// If an input and an output share a path, chooses the one that fits the other end of the edge.
Answer explainEdge(const Snapshot& snapshot, const Explainer& explainer,
                   const PathResolver& resolver, const QString& fromPath, const QString& toPath)
{
    const QVector<PortRef> sources = resolver.resolvePorts(fromPath);
    const QVector<PortRef> destinations = resolver.resolvePorts(toPath);
    bool leavesOutput = firstOf(sources, true).node >= 0;
    bool entersOutput = firstOf(destinations, false).node < 0;
    for (const bool isOutput : {true, false}) {
        for (const bool toOutput : {true, false}) {
            const PortRef from = firstOf(sources, isOutput);
            const PortRef to = firstOf(destinations, toOutput);
            if (from.node >= 0 && to.node >= 0 && fit(snapshot, from, to)) {
                leavesOutput = isOutput;
                entersOutput = toOutput;
            }
        }
    }
    return explainEdge(explainer, resolver.singlePort(fromPath, sources, leavesOutput),
                       resolver.singlePort(toPath, destinations, entersOutput));
}

/// Explains everything that the path names: a node, an input and an output may share one path.
QVector<Answer> explainPath(const Snapshot& snapshot, const Explainer& explainer,
                            const PathResolver& resolver, const QString& path)
{
    const PathResolver::Match match = resolver.resolve(path);
    QVector<Answer> answers;
    if (match.node >= 0)
        answers.append(explainNode(explainer, match.node));
    if (match.input.node >= 0)
        answers.append(explainInput(explainer, match.input));
    if (match.output.node >= 0)
        answers.append(explainOutput(snapshot, explainer, match.output));
    return answers;
}

} // namespace

int runExplain(const Arguments& arguments, Output& output)
{
    const Document document = readInput(arguments.positional(0));
    const QStringList& words = arguments.positionals();
    if (words.size() == 1) {
        listPasses(document, arguments, output);
        return kSuccess;
    }

    const Explainer explainer(document.snapshot);
    const PathResolver resolver(document.name, document.snapshot, explainer.paths());
    const QVector<Answer> answers = words.size() == 2
        ? explainPath(document.snapshot, explainer, resolver, words.at(1))
        : QVector<Answer>{
            explainEdge(document.snapshot, explainer, resolver, words.at(1), words.at(2))};
    ExitCode code = kSuccess;
    QJsonArray objects;
    for (const Answer& answer : answers) {
        code = qMax(code, answer.code);
        objects.append(answer.json);
        if (!arguments.json())
            output.write(answer.text);
    }
    if (arguments.json())
        output.write(QJsonObject{{QStringLiteral("answers"), objects}});
    return code;
}

} // namespace Kestrin::Orv::Program
