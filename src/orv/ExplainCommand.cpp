// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Arguments.h"
#include "Command.h"
#include "Input.h"
#include "Names.h"
#include "Output.h"
#include "Trouble.h"

#include <Kestrin/Orv/Inspect/Explain.h>

#include <QtCore/QJsonArray>
#include <QtCore/QJsonObject>

#include <algorithm>

namespace Kestrin::Orv::Program {

using Inspect::EdgeExplanation;
using Inspect::Explainer;
using Inspect::InputExplanation;
using Inspect::NodeExplanation;
using Inspect::NodeRecord;
using Inspect::PortRef;
using Inspect::Schedule;
using Inspect::Snapshot;

namespace {

/// What a command line asks, answered.
struct Answer
{
    QString text;
    QJsonObject json;
    ExitCode code = kFine;
};

// Every pass

void overview(const Document& document, const Arguments& arguments, Output& output)
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
    const bool stands = explanation.state == NodeExplanation::Disabled
        || explanation.state == NodeExplanation::NotNeeded;
    return {explainer.toText(explanation), explainer.toJson(explanation), stands ? kFound : kFine};
}

Answer explainInput(const Explainer& explainer, const PortRef& input)
{
    const InputExplanation explanation = explainer.input(input.node, input.index);
    return {explainer.toText(explanation), explainer.toJson(explanation), kFine};
}

/// An output is the pass's that produces it: tells which one, and why that pass runs or does not.
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
        return {text + QLatin1String(" that no pass produces.\n"), json, kFound};

    const Answer pass = explainNode(explainer, producer.node);
    const QVector<int> users = explainer.schedule().users.value(producer.node);
    if (producer != output) {
        const QString producerPath = explainer.paths().port(producer);
        text += QLatin1String(" that takes the value of ") + producerPath;
        json.insert(QStringLiteral("producer"), producerPath);
    }
    if (!users.isEmpty()) {
        const int count = users.value(producer.index);
        text += QLatin1String(producer != output ? ", which has " : " that has ")
            + QString::number(count) + QLatin1String(count == 1 ? " user" : " users");
        json.insert(QStringLiteral("users"), count);
    }
    json.insert(QStringLiteral("pass"), pass.json);
    return {text + QLatin1String(".\n") + pass.text, json, pass.code};
}

// A new edge

/// Whether an edge may run between two ports by where their nodes lie.
bool areRelated(const Snapshot& snapshot, const PortRef& from, const PortRef& to)
{
    const int fromParent = snapshot.node(from.node).parent;
    const int toParent = snapshot.node(to.node).parent;
    if (from.isOutput)
        return to.isOutput ? fromParent == to.node : fromParent == toParent;
    return !to.isOutput && toParent == from.node;
}

Answer explainEdge(const Explainer& explainer, const PortRef& from, const PortRef& to)
{
    const EdgeExplanation explanation = explainer.edge(from, to);
    return {explainer.toText(explanation), explainer.toJson(explanation),
            explanation.rule == EdgeExplanation::Accepted ? kFine : kFound};
}

PortRef firstOf(const QVector<PortRef>& ports, bool isOutput)
{
    const auto* const port =
        std::find_if(ports.begin(), ports.end(),
                     [isOutput](const PortRef& each) { return each.isOutput == isOutput; });
    return port == ports.end() ? PortRef() : *port;
}

/// Where an input and an output share a path, the one is meant that goes with the other end.
Answer explainEdge(const Snapshot& snapshot, const Explainer& explainer, const Names& names,
                   const QString& fromPath, const QString& toPath)
{
    const QVector<PortRef> sources = names.ports(fromPath);
    const QVector<PortRef> destinations = names.ports(toPath);
    bool leavesOutput = firstOf(sources, true).node >= 0;
    bool entersOutput = firstOf(destinations, false).node < 0;
    for (const bool isOutput : {true, false}) {
        for (const bool toOutput : {true, false}) {
            const PortRef from = firstOf(sources, isOutput);
            const PortRef to = firstOf(destinations, toOutput);
            if (from.node >= 0 && to.node >= 0 && areRelated(snapshot, from, to)) {
                leavesOutput = isOutput;
                entersOutput = toOutput;
            }
        }
    }
    return explainEdge(explainer, names.onePort(fromPath, sources, leavesOutput),
                       names.onePort(toPath, destinations, entersOutput));
}

/// All that one path means, as nodes, inputs and outputs may share it.
QVector<Answer> explainPath(const Snapshot& snapshot, const Explainer& explainer,
                            const Names& names, const QString& path)
{
    const Names::Meaning meaning = names.anything(path);
    QVector<Answer> answers;
    if (meaning.node >= 0)
        answers.append(explainNode(explainer, meaning.node));
    if (meaning.input.node >= 0)
        answers.append(explainInput(explainer, meaning.input));
    if (meaning.output.node >= 0)
        answers.append(explainOutput(snapshot, explainer, meaning.output));
    return answers;
}

int run(const Arguments& arguments, Output& output)
{
    const Document document = readInput(arguments.plain(0));
    const QStringList& words = arguments.plain();
    if (words.size() == 1) {
        overview(document, arguments, output);
        return kFine;
    }

    const Explainer explainer(document.snapshot);
    const Names names(document.name, document.snapshot, explainer.paths());
    const QVector<Answer> answers = words.size() == 2
        ? explainPath(document.snapshot, explainer, names, words.at(1))
        : QVector<Answer>{
            explainEdge(document.snapshot, explainer, names, words.at(1), words.at(2))};
    ExitCode code = kFine;
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

} // namespace

const Command& explainCommand()
{
    static const Command command{
        QStringLiteral("explain"),
        QStringLiteral("FILE [NODE | NODE.PORT | FROM TO]"),
        QStringLiteral("Tell why passes run or not, and where values come from"),
        QStringLiteral(
            "  NODE       why the pass runs, or why it does not\n"
            "  NODE.PORT  where the value of an input comes from, or which pass produces an "
            "output\n"
            "  FROM TO    whether the graph would take an edge between two ports, and if not, why\n"
            "\n"
            "Without any of them, a line for each pass, parted by tabs: its position in the order "
            "of\n"
            "execution, its path, and whether it runs.\n"),
        {},
        1,
        3,
        QStringLiteral("0 for a pass that runs and an edge that is taken, 1 for others"),
        QStringLiteral(
            "$ orv explain scene.json Grain\n"
            "Grain does not run: it is disabled. The renderer's output Picture leads to it:\n"
            "  output Picture\n"
            "  output Tone.image\n"
            "  input Tone.grain\n"
            "  output Grain.noise\n"),
        run};
    return command;
}

} // namespace Kestrin::Orv::Program
