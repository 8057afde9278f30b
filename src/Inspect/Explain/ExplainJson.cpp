// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Explain/ExplainerImpl.h"

#include <Kestrin/Orv/Inspect/ForeignValue.h>

#include <QtCore/QJsonArray>
#include <QtCore/QJsonObject>
#include <QtCore/QJsonValue>

namespace Kestrin {
namespace Orv {
namespace Inspect {

namespace {

QString latin1(const char* text)
{
    return QString(QLatin1String(text));
}

QJsonObject jsonOf(const PortRef& port, const Paths& paths)
{
    return {{latin1(port.isOutput ? "output" : "input"), paths.port(port)}};
}

QJsonArray jsonOf(const QVector<PortRef>& ports, const Paths& paths)
{
    QJsonArray array;
    for (const PortRef& port : ports)
        array.append(jsonOf(port, paths));
    return array;
}

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
        object.insert(latin1("path"), jsonOf(explanation.path, impl->paths));
    }
    if (explanation.nearest != kNone) {
        object.insert(latin1("nearest"), impl->paths.node(explanation.nearest));
        object.insert(latin1("nearestPath"), jsonOf(explanation.nearestPath, impl->paths));
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
    object.insert(latin1("end"), jsonOf(explanation.end, impl->paths));
    object.insert(latin1("path"), jsonOf(explanation.path, impl->paths));
    return object;
}

QJsonObject Explainer::toJson(const EdgeExplanation& explanation) const
{
    QJsonObject object{{latin1("from"), jsonOf(explanation.from, impl->paths)},
                       {latin1("to"), jsonOf(explanation.to, impl->paths)},
                       {latin1("rule"), codeOf(explanation.rule)},
                       {latin1("made"), explanation.made}};
    if (explanation.rule == EdgeExplanation::AlreadyFed)
        object.insert(latin1("fedBy"),
                      jsonOf(impl->snapshot.sourceOf(explanation.fedBy), impl->paths));
    if (explanation.rule == EdgeExplanation::LeavesGroup)
        object.insert(latin1("oldest"),
                      jsonOf(impl->snapshot.destinationOf(explanation.oldest), impl->paths));
    if (explanation.rule == EdgeExplanation::Cycle)
        object.insert(latin1("cycle"), jsonOf(explanation.cycle, impl->paths));
    return object;
}

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin
