// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include <Kestrin/Orv/Inspect/Diff.h>

#include "Diff/DiffSide.h"
#include "Diff/NodeMatcher.h"
#include "Diff/ValueDifference.h"
#include "Model/ValueText.h"

#include <QtCore/QJsonObject>
#include <QtCore/QStringList>

#include <algorithm>

namespace Kestrin {
namespace Orv {
namespace Inspect {

namespace {

/// All codes; kCodes has their texts.
enum Code {
    DefaultChanged,
    EnabledChanged,
    InputAdded,
    InputRemoved,
    InputRenamed,
    InputRewired,
    InputsReordered,
    NodeAdded,
    NodeMoved,
    NodeRemoved,
    NodeRenamed,
    NodeValueChanged,
    OutputAdded,
    OutputRemoved,
    OutputRenamed,
    OutputRewired,
    OutputsReordered,
    ParameterAdded,
    ParameterChanged,
    ParameterRemoved,
    ParameterRenamed,
    ParametersReordered,
    PortGroupChanged,
    PortGroupsChanged,
    TargetChanged,
    TypeChanged,
    NumCodes
};

const char* const kCodes[] = {
    "default-changed",   "enabled-changed",      "input-added",        "input-removed",
    "input-renamed",     "input-rewired",        "inputs-reordered",   "node-added",
    "node-moved",        "node-removed",         "node-renamed",       "node-value-changed",
    "output-added",      "output-removed",       "output-renamed",     "output-rewired",
    "outputs-reordered", "parameter-added",      "parameter-changed",  "parameter-removed",
    "parameter-renamed", "parameters-reordered", "port-group-changed", "port-groups-changed",
    "target-changed",    "type-changed",
};
static_assert(sizeof kCodes / sizeof *kCodes == NumCodes, "a text for each code");

/// A name as a part of a path.
QString nameText(const QString& name)
{
    return name.isEmpty() ? QLatin1String("[unnamed]") : Paths::escaped(name);
}

QString namesText(const QVector<QString>& names)
{
    QStringList escaped;
    for (const QString& name : names)
        escaped.append(nameText(name));
    return escaped.join(QLatin1String(", "));
}

/// Lists the changes between two sides whose nodes and ports have been matched.
class Comparison
{
public:
    Comparison(const DiffSide& older, const DiffSide& newer)
        : before(older)
        , after(newer)
    {
    }

    QVector<Change> run()
    {
        compareTarget();
        for (const int node : after.nodes()) {
            if (after.isMatched(node))
                compareNodes(after.match(node), node);
            else
                add(NodeAdded, after.paths().node(node), QString(), kindText(after.node(node)));
        }
        for (const int node : before.nodes()) {
            if (!before.isMatched(node))
                add(NodeRemoved, before.paths().node(node), kindText(before.node(node)), QString());
        }
        return changes;
    }

private:
    void add(Code code, const QString& path, const QString& was, const QString& is)
    {
        changes.append({QLatin1String(kCodes[code]), path, was, is});
    }

    void addNode(Code code, int newer, const QString& was, const QString& is)
    {
        add(code, after.paths().node(newer), was, is);
    }

    static QString kindText(const NodeRecord& node)
    {
        if (!node.pass)
            return QLatin1String("group");
        return node.type.isEmpty() ? QLatin1String("pass")
                                   : QLatin1String("pass of type ") + oneLine(node.type);
    }

    void compareTarget()
    {
        const int older = before.isListed(before.snapshot().target) ? before.snapshot().target : -1;
        const int newer = after.isListed(after.snapshot().target) ? after.snapshot().target : -1;
        const bool same = newer < 0 ? older < 0 : after.match(newer) == older;
        if (!same)
            add(TargetChanged, QString(), targetText(before, older), targetText(after, newer));
    }

    static QString targetText(const DiffSide& side, int node)
    {
        return node == 0 ? QLatin1String("[root]") : side.paths().node(node);
    }

    void compareNodes(int older, int newer)
    {
        const NodeRecord& was = before.node(older);
        const NodeRecord& is = after.node(newer);
        if (newer != 0 && before.match(was.parent) != is.parent)
            addNode(NodeMoved, newer, before.paths().node(older), after.paths().node(newer));
        if (was.name != is.name)
            addNode(NodeRenamed, newer, nameText(was.name), nameText(is.name));
        if (was.type != is.type)
            addNode(TypeChanged, newer, oneLine(was.type), oneLine(is.type));
        if (is.pass && was.enabled != is.enabled)
            addNode(EnabledChanged, newer, enabledText(was), enabledText(is));
        if (!is.pass && was.value != is.value)
            addNode(NodeValueChanged, newer, QString::number(was.value), QString::number(is.value));
        if (was.groups != is.groups)
            addNode(PortGroupsChanged, newer, namesText(was.groups), namesText(is.groups));
        comparePorts(older, newer, false);
        comparePorts(older, newer, true);
    }

    static QString enabledText(const NodeRecord& node)
    {
        return node.enabled ? QLatin1String("enabled") : QLatin1String("disabled");
    }

    struct Codes
    {
        Code added;
        Code removed;
        Code renamed;
        Code reordered;
    };

    static const Codes& codesOf(int node, bool isOutput)
    {
        static const Codes inputs{InputAdded, InputRemoved, InputRenamed, InputsReordered};
        static const Codes outputs{OutputAdded, OutputRemoved, OutputRenamed, OutputsReordered};
        static const Codes parameters{ParameterAdded, ParameterRemoved, ParameterRenamed,
                                      ParametersReordered};
        return isOutput ? outputs : node == 0 ? parameters : inputs;
    }

    void comparePorts(int older, int newer, bool isOutput)
    {
        const Codes& codes = codesOf(newer, isOutput);
        const QVector<PortRecord>& olderPorts = before.ports(older, isOutput);
        const QVector<PortRecord>& newerPorts = after.ports(newer, isOutput);
        Table<int> order; // the older indices of the ports that stay, in the newer order
        for (int i = 0; i < newerPorts.size(); ++i) {
            const PortRef port{newer, i, isOutput};
            if (!after.isMatched(port)) {
                add(codes.added, after.paths().port(port), QString(), portText(after, port));
                continue;
            }
            const PortRef match = after.match(port);
            order.push_back(match.index);
            const QString& was = olderPorts.at(match.index).name;
            const QString& is = newerPorts.at(i).name;
            if (was != is)
                add(codes.renamed, after.paths().port(port), nameText(was), nameText(is));
            comparePort(match, port);
        }
        for (int i = 0; i < olderPorts.size(); ++i) {
            const PortRef port{older, i, isOutput};
            if (!before.isMatched(port))
                add(codes.removed, before.paths().port(port), portText(before, port), QString());
        }
        if (!std::is_sorted(order.begin(), order.end())) {
            QVector<QString> is;
            for (const int index : order)
                is.append(newerPorts.at(before.match({older, index, isOutput}).index).name);
            std::sort(order.begin(), order.end());
            QVector<QString> was;
            for (const int index : order)
                was.append(olderPorts.at(index).name);
            addNode(codes.reordered, newer, namesText(was), namesText(is));
        }
    }

    /// The value of a parameter, or what feeds another port.
    static QString portText(const DiffSide& side, const PortRef& port)
    {
        if (port.node == 0 && !port.isOutput)
            return typedValueText(side.snapshot().parameters.value(port.index));
        const PortRef feeder = side.feeder(port);
        if (feeder.node >= 0)
            return QLatin1String("fed by ") + side.paths().port(feeder);
        return QLatin1String("unfed");
    }

    void comparePort(const PortRef& older, const PortRef& newer)
    {
        const PortRecord& was = before.ports(older.node, older.isOutput).at(older.index);
        const PortRecord& is = after.ports(newer.node, newer.isOutput).at(newer.index);
        const PortRef olderFeeder = before.feeder(older);
        const PortRef newerFeeder = after.feeder(newer);
        if (!isSameFeeder(olderFeeder, newerFeeder))
            add(newer.isOutput ? OutputRewired : InputRewired, after.paths().port(newer),
                feederText(before, olderFeeder), feederText(after, newerFeeder));
        if (newer.node == 0 && !newer.isOutput)
            compareValues(ParameterChanged, newer, before.snapshot().parameters.value(older.index),
                          after.snapshot().parameters.value(newer.index));
        else if (!newer.isOutput)
            compareValues(DefaultChanged, newer, was.defaultValue, is.defaultValue);
        comparePortGroups(older.node, was.group, newer, is.group);
    }

    static QString feederText(const DiffSide& side, const PortRef& feeder)
    {
        return feeder.node < 0 ? QString() : side.paths().port(feeder);
    }

    /// Whether two feeders are the same. An edge may name a port that its node does not have: two
    /// such ports are the same if their nodes are the same and their indices are equal.
    bool isSameFeeder(const PortRef& older, const PortRef& newer) const
    {
        if (older.node < 0 || newer.node < 0)
            return older.node < 0 && newer.node < 0;
        if (after.snapshot().hasPort(newer))
            return after.match(newer) == older;
        return !before.snapshot().hasPort(older) && after.match(newer.node) == older.node
            && newer.index == older.index && newer.isOutput == older.isOutput;
    }

    void compareValues(Code code, const PortRef& port, const QVariant& was, const QVariant& is)
    {
        if (!isSameValue(was, is))
            add(code, after.paths().port(port), typedValueText(was), typedValueText(is));
    }

    void comparePortGroups(int older, int was, const PortRef& port, int is)
    {
        const QVector<QString>& olderNames = before.node(older).groups;
        const QVector<QString>& newerNames = after.node(port.node).groups;
        const QString wasText = groupText(olderNames, was);
        const QString isText = groupText(newerNames, is);
        if (wasText != isText || (was != is && olderNames == newerNames))
            add(PortGroupChanged, after.paths().port(port), wasText, isText);
    }

    static QString groupText(const QVector<QString>& names, int group)
    {
        if (group == -1)
            return QString();
        if (group < 0 || group >= names.size())
            return QLatin1Char('[') + QString::number(group) + QLatin1Char(']');
        return nameText(names.at(group));
    }

    const DiffSide& before;
    const DiffSide& after;
    QVector<Change> changes;
};

} // namespace

QVector<QString> diffCodes()
{
    QVector<QString> codes;
    for (const char* code : kCodes)
        codes.append(QLatin1String(code));
    return codes;
}

QVector<Change> diff(const Snapshot& before, const Snapshot& after)
{
    DiffSide older(before);
    DiffSide newer(after);
    if (older.nodes().empty() || newer.nodes().empty())
        return {};
    NodeMatcher(older, newer).run();
    return Comparison(older, newer).run();
}

QString toText(const QVector<Change>& changes)
{
    const auto shown = [](const QString& text) {
        return text.isEmpty() ? QLatin1String("nothing") : text;
    };
    QString text;
    for (const Change& change : changes) {
        text += change.code;
        if (!change.path.isEmpty())
            text += QLatin1Char(' ') + change.path;
        text += QLatin1String(": ") + shown(change.before) + QLatin1String(" -> ")
            + shown(change.after) + QLatin1Char('\n');
    }
    return text;
}

QJsonArray toJson(const QVector<Change>& changes)
{
    QJsonArray array;
    for (const Change& change : changes) {
        array.append(QJsonObject{{QLatin1String("code"), change.code},
                                 {QLatin1String("path"), change.path},
                                 {QLatin1String("before"), change.before},
                                 {QLatin1String("after"), change.after}});
    }
    return array;
}

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin
