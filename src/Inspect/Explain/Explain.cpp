// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Explain/Downstream.h"
#include "Explain/ExplainerImpl.h"
#include "Model/LookUp.h"
#include "Rules/Route.h"
#include "Rules/UpstreamSearch.h"

namespace Kestrin {
namespace Orv {
namespace Inspect {

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
static QVector<PortRef> pathTo(const Snapshot& snapshot, const Schedule& schedule, int node,
                               int& output)
{
    QVector<PortRef> inputs; // from the node on, with the flow
    PortRef by = lookUp(schedule.reachedBy, node);
    for (; by.node != kNone && !by.isOutput; by = lookUp(schedule.reachedBy, by.node))
        inputs.append(by);

    QVector<PortRef> path;
    output = by.index;
    if (by.isOutput)
        appendDown(snapshot, by, path);
    for (int i = inputs.size() - 1; i >= 0; --i)
        appendToSource(snapshot, inputs.at(i), path);
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
        explanation.path = pathTo(snapshot, impl->schedule, ref, explanation.output);

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
        const DownstreamEnd end = nearestEnd(snapshot, ref);
        explanation.nearest = end.node == kNone ? ref : end.node;
        explanation.nearestPath = end.route;
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
    if (!snapshot.hasPort(explanation.input))
        return explanation;

    PortRef& end = explanation.end;
    appendUp(snapshot, end, explanation.path);
    end = explanation.path.last();
    if (end.node == kRoot) {
        explanation.source = InputExplanation::Parameter;
        explanation.parameter = end.index;
        explanation.value = lookUp(snapshot.parameters, end.index);
        return explanation;
    }

    const bool fed = appendAcross(snapshot, end, explanation.path);
    end = explanation.path.last();
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

/// The ports from `from` back to `to` if the node of `to` lies upstream of that of `from`; empty if
/// it does not.
static QVector<PortRef> cycleOf(const Snapshot& snapshot, const PortRef& from, const PortRef& to)
{
    UpstreamSearch search(snapshot);
    if (!search.find(to.node, from.node))
        return {};
    const QVector<PortRef> inputs = search.inputs();
    QVector<PortRef> cycle{from};
    for (int i = inputs.size() - 1; i >= 0; --i)
        appendToSource(snapshot, inputs.at(i), cycle);
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
    if (!snapshot.hasPort(from) || !snapshot.hasPort(to))
        return answer(EdgeExplanation::NoSuchPort);

    // Graph::addUpEdge() and addDownEdge() take the child alone: its parent is the group.
    const bool isUp = from.isOutput && to.isOutput;
    const bool isDown = !from.isOutput && !to.isOutput;
    if ((isUp && src.parent != to.node) || (isDown && dst.parent != from.node)
        || (!from.isOutput && to.isOutput))
        return answer(EdgeExplanation::NotRelated);

    explanation.fedBy = snapshot.port(to).source;
    if (explanation.fedBy != kNone)
        return answer(EdgeExplanation::AlreadyFed);
    if (isUp || isDown)
        return answer(EdgeExplanation::Accepted);

    const QVector<int>& destinations = snapshot.port(from).destinations;
    if (!destinations.isEmpty() && snapshot.kindOf(destinations.first()) != EdgeKind::Regular) {
        explanation.oldest = destinations.first();
        return answer(EdgeExplanation::LeavesGroup);
    }
    explanation.cycle = cycleOf(snapshot, from, to);
    if (!explanation.cycle.isEmpty())
        return answer(EdgeExplanation::Cycle);
    if (src.parent == dst.parent)
        return answer(EdgeExplanation::Accepted);
    answer(EdgeExplanation::NotRelated);
    explanation.made = true;
    return explanation;
}

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin
