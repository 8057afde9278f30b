// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Names.h"

#include "Trouble.h"

#include <algorithm>
#include <utility>

namespace Kestrin::Orv::Program {

using Inspect::NodeRecord;
using Inspect::Paths;
using Inspect::PortRef;

namespace {

const int kMostCandidates = 5;

/// How many letters it takes to make one word of the other, each put in, left out, replaced or
/// swapped with its neighbour; `limit` + 1 if they are more than that.
int distance(const QString& a, const QString& b, int limit)
{
    const int tooFar = limit + 1;
    if (qAbs(a.size() - b.size()) > limit)
        return tooFar;
    // Row by row through the table of the distances of all beginnings, within `limit` of its
    // diagonal.
    QVector<int> beforeLast(b.size() + 1, tooFar);
    QVector<int> last(b.size() + 1, tooFar);
    QVector<int> row(b.size() + 1, tooFar);
    for (int j = 0; j <= qMin(limit, b.size()); ++j)
        row[j] = j;
    for (int i = 1; i <= a.size(); ++i) {
        beforeLast.swap(last);
        last.swap(row);
        const int first = qMax(1, i - limit);
        const int end = qMin(b.size(), i + limit);
        row[first - 1] = first == 1 ? qMin(i, tooFar) : tooFar;
        int best = row.at(first - 1);
        for (int j = first; j <= end; ++j) {
            const bool same = a.at(i - 1) == b.at(j - 1);
            int steps = qMin(last.at(j - 1) + (same ? 0 : 1), qMin(last.at(j), row.at(j - 1)) + 1);
            if (i > 1 && j > 1 && a.at(i - 1) == b.at(j - 2) && a.at(i - 2) == b.at(j - 1))
                steps = qMin(steps, beforeLast.at(j - 2) + 1);
            row[j] = qMin(steps, tooFar);
            best = qMin(best, steps);
        }
        if (end < b.size())
            row[end + 1] = tooFar;
        if (best > limit && i > 1)
            return tooFar;
    }
    return row.at(b.size());
}

/// Looks for names that are much like another, and keeps the first ones among the best.
class Nearest
{
public:
    explicit Nearest(const QString& path)
        : wanted(path.left(path.indexOf(QLatin1Char('['))).toCaseFolded())
        , limit(qBound(1, wanted.size() / 3, 3))
    {
    }

    /// \param rank among names that are equally like it, lower ones come first.
    void look(const QString& name, int id, int rank)
    {
        const int far = distance(wanted, Paths::escaped(name).toCaseFolded(), limit);
        if (far > limit)
            return;
        const Hit hit{far, rank, id};
        hits.insert(std::upper_bound(hits.begin(), hits.end(), hit), hit);
        if (hits.size() > kMostCandidates)
            hits.removeLast();
    }

    QVector<int> ids() const
    {
        QVector<int> all;
        for (const Hit& hit : hits)
            all.append(hit.id);
        return all;
    }

private:
    struct Hit
    {
        int far;
        int rank;
        int id;
        bool operator<(const Hit& other) const
        {
            return far != other.far ? far < other.far : rank < other.rank;
        }
    };

    QString wanted;
    int limit;
    QVector<Hit> hits;
};

/// What stands on the command line, as it stands there.
QString quoted(const QString& word)
{
    return QLatin1Char('"') + word + QLatin1Char('"');
}

QString listed(const QStringList& candidates)
{
    QStringList shown = candidates.mid(0, kMostCandidates);
    if (shown.size() < candidates.size())
        shown.append(QString::number(candidates.size() - shown.size()) + QLatin1String(" more"));
    return shown.join(QLatin1String(", "));
}

} // namespace

Names::Names(QString name, const Inspect::Snapshot& named, const Paths& pathsOfNamed)
    : file(std::move(name))
    , snapshot(named)
    , paths(pathsOfNamed)
{
}

Names::Meaning Names::anything(const QString& path) const
{
    const QVector<int> nodes = paths.findNodes(path);
    const QVector<PortRef> found = paths.findPorts(path);
    if (nodes.isEmpty() && found.isEmpty())
        throwUnknown(path, Anything);
    return {oneNode(path, nodes), onePort(path, found, false), onePort(path, found, true)};
}

int Names::pass(const QString& path) const
{
    const int node = oneNode(path, paths.findNodes(path));
    if (node < 0)
        throwUnknown(path, Node);
    if (!snapshot.node(node).pass)
        throw BadInput(file, "no-pass",
                       (node == 0 ? QStringLiteral("the root") : path)
                           + QLatin1String(" is no pass"));
    return node;
}

int Names::parameter(const QString& path) const
{
    const QVector<PortRef> found = paths.findPorts(path);
    if (found.isEmpty())
        throwUnknown(path, Parameter);
    const PortRef port = onePort(path, found, false);
    if (port.node != 0)
        throw BadInput(file, "no-parameter", path + QLatin1String(" is no parameter"));
    return port.index;
}

QVector<PortRef> Names::ports(const QString& path) const
{
    const QVector<PortRef> found = paths.findPorts(path);
    if (found.isEmpty())
        throwUnknown(path, Anything);
    return found;
}

int Names::oneNode(const QString& path, const QVector<int>& nodes) const
{
    if (nodes.size() > 1) {
        QStringList meanings;
        for (const int node : nodes)
            meanings.append(paths.node(node));
        throwAmbiguous(path, meanings);
    }
    return nodes.value(0, -1);
}

PortRef Names::onePort(const QString& path, const QVector<PortRef>& ports, bool isOutput) const
{
    QVector<PortRef> chosen;
    std::copy_if(ports.begin(), ports.end(), std::back_inserter(chosen),
                 [isOutput](const PortRef& port) { return port.isOutput == isOutput; });
    if (chosen.size() > 1) {
        QStringList meanings;
        for (const PortRef& port : qAsConst(chosen))
            meanings.append(paths.port(port));
        throwAmbiguous(path, meanings);
    }
    return chosen.value(0);
}

void Names::throwAmbiguous(const QString& path, const QStringList& meanings) const
{
    throw BadInput(file, "ambiguous-name",
                   quoted(path) + QLatin1String(" may mean ") + listed(meanings), meanings);
}

void Names::throwUnknown(const QString& path, Kind kind) const
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
        text += QLatin1String("; there is ") + listed(candidates);
    throw BadInput(file, "unknown-name", text, candidates);
}

QStringList Names::nearestNodes(const QString& path) const
{
    const int slash = path.lastIndexOf(QLatin1Char('/'));
    const QVector<int> parents = paths.findNodes(path.left(qMax(slash, 0)));
    Nearest nearest(path.mid(slash + 1));
    for (int node = 1; node < snapshot.nodes.size(); ++node) {
        const NodeRecord& record = snapshot.nodes.at(node);
        if (!record.removed)
            nearest.look(record.name, node, parents.contains(record.parent) ? 0 : 1);
    }
    QStringList found;
    for (const int node : nearest.ids())
        found.append(paths.node(node));
    return found;
}

QStringList Names::nearestPorts(int node, const QString& name) const
{
    const NodeRecord& record = snapshot.node(node);
    const int numInputs = record.inputs.size();
    Nearest nearest(name);
    for (int i = 0; i < numInputs; ++i)
        nearest.look(record.inputs.at(i).name, i, 0);
    for (int i = 0; i < record.outputs.size(); ++i)
        nearest.look(record.outputs.at(i).name, numInputs + i, 0);
    QStringList found;
    for (const int id : nearest.ids())
        found.append(id < numInputs ? paths.input(node, id) : paths.output(node, id - numInputs));
    found.removeDuplicates();
    return found;
}

} // namespace Kestrin::Orv::Program
