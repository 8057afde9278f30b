// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include <Kestrin/Orv/Inspect/Explain.h>

#include "Model/LookUp.h"
#include "Model/ValueText.h"

#include <Kestrin/Orv/Inspect/ForeignValue.h>

#include <QtCore/QHash>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonValue>
#include <QtCore/QSet>

#include <algorithm>

namespace Kestrin {
namespace Orv {
namespace Inspect {

/// Found by QSet here, where PortRef is, alone.
static uint qHash(const PortRef& port, uint seed = 0)
{
    return ::qHash(qMakePair(qMakePair(port.node, port.index), port.isOutput), seed);
}

namespace {

const int kRoot = 0;
const int kNone = -1;

bool exists(const Snapshot& snapshot, int ref)
{
    return ref >= 0 && ref < snapshot.nodes.size();
}

const PortRecord& recordOf(const Snapshot& snapshot, const PortRef& port)
{
    return port.isOutput ? snapshot.output(port.node, port.index)
                         : snapshot.input(port.node, port.index);
}

bool hasPort(const Snapshot& snapshot, const PortRef& port)
{
    const NodeRecord& node = snapshot.node(port.node);
    const int count = port.isOutput ? node.outputs.size() : node.inputs.size();
    return port.index >= 0 && port.index < count;
}

/// The edge that feeds an output from within its group; a removed one if there is none.
const EdgeRecord& edgeFromInside(const Snapshot& snapshot, const PortRef& output)
{
    static const EdgeRecord none;
    const EdgeRecord& source = snapshot.edge(recordOf(snapshot, output).source);
    return snapshot.node(source.srcNode).parent == output.node ? source : none;
}

// The walks of the renderer, which list the ports that they pass: those where they begin and end,
// and every group boundary. As in the graph, no walk takes more steps than there are nodes.

/// From an input out of the groups to the outermost input that feeds it.
void climb(const Snapshot& snapshot, PortRef& position, QVector<PortRef>& path)
{
    path.append(position);
    for (int steps = snapshot.nodes.size(); steps > 0; --steps) {
        const EdgeRecord& source = snapshot.edge(recordOf(snapshot, position).source);
        if (source.removed || source.srcNode != snapshot.node(position.node).parent)
            break;
        position = {source.srcNode, source.srcIndex, false};
        path.append(position);
    }
}

/// From an output into the groups to the innermost output that feeds it.
void descend(const Snapshot& snapshot, PortRef& position, QVector<PortRef>& path)
{
    path.append(position);
    for (int steps = snapshot.nodes.size(); steps > 0; --steps) {
        const EdgeRecord& source = edgeFromInside(snapshot, position);
        if (source.removed)
            break;
        position = {source.srcNode, source.srcIndex, true};
        path.append(position);
    }
}

/// From an input across to the output that feeds it and down from there; false if nothing does.
bool crossAndDescend(const Snapshot& snapshot, PortRef& position, QVector<PortRef>& path)
{
    if (!snapshot.walkAcross(position.node, position.index))
        return false;
    position.isOutput = true;
    descend(snapshot, position, path);
    return true;
}

/// From an input all the way to the output that produces its value; answers that output's node.
int appendTrace(const Snapshot& snapshot, PortRef position, QVector<PortRef>& path)
{
    climb(snapshot, position, path);
    return crossAndDescend(snapshot, position, path) ? position.node : kNone;
}

/// Follows the flow of data from a node until a way ends.
class Downstream
{
public:
    explicit Downstream(const Snapshot& searched)
        : snapshot(searched)
    {
    }

    /// The first node, breadth first, that nothing reads; -1 if all ways end in cycles.
    int nearestEnd(int start);
    /// The ports from an end that was found back to `start`.
    QVector<PortRef> pathBack(int end, int start) const;

private:
    bool follow(const PortRef& output);
    void step(const PortRef& from, QVector<PortRef>& reached);

    const Snapshot& snapshot;
    QVector<int> nodes; // reached, in the order of the search
    QHash<int, PortRef> reachedBy;
    QSet<PortRef> passed;
    QSet<int> leadsInside; // groups that hand on what they receive
};

/// Appends the ports that one edge takes a value to from `from`. Only edges count that the walks
/// against the flow take as well.
void Downstream::step(const PortRef& from, QVector<PortRef>& reached)
{
    const auto reach = [&](int edge, const PortRef& port) {
        if (recordOf(snapshot, port).source == edge && !passed.contains(port)) {
            passed.insert(port);
            reached.append(port);
        }
    };
    const int parent = snapshot.node(from.node).parent;
    for (const int ref : recordOf(snapshot, from).destinations) {
        const EdgeRecord& edge = snapshot.edge(ref);
        if (edge.removed || edge.srcNode != from.node || edge.srcIndex != from.index)
            continue;
        const int dstParent = snapshot.node(edge.dstNode).parent;
        const bool isDown = dstParent == from.node;
        if (from.isOutput && parent == edge.dstNode)
            reach(ref, {edge.dstNode, edge.dstIndex, true});
        if (from.isOutput ? parent == dstParent && !isDown : isDown)
            reach(ref, {edge.dstNode, edge.dstIndex, false});
    }
}

/// Adds what reads an output, and answers whether anything does.
bool Downstream::follow(const PortRef& output)
{
    bool isRead = false;
    QVector<PortRef> ports{output};
    for (int next = 0; next < ports.size(); ++next) {
        const PortRef port = ports.at(next);
        const int before = ports.size();
        step(port, ports);
        if (port.isOutput)
            continue;
        isRead = true;
        if (ports.size() > before)
            leadsInside.insert(port.node);
        if (port.node != kRoot && !reachedBy.contains(port.node)) {
            reachedBy.insert(port.node, port);
            nodes.append(port.node);
        }
    }
    return isRead;
}

int Downstream::nearestEnd(int start)
{
    nodes = {start};
    reachedBy.insert(start, PortRef());
    for (int next = 0; next < nodes.size(); ++next) {
        const int node = nodes.at(next);
        bool leadsOn = leadsInside.contains(node);
        const int numOutputs = snapshot.node(node).outputs.size();
        for (int i = 0; i < numOutputs; ++i) {
            const PortRef output{node, i, true};
            if (edgeFromInside(snapshot, output).removed)
                leadsOn |= follow(output);
        }
        if (!leadsOn && !snapshot.node(node).removed)
            return node;
    }
    return kNone;
}

QVector<PortRef> Downstream::pathBack(int end, int start) const
{
    QVector<PortRef> path;
    int node = end;
    for (int steps = nodes.size(); node != start && steps > 0; --steps)
        node = appendTrace(snapshot, reachedBy.value(node), path);
    return path;
}

} // namespace

struct Explainer::Impl
{
    explicit Impl(const Snapshot& explained)
        : snapshot(explained)
        , schedule(predictSchedule(explained))
        , paths(explained)
    {
    }

    QVector<PortRef> pathTo(int node, int& output) const;
    QVector<PortRef> cycleOf(const PortRef& from, const PortRef& to) const;
    PortRef sourceOf(int ref) const;
    PortRef destinationOf(int ref) const;

    QString nameOf(int ref) const;
    QString nameOf(const PortRef& port) const;
    QString listed(const QVector<PortRef>& ports) const;
    QString hint(const NodeExplanation& explanation) const;
    QString cause(const InputExplanation& explanation) const;
    QString verdict(const EdgeExplanation& explanation) const;
    QJsonObject json(const PortRef& port) const;
    QJsonArray json(const QVector<PortRef>& ports) const;

    const Snapshot& snapshot;
    const Schedule schedule;
    const Paths paths;
};

Explainer::Explainer(const Snapshot& snapshot)
    : impl(new Impl(snapshot))
{
}

Explainer::~Explainer() = default;

const Schedule& Explainer::schedule() const
{
    return impl->schedule;
}

const Paths& Explainer::paths() const
{
    return impl->paths;
}

// Nodes

/// The ports from what needs a node back to its output; `output` becomes the renderer's output.
QVector<PortRef> Explainer::Impl::pathTo(int node, int& output) const
{
    QVector<PortRef> inputs; // from the node on, with the flow
    PortRef by = lookUp(schedule.reachedBy, node);
    for (; by.node != kNone && !by.isOutput; by = lookUp(schedule.reachedBy, by.node))
        inputs.append(by);

    QVector<PortRef> path;
    output = by.index;
    if (by.isOutput)
        descend(snapshot, by, path);
    for (int i = inputs.size() - 1; i >= 0; --i)
        appendTrace(snapshot, inputs.at(i), path);
    return path;
}

NodeExplanation Explainer::node(int ref) const
{
    const Snapshot& snapshot = impl->snapshot;
    NodeExplanation explanation;
    explanation.node = ref;
    if (!exists(snapshot, ref))
        return explanation;

    const NodeRecord& record = snapshot.node(ref);
    explanation.enabled = snapshot.isLivePass(ref);
    explanation.position = impl->schedule.positions.at(ref);
    explanation.needed = impl->schedule.needed.at(ref);
    if (explanation.needed)
        explanation.path = impl->pathTo(ref, explanation.output);

    if (explanation.position >= 0) {
        explanation.state = NodeExplanation::Scheduled;
    } else if (record.removed) {
        explanation.state = NodeExplanation::Removed;
    } else if (!record.pass || ref == kRoot) {
        explanation.state = NodeExplanation::Group;
    } else if (explanation.needed) {
        explanation.state = NodeExplanation::Disabled;
    } else {
        explanation.state = NodeExplanation::NotNeeded;
        Downstream downstream(snapshot);
        const int end = downstream.nearestEnd(ref);
        explanation.nearest = end == kNone ? ref : end;
        explanation.nearestPath = downstream.pathBack(explanation.nearest, ref);
    }
    return explanation;
}

// Inputs

InputExplanation Explainer::input(int node, int index) const
{
    const Snapshot& snapshot = impl->snapshot;
    InputExplanation explanation;
    explanation.input = {node, index, false};
    explanation.end = explanation.input;
    if (!hasPort(snapshot, explanation.input))
        return explanation;

    PortRef& end = explanation.end;
    climb(snapshot, end, explanation.path);
    if (end.node == kRoot) {
        explanation.source = InputExplanation::Parameter;
        explanation.parameter = end.index;
        explanation.value = lookUp(snapshot.parameters, end.index);
        return explanation;
    }

    const bool fed = crossAndDescend(snapshot, end, explanation.path);
    if (fed && snapshot.isLivePass(end.node)) {
        explanation.source = InputExplanation::Output;
        return explanation;
    }

    explanation.source = InputExplanation::Default;
    explanation.value = snapshot.input(node, index).defaultValue;
    const NodeRecord& producer = snapshot.node(end.node);
    if (!fed)
        explanation.cause = InputExplanation::Unfed;
    else if (producer.pass)
        explanation.cause = InputExplanation::UpstreamDisabled;
    else if (producer.removed || producer.value >= 0)
        explanation.cause = InputExplanation::NotAPass;
    else
        explanation.cause = InputExplanation::NoPassBehind;
    return explanation;
}

// Edges

/// The ports from `from` back to `to` when the node of `to` lies upstream of that of `from`,
/// searched as Graph::precedes() does; nothing if it does not.
QVector<PortRef> Explainer::Impl::cycleOf(const PortRef& from, const PortRef& to) const
{
    QVector<int> nodes{from.node};
    QHash<int, PortRef> reachedBy;
    reachedBy.insert(from.node, PortRef());
    for (int next = 0; next < nodes.size() && !reachedBy.contains(to.node); ++next) {
        const int node = nodes.at(next);
        const int numInputs = snapshot.node(node).inputs.size();
        for (int i = 0; i < numInputs; ++i) {
            int source = node;
            int port = i;
            if (!snapshot.walkToSourceNode(source, port) || !exists(snapshot, source)
                || reachedBy.contains(source))
                continue;
            reachedBy.insert(source, {node, i, false});
            nodes.append(source);
        }
    }
    if (!reachedBy.contains(to.node))
        return {};

    QVector<PortRef> inputs; // with the flow
    for (PortRef by = reachedBy.value(to.node); by.node != kNone; by = reachedBy.value(by.node))
        inputs.append(by);
    QVector<PortRef> cycle{from};
    for (int i = inputs.size() - 1; i >= 0; --i)
        appendTrace(snapshot, inputs.at(i), cycle);
    cycle.append(to);
    return cycle;
}

EdgeExplanation Explainer::edge(const PortRef& from, const PortRef& to) const
{
    const Snapshot& snapshot = impl->snapshot;
    EdgeExplanation explanation;
    explanation.from = from;
    explanation.to = to;
    const auto answer = [&explanation](EdgeExplanation::Rule rule) {
        explanation.rule = rule;
        explanation.made = rule == EdgeExplanation::Accepted;
        return explanation;
    };

    const NodeRecord& src = snapshot.node(from.node);
    const NodeRecord& dst = snapshot.node(to.node);
    if (src.removed || dst.removed)
        return answer(EdgeExplanation::NoSuchNode);
    if (!hasPort(snapshot, from) || !hasPort(snapshot, to))
        return answer(EdgeExplanation::NoSuchPort);

    // Out of a group and into it the graph is told the child alone, so there is no other parent.
    const bool isUp = from.isOutput && to.isOutput;
    const bool isDown = !from.isOutput && !to.isOutput;
    if ((isUp && src.parent != to.node) || (isDown && dst.parent != from.node)
        || (!from.isOutput && to.isOutput))
        return answer(EdgeExplanation::NotRelated);

    explanation.fedBy = recordOf(snapshot, to).source;
    if (explanation.fedBy != kNone)
        return answer(EdgeExplanation::AlreadyFed);
    if (isUp || isDown)
        return answer(EdgeExplanation::Accepted);

    const QVector<int>& destinations = recordOf(snapshot, from).destinations;
    if (!destinations.isEmpty() && snapshot.kindOf(destinations.first()) != EdgeKind::Regular) {
        explanation.oldest = destinations.first();
        return answer(EdgeExplanation::LeavesGroup);
    }
    explanation.cycle = impl->cycleOf(from, to);
    if (!explanation.cycle.isEmpty())
        return answer(EdgeExplanation::Cycle);
    if (src.parent == dst.parent)
        return answer(EdgeExplanation::Accepted);
    answer(EdgeExplanation::NotRelated);
    explanation.made = true;
    return explanation;
}

PortRef Explainer::Impl::sourceOf(int ref) const
{
    const EdgeRecord& edge = snapshot.edge(ref);
    return {edge.srcNode, edge.srcIndex, snapshot.kindOf(ref) != EdgeKind::Down};
}

PortRef Explainer::Impl::destinationOf(int ref) const
{
    const EdgeRecord& edge = snapshot.edge(ref);
    const EdgeKind kind = snapshot.kindOf(ref);
    return {edge.dstNode, edge.dstIndex, kind == EdgeKind::Up || kind == EdgeKind::None};
}

// Texts

namespace {

QString latin1(const char* text)
{
    return QString(QLatin1String(text));
}

/// A value on one line, with its type if that is not plain to see.
QString shown(const QVariant& value)
{
    switch (static_cast<QMetaType::Type>(value.userType())) {
    case QMetaType::UnknownType:
        return latin1("no value");
    case QMetaType::Bool:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
        return value.toString();
    case QMetaType::Float:
    case QMetaType::Double:
        return numberText(value);
    case QMetaType::QString: {
        return compactJson(value.toString()); // quoted, so that it stays one line
    }
    default:
        break;
    }
    if (value.canConvert<ForeignValue>()) {
        const int longest = 60;
        const auto foreign = value.value<ForeignValue>();
        const QString json = compactJson(foreign.value);
        return (json.size() > longest ? latin1("a value") : json) + latin1(" of the type ")
            + foreign.type;
    }
    return latin1("a value of the type ") + latin1(value.typeName());
}

} // namespace

QString Explainer::Impl::nameOf(int ref) const
{
    if (ref == kRoot)
        return latin1("the renderer");
    return exists(snapshot, ref) ? paths.node(ref) : latin1("node ") + QString::number(ref);
}

/// A port with its side, as inputs and outputs may share a path.
QString Explainer::Impl::nameOf(const PortRef& port) const
{
    const char* const side = port.isOutput ? "output "
        : port.node == kRoot               ? "parameter "
                                           : "input ";
    const QString owner = exists(snapshot, port.node) ? QString() : nameOf(port.node);
    return latin1(side) + owner + paths.port(port);
}

QString Explainer::Impl::listed(const QVector<PortRef>& ports) const
{
    QString lines;
    for (const PortRef& port : ports)
        lines += latin1("  ") + nameOf(port) + QLatin1Char('\n');
    return lines;
}

/// What makes a pass run that nothing needs.
QString Explainer::Impl::hint(const NodeExplanation& explanation) const
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

QString Explainer::toText(const NodeExplanation& explanation) const
{
    const bool isRoot = explanation.node == kRoot;
    const QString name = isRoot ? latin1("The renderer") : impl->nameOf(explanation.node);
    const QString path = impl->listed(explanation.path);
    const bool isTarget = explanation.output < 0 && explanation.path.isEmpty();
    const QString needer = explanation.output >= 0
        ? latin1("the renderer's output ") + impl->paths.output(kRoot, explanation.output)
        : latin1("the target ") + impl->nameOf(impl->snapshot.target);

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
        const QString ways = impl->listed(explanation.nearestPath);
        return name + latin1(" does not run: no output of the renderer and no target leads to it")
            + (explanation.enabled ? latin1(". ") : latin1(", and it is disabled. "))
            + impl->hint(explanation)
            + (explanation.enabled ? QString() : latin1(" once it is enabled"))
            + (ways.isEmpty() ? latin1(".\n") : latin1(":\n")) + ways;
    }
    case NodeExplanation::Group:
        return name
            + latin1(isRoot                                                ? " is no pass"
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

/// Why an input takes its default.
QString Explainer::Impl::cause(const InputExplanation& explanation) const
{
    switch (explanation.cause) {
    case InputExplanation::NotDefault:
        break;
    case InputExplanation::Unfed:
        return latin1("nothing feeds ")
            + (explanation.end == explanation.input ? latin1("it")
                                                    : latin1("the ") + nameOf(explanation.end));
    case InputExplanation::NoPassBehind:
        return latin1("no pass is behind the ") + nameOf(explanation.end);
    case InputExplanation::UpstreamDisabled:
        return nameOf(explanation.end.node) + latin1(", which feeds it, is disabled");
    case InputExplanation::NotAPass:
        return nameOf(explanation.end.node) + latin1(", which feeds it, has no pass");
    }
    return latin1("no cause is known");
}

QString Explainer::toText(const InputExplanation& explanation) const
{
    const Snapshot& snapshot = impl->snapshot;
    const int node = explanation.input.node;
    const QString name = impl->paths.port(explanation.input);
    const bool isPass = snapshot.node(node).pass;
    const bool runs = impl->schedule.positions.value(node, kNone) >= 0;
    const QString takes = name + latin1(isPass ? runs ? " takes " : " would take " : " carries ");
    const QString way = explanation.path.size() > 1 ? latin1(":\n") + impl->listed(explanation.path)
                                                    : latin1(".\n");

    switch (explanation.source) {
    case InputExplanation::Parameter: {
        const QString now = latin1(" (") + shown(explanation.value) + latin1(" now)");
        if (node == kRoot)
            return name + latin1(" is a parameter of the renderer") + now + latin1(".\n");
        return takes + latin1("the ") + impl->nameOf(explanation.end) + now + way;
    }
    case InputExplanation::Output:
        return takes + latin1("the ") + impl->nameOf(explanation.end) + way;
    case InputExplanation::Default:
        return takes
            + (isPass ? latin1("its default (") + shown(explanation.value) + latin1(")")
                      : latin1("nothing"))
            + latin1(", as ") + impl->cause(explanation) + way;
    case InputExplanation::NoSuchInput:
        break;
    }
    if (!exists(snapshot, node))
        return latin1("There is no ") + impl->nameOf(node) + latin1(".\n");
    return (node == kRoot ? latin1("The renderer") : impl->nameOf(node))
        + latin1(" has no such input.\n");
}

/// What becomes of an edge, and why.
QString Explainer::Impl::verdict(const EdgeExplanation& explanation) const
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
        const bool noSource = !hasPort(snapshot, explanation.from);
        return refused + latin1("the ") + nameOf(noSource ? explanation.from : explanation.to)
            + latin1(" does not exist.\n");
    }
    case EdgeExplanation::AlreadyFed:
        return refused + paths.port(explanation.to) + latin1(" is fed by the ")
            + nameOf(sourceOf(explanation.fedBy)) + latin1(" already.\n");
    case EdgeExplanation::LeavesGroup:
        return refused + latin1("the oldest edge of ") + paths.port(explanation.from)
            + latin1(" leads to the ") + nameOf(destinationOf(explanation.oldest))
            + latin1(", not to a sibling.\n");
    case EdgeExplanation::Cycle:
        return refused + latin1("it would close a cycle:\n") + listed(explanation.cycle);
    case EdgeExplanation::NotRelated:
        if (explanation.made)
            return latin1(
                " is accepted but does not carry that output: the nodes are no siblings.\n");
        if (!explanation.to.isOutput)
            return refused + latin1("an input feeds another only from a group to its child.\n");
        if (explanation.from.isOutput)
            return refused + latin1("an output feeds another only from a child to its group.\n");
        return refused + latin1("no edge leads from an input to an output.\n");
    }
    return latin1(" is accepted.\n");
}

QString Explainer::toText(const EdgeExplanation& explanation) const
{
    return latin1("An edge from the ") + impl->nameOf(explanation.from) + latin1(" to the ")
        + impl->nameOf(explanation.to) + impl->verdict(explanation);
}

// JSON

QJsonObject Explainer::Impl::json(const PortRef& port) const
{
    return {{latin1(port.isOutput ? "output" : "input"), paths.port(port)}};
}

QJsonArray Explainer::Impl::json(const QVector<PortRef>& ports) const
{
    QJsonArray array;
    for (const PortRef& port : ports)
        array.append(json(port));
    return array;
}

namespace {

QString codeOf(NodeExplanation::State state)
{
    switch (state) {
    case NodeExplanation::Scheduled:
        return latin1("scheduled");
    case NodeExplanation::Disabled:
        return latin1("disabled");
    case NodeExplanation::NotNeeded:
        return latin1("not-needed");
    case NodeExplanation::Group:
        return latin1("group");
    case NodeExplanation::Removed:
        return latin1("removed");
    case NodeExplanation::Missing:
        break;
    }
    return latin1("missing");
}

QString codeOf(InputExplanation::Source source)
{
    switch (source) {
    case InputExplanation::Parameter:
        return latin1("parameter");
    case InputExplanation::Output:
        return latin1("output");
    case InputExplanation::Default:
        return latin1("default");
    case InputExplanation::NoSuchInput:
        break;
    }
    return latin1("no-such-input");
}

QString codeOf(InputExplanation::Cause cause)
{
    switch (cause) {
    case InputExplanation::NotDefault:
        break;
    case InputExplanation::Unfed:
        return latin1("unfed");
    case InputExplanation::NoPassBehind:
        return latin1("no-pass-behind");
    case InputExplanation::UpstreamDisabled:
        return latin1("upstream-disabled");
    case InputExplanation::NotAPass:
        return latin1("not-a-pass");
    }
    return latin1("not-default");
}

QString codeOf(EdgeExplanation::Rule rule)
{
    switch (rule) {
    case EdgeExplanation::Accepted:
        return latin1("accepted");
    case EdgeExplanation::NoSuchNode:
        break;
    case EdgeExplanation::NoSuchPort:
        return latin1("no-such-port");
    case EdgeExplanation::AlreadyFed:
        return latin1("already-fed");
    case EdgeExplanation::LeavesGroup:
        return latin1("leaves-group");
    case EdgeExplanation::Cycle:
        return latin1("cycle");
    case EdgeExplanation::NotRelated:
        return latin1("not-related");
    }
    return latin1("no-such-node");
}

QJsonValue jsonOf(const QVariant& value)
{
    return value.canConvert<ForeignValue>() ? value.value<ForeignValue>().value
                                            : QJsonValue::fromVariant(value);
}

} // namespace

QJsonObject Explainer::toJson(const NodeExplanation& explanation) const
{
    QJsonObject object{{latin1("node"), impl->paths.node(explanation.node)},
                       {latin1("state"), codeOf(explanation.state)}};
    if (explanation.state == NodeExplanation::Missing)
        return object;
    if (impl->snapshot.node(explanation.node).pass)
        object.insert(latin1("enabled"), explanation.enabled);
    if (explanation.position >= 0) {
        object.insert(latin1("position"), explanation.position);
        object.insert(latin1("of"), impl->schedule.order.size());
    }
    if (explanation.needed) {
        if (explanation.output >= 0)
            object.insert(latin1("output"), impl->paths.output(kRoot, explanation.output));
        else
            object.insert(latin1("target"), impl->paths.node(impl->snapshot.target));
        object.insert(latin1("path"), impl->json(explanation.path));
    }
    if (explanation.nearest != kNone) {
        object.insert(latin1("nearest"), impl->paths.node(explanation.nearest));
        object.insert(latin1("nearestPath"), impl->json(explanation.nearestPath));
    }
    return object;
}

QJsonObject Explainer::toJson(const InputExplanation& explanation) const
{
    QJsonObject object{{latin1("input"), impl->paths.port(explanation.input)},
                       {latin1("source"), codeOf(explanation.source)}};
    if (explanation.source == InputExplanation::NoSuchInput)
        return object;
    if (explanation.source == InputExplanation::Default)
        object.insert(latin1("cause"), codeOf(explanation.cause));
    if (explanation.source != InputExplanation::Output && explanation.value.isValid())
        object.insert(latin1("value"), jsonOf(explanation.value));
    object.insert(latin1("end"), impl->json(explanation.end));
    object.insert(latin1("path"), impl->json(explanation.path));
    return object;
}

QJsonObject Explainer::toJson(const EdgeExplanation& explanation) const
{
    QJsonObject object{{latin1("from"), impl->json(explanation.from)},
                       {latin1("to"), impl->json(explanation.to)},
                       {latin1("rule"), codeOf(explanation.rule)},
                       {latin1("made"), explanation.made}};
    if (explanation.rule == EdgeExplanation::AlreadyFed)
        object.insert(latin1("fedBy"), impl->json(impl->sourceOf(explanation.fedBy)));
    if (explanation.rule == EdgeExplanation::LeavesGroup)
        object.insert(latin1("oldest"), impl->json(impl->destinationOf(explanation.oldest)));
    if (explanation.rule == EdgeExplanation::Cycle)
        object.insert(latin1("cycle"), impl->json(explanation.cycle));
    return object;
}

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin
