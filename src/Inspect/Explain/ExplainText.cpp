// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Explain/ExplainerImpl.h"
#include "Model/ValueText.h"

#include <Kestrin/Orv/Inspect/ForeignValue.h>

namespace Kestrin {
namespace Orv {
namespace Inspect {

namespace {

QString latin1(const char* text)
{
    return QString(QLatin1String(text));
}

/// A value on one line, with its type unless it is a bool, a number or a string.
QString valueText(const QVariant& value)
{
    const int longest = 60;
    if (!value.isValid())
        return latin1("no value");
    QString scalar = scalarText(value);
    if (!scalar.isEmpty())
        return scalar;
    if (value.userType() == QMetaType::QString)
        return compactJson(value.toString()); // quoted, so that it stays one line
    if (value.canConvert<ForeignValue>()) {
        const auto foreign = value.value<ForeignValue>();
        const QString json = compactJson(foreign.value);
        return (json.size() > longest ? latin1("a value") : json) + latin1(" of the type ")
            + oneLine(foreign.type);
    }
    return latin1("a value of the type ") + latin1(value.typeName());
}

/// The parts of a text that name what is in a snapshot.
class Wording
{
public:
    Wording(const Snapshot& explained, const Paths& itsPaths)
        : snapshot(explained)
        , paths(itsPaths)
    {
    }

    QString nameOf(int ref) const;
    QString nameOf(const PortRef& port) const;
    QString listed(const QVector<PortRef>& ports) const;
    QString hint(const NodeExplanation& explanation) const;
    QString cause(const InputExplanation& explanation) const;
    QString verdict(const EdgeExplanation& explanation) const;

private:
    const Snapshot& snapshot;
    const Paths& paths;
};

QString Wording::nameOf(int ref) const
{
    if (ref == kRoot)
        return latin1("the renderer");
    return exists(snapshot, ref) ? paths.node(ref) : latin1("node ") + QString::number(ref);
}

/// A port with its side, as inputs and outputs may share a path.
QString Wording::nameOf(const PortRef& port) const
{
    const char* const side = port.isOutput ? "output "
        : port.node == kRoot               ? "parameter "
                                           : "input ";
    const QString owner = exists(snapshot, port.node) ? QString() : nameOf(port.node);
    return latin1(side) + owner + paths.port(port);
}

QString Wording::listed(const QVector<PortRef>& ports) const
{
    QString lines;
    for (const PortRef& port : ports)
        lines += latin1("  ") + nameOf(port) + QLatin1Char('\n');
    return lines;
}

/// How to make a pass run that nothing needs.
QString Wording::hint(const NodeExplanation& explanation) const
{
    const bool itself = explanation.nearest == explanation.node;
    const QString end = nameOf(explanation.nearest);
    QString text = itself ? latin1("Make it the target")
                          : latin1("The nearest one downstream that nothing reads is ") + end
            + latin1(": make ") + end + latin1(" the target");
    if (!snapshot.node(explanation.nearest).outputs.isEmpty())
        text += latin1(" or feed an output of the renderer from it");
    return text + latin1(", and ") + (itself ? latin1("it") : nameOf(explanation.node))
        + latin1(" runs");
}

/// Why an input takes its default.
QString Wording::cause(const InputExplanation& explanation) const
{
    switch (explanation.cause) {
    case InputExplanation::NotDefault:
        break;
    case InputExplanation::Unfed:
        return latin1("nothing feeds ")
            + (explanation.end == explanation.input ? latin1("it")
                                                    : latin1("the ") + nameOf(explanation.end));
    case InputExplanation::NoPassBehind:
        return latin1("no pass feeds the ") + nameOf(explanation.end);
    case InputExplanation::UpstreamDisabled:
        return nameOf(explanation.end.node) + latin1(", which feeds it, is disabled");
    case InputExplanation::NotAPass:
        return nameOf(explanation.end.node) + latin1(", which feeds it, has no pass");
    }
    return latin1("no cause is known");
}

/// Whether the graph accepts an edge, and why not.
QString Wording::verdict(const EdgeExplanation& explanation) const
{
    const QString refused = latin1(" is refused: ");
    switch (explanation.rule) {
    case EdgeExplanation::Accepted:
        break;
    case EdgeExplanation::NoSuchNode: {
        const bool noSource = snapshot.node(explanation.from.node).removed;
        return refused + nameOf(noSource ? explanation.from.node : explanation.to.node)
            + latin1(" does not exist.\n");
    }
    case EdgeExplanation::NoSuchPort: {
        const bool noSource = !snapshot.hasPort(explanation.from);
        return refused + latin1("the ") + nameOf(noSource ? explanation.from : explanation.to)
            + latin1(" does not exist.\n");
    }
    case EdgeExplanation::AlreadyFed:
        return refused + paths.port(explanation.to) + latin1(" is already fed by the ")
            + nameOf(snapshot.sourceOf(explanation.fedBy)) + latin1(".\n");
    case EdgeExplanation::LeavesGroup:
        return refused + latin1("the oldest edge of ") + paths.port(explanation.from)
            + latin1(" leads to the ") + nameOf(snapshot.destinationOf(explanation.oldest))
            + latin1(", not to a sibling.\n");
    case EdgeExplanation::Cycle:
        return refused + latin1("it would close a cycle:\n") + listed(explanation.cycle);
    case EdgeExplanation::NotRelated:
        if (explanation.made)
            return latin1(
                " is accepted but does not carry that output: the nodes are not siblings.\n");
        if (!explanation.to.isOutput)
            return refused + latin1("an input feeds another only from a group to its child.\n");
        if (explanation.from.isOutput)
            return refused + latin1("an output feeds another only from a child to its group.\n");
        return refused + latin1("no edge leads from an input to an output.\n");
    }
    return latin1(" is accepted.\n");
}

} // namespace

QString Explainer::toText(const NodeExplanation& explanation) const
{
    const Wording words(impl->snapshot, impl->paths);
    const bool isRoot = explanation.node == kRoot;
    const QString name = isRoot ? latin1("The renderer") : words.nameOf(explanation.node);
    const QString path = words.listed(explanation.path);
    const bool isTarget = explanation.output < 0 && explanation.path.isEmpty();
    const QString needer = explanation.output >= 0
        ? latin1("the renderer's output ") + impl->paths.output(kRoot, explanation.output)
        : latin1("the target ") + words.nameOf(impl->snapshot.target);

    switch (explanation.state) {
    case NodeExplanation::Scheduled:
        return name + latin1(" runs as ") + QString::number(explanation.position + 1)
            + latin1(" of ") + QString::number(impl->schedule.order.size())
            + (isTarget ? latin1(": it is the target.\n")
                        : latin1(", needed by ") + needer + latin1(":\n") + path);
    case NodeExplanation::Disabled:
        return name + latin1(" does not run: it is disabled. ")
            + (isTarget
                   ? latin1("It is the target.\n")
                   : needer.at(0).toUpper() + needer.mid(1) + latin1(" leads to it:\n") + path);
    case NodeExplanation::NotNeeded: {
        const QString ways = words.listed(explanation.nearestPath);
        return name + latin1(" does not run: no output of the renderer and no target leads to it")
            + (explanation.enabled ? latin1(". ") : latin1(", and it is disabled. "))
            + words.hint(explanation)
            + (explanation.enabled ? QString() : latin1(" once it is enabled"))
            + (ways.isEmpty() ? latin1(".\n") : latin1(":\n")) + ways;
    }
    case NodeExplanation::Group:
        return name
            + latin1(isRoot                                                ? " is not a pass"
                         : impl->snapshot.node(explanation.node).value < 0 ? " is a group"
                                                                           : " has no pass")
            + latin1(": there is nothing to run.\n");
    case NodeExplanation::Removed:
        return name + latin1(" has been removed.\n");
    case NodeExplanation::Missing:
        break;
    }
    return latin1("There is no ") + name + latin1(".\n");
}

QString Explainer::toText(const InputExplanation& explanation) const
{
    const Wording words(impl->snapshot, impl->paths);
    const Snapshot& snapshot = impl->snapshot;
    const int node = explanation.input.node;
    const QString name = impl->paths.port(explanation.input);
    const bool isPass = snapshot.node(node).pass;
    const bool runs = impl->schedule.positions.value(node, kNone) >= 0;
    const QString takes = name + latin1(isPass ? runs ? " takes " : " would take " : " carries ");
    const QString way = explanation.path.size() > 1 ? latin1(":\n") + words.listed(explanation.path)
                                                    : latin1(".\n");

    switch (explanation.source) {
    case InputExplanation::Parameter: {
        const QString now = latin1(" (") + valueText(explanation.value) + latin1(" now)");
        if (node == kRoot)
            return name + latin1(" is a parameter of the renderer") + now + latin1(".\n");
        return takes + latin1("the ") + words.nameOf(explanation.end) + now + way;
    }
    case InputExplanation::Output:
        return takes + latin1("the ") + words.nameOf(explanation.end) + way;
    case InputExplanation::Default:
        return takes
            + (isPass ? latin1("its default (") + valueText(explanation.value) + latin1(")")
                      : latin1("nothing"))
            + latin1(", because ") + words.cause(explanation) + way;
    case InputExplanation::NoSuchInput:
        break;
    }
    if (!exists(snapshot, node))
        return latin1("There is no ") + words.nameOf(node) + latin1(".\n");
    return (node == kRoot ? latin1("The renderer") : words.nameOf(node))
        + latin1(" has no such input.\n");
}

QString Explainer::toText(const EdgeExplanation& explanation) const
{
    const Wording words(impl->snapshot, impl->paths);
    return latin1("An edge from the ") + words.nameOf(explanation.from) + latin1(" to the ")
        + words.nameOf(explanation.to) + words.verdict(explanation);
}

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin
