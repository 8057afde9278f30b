// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "PathResolver.h"

#include "Errors.h"
#include "NearestNames.h"

#include <algorithm>
#include <utility>

namespace Kestrin::Orv::Program {

using Inspect::NodeRecord;
using Inspect::Paths;
using Inspect::PortRef;

namespace {

QString quoted(const QString& word)
{
    return QLatin1Char('"') + word + QLatin1Char('"');
}

/// "A, B or C", where the conjunction is "or". A long list ends with the number of omitted names.
QString listed(const QStringList& names, const char* conjunction)
{
    QStringList shown = names.mid(0, NearestNames::kMaximum);
    if (shown.size() < names.size())
        shown.append(QString::number(names.size() - shown.size()) + QLatin1String(" more"));
    if (shown.size() == 1)
        return shown.first();
    const QString last = shown.takeLast();
    return shown.join(QLatin1String(", ")) + QLatin1Char(' ') + QLatin1String(conjunction)
        + QLatin1Char(' ') + last;
}

} // namespace

PathResolver::PathResolver(QString name, const Inspect::Snapshot& graph, const Paths& graphPaths)
    : file(std::move(name))
    , snapshot(graph)
    , paths(graphPaths)
{
}

PathResolver::Match PathResolver::resolve(const QString& path) const
{
    const QVector<int> nodes = paths.findNodes(path);
    const QVector<PortRef> found = paths.findPorts(path);
    if (nodes.isEmpty() && found.isEmpty())
        throwUnknown(path, Anything);
    return {singleNode(path, nodes), singlePort(path, found, false), singlePort(path, found, true)};
}

int PathResolver::resolvePass(const QString& path) const
{
    const int node = singleNode(path, paths.findNodes(path));
    if (node < 0)
        throwUnknown(path, Node);
    if (!snapshot.node(node).pass)
        throw InputError(file, "no-pass",
                         (node == 0 ? QStringLiteral("the renderer") : path)
                             + QLatin1String(" is not a pass"));
    return node;
}

int PathResolver::resolveParameter(const QString& path) const
{
    const QVector<PortRef> found = paths.findPorts(path);
    if (found.isEmpty())
        throwUnknown(path, Parameter);
    const PortRef port = singlePort(path, found, false);
    if (port.node != 0)
        throw InputError(file, "no-parameter", path + QLatin1String(" is not a parameter"));
    return port.index;
}

QVector<PortRef> PathResolver::resolvePorts(const QString& path) const
{
    const QVector<PortRef> found = paths.findPorts(path);
    if (found.isEmpty())
        throwUnknown(path, Anything);
    return found;
}

int PathResolver::singleNode(const QString& path, const QVector<int>& nodes) const
{
    if (nodes.size() > 1) {
        QStringList matches;
        for (const int node : nodes)
            matches.append(paths.node(node));
        throwAmbiguous(path, matches);
    }
    return nodes.value(0, -1);
}

PortRef PathResolver::singlePort(const QString& path, const QVector<PortRef>& ports,
                                 bool isOutput) const
{
    QVector<PortRef> chosen;
    std::copy_if(ports.begin(), ports.end(), std::back_inserter(chosen),
                 [isOutput](const PortRef& port) { return port.isOutput == isOutput; });
    if (chosen.size() > 1) {
        QStringList matches;
        for (const PortRef& port : qAsConst(chosen))
            matches.append(paths.port(port));
        throwAmbiguous(path, matches);
    }
    return chosen.value(0);
}

void PathResolver::throwAmbiguous(const QString& path, const QStringList& matches) const
{
    throw InputError(file, "ambiguous-name",
                     quoted(path) + QLatin1String(" is ambiguous: it matches ")
                         + listed(matches, "and"),
                     matches);
}

void PathResolver::throwUnknown(const QString& path, Kind kind) const
{
    const int dot = kind == Anything ? path.lastIndexOf(QLatin1Char('.')) : -1;
    const QString nodePath = path.left(dot);
    const QVector<int> nodes = dot > 0 ? paths.findNodes(nodePath) : QVector<int>();

    QString text = QLatin1String(kind == Node            ? "there is no node "
                                     : kind == Parameter ? "there is no parameter "
                                     : dot > 0           ? "there is no node "
                                                         : "there is no node or port ")
        + quoted(nodePath);
    QStringList candidates;
    if (!nodes.isEmpty()) {
        text = nodePath + QLatin1String(" has no port ") + quoted(path.mid(dot + 1));
        candidates = nearestPorts(nodes.first(), path.mid(dot + 1));
    } else {
        if (kind != Parameter)
            candidates = nearestNodes(nodePath);
        if (kind != Node && dot < 0)
            candidates += nearestPorts(0, path);
    }
    if (!candidates.isEmpty())
        text += QLatin1String("; did you mean ") + listed(candidates, "or") + QLatin1Char('?');
    throw InputError(file, "unknown-name", text, candidates);
}

QStringList PathResolver::nearestNodes(const QString& path) const
{
    const int slash = path.lastIndexOf(QLatin1Char('/'));
    const QVector<int> parents = paths.findNodes(path.left(qMax(slash, 0)));
    NearestNames nearest(path.mid(slash + 1));
    for (int node = 1; node < snapshot.nodes.size(); ++node) {
        const NodeRecord& record = snapshot.nodes.at(node);
        if (!record.removed)
            nearest.add(record.name, node, parents.contains(record.parent) ? 0 : 1);
    }
    QStringList found;
    for (const int node : nearest.ids())
        found.append(paths.node(node));
    return found;
}

QStringList PathResolver::nearestPorts(int node, const QString& name) const
{
    const NodeRecord& record = snapshot.node(node);
    const int numInputs = record.inputs.size();
    NearestNames nearest(name);
    for (int i = 0; i < numInputs; ++i)
        nearest.add(record.inputs.at(i).name, i, 0);
    for (int i = 0; i < record.outputs.size(); ++i)
        nearest.add(record.outputs.at(i).name, numInputs + i, 0);
    QStringList found;
    for (const int id : nearest.ids())
        found.append(id < numInputs ? paths.input(node, id) : paths.output(node, id - numInputs));
    found.removeDuplicates();
    return found;
}

} // namespace Kestrin::Orv::Program
