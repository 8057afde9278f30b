// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Document/EdgeReader.h"

#include "Model/ValueText.h"

#include <QtCore/QStringList>

namespace Kestrin {
namespace Orv {
namespace Inspect {

/// The start of a problem's text: the edge.
QString EdgeReader::startOf(int item) const
{
    return quoted(syntax.string(item)) + QLatin1String(": ");
}

bool EdgeReader::readEnd(const QString& path, int item, const QString& where, End& end)
{
    const int dot = path.lastIndexOf(QLatin1Char('.'));
    end.nodePath = path.left(qMax(dot, 0));
    end.port = parsePathSegment(path.mid(dot + 1));
    if (!end.port.valid || dot == 0) {
        syntax.report(item, "bad-path",
                      where + quoted(path) + QLatin1String(" is not the path of a port"));
        return false;
    }
    end.node = nodes.find(end.nodePath, item, where);
    return end.node >= 0;
}

const Positions& EdgeReader::portsByName(int node, bool isOutput)
{
    const auto key = qMakePair(node, isOutput);
    auto ports = portPositions.find(key);
    if (ports == portPositions.end()) {
        const NodeRecord& record = snapshot.nodes.at(node);
        ports = portPositions.insert(key, positionsOf(isOutput ? record.outputs : record.inputs));
    }
    return *ports;
}

/// The index of the port at one end of an edge; -1, and a problem, if there is none.
int EdgeReader::findPort(const End& end, bool isOutput, int item, const QString& where)
{
    const QVector<int> all = portsByName(end.node, isOutput).value(end.port.name);
    const int ordinal = end.port.ordinal;
    if (ordinal >= 0 ? ordinal < all.size() : all.size() == 1)
        return all.at(qMax(ordinal, 0));

    const NodeIndex::Entry& entry = nodes.entry(end.node);
    if (isOutput ? !entry.hasAllOutputs : !entry.hasAllInputs)
        return -1; // it may be one that could not be read
    const QString port = QString::number(end.node) + QLatin1Char(isOutput ? '>' : '<')
        + QString::number(ordinal) + end.port.name;
    if (!reportedPorts.contains(port)) {
        reportedPorts.insert(port);
        reportPort(end, isOutput, ordinal < 0 && !all.isEmpty(), item, where);
    }
    return -1;
}

void EdgeReader::reportPort(const End& end, bool isOutput, bool isAmbiguous, int item,
                            const QString& where)
{
    const bool isRoot = end.node == 0;
    const QLatin1String side(isOutput ? "output" : isRoot ? "parameter" : "input");
    const QString owner = isRoot ? QLatin1String("the renderer") : quoted(end.nodePath);
    if (isAmbiguous)
        syntax.report(item, "ambiguous-port",
                      where + owner + QLatin1String(" has several ") + side
                          + QLatin1String("s called ") + quoted(end.port.name)
                          + QLatin1String(": give a number, as in ")
                          + quoted(pathSegmentText(end.port.name, 0)));
    else
        syntax.report(item, "unknown-port",
                      where + owner + QLatin1String(" has no ") + side + QLatin1Char(' ')
                          + (end.port.ordinal > 0
                                 ? quoted(pathSegmentText(end.port.name, end.port.ordinal))
                                 : quoted(end.port.name)));
}

void EdgeReader::read(int item)
{
    QString edge;
    if (!syntax.readString(item, "an edge", edge))
        return;
    const QString where = startOf(item);
    const QStringList ends = edge.split(QLatin1String(" -> "));
    if (ends.size() != 2) {
        syntax.report(item, "bad-edge",
                      where + QLatin1String("an edge is written as \"FROM -> TO\""));
        return;
    }
    End from;
    End to;
    const bool hasFrom = readEnd(ends.first(), item, where, from);
    const bool hasTo = readEnd(ends.last(), item, where, to);
    if (!hasFrom || !hasTo)
        return;
    const EdgeKind kind = snapshot.kindBetween(from.node, to.node);
    if (kind == EdgeKind::None) {
        syntax.report(
            item, "unrelated-nodes",
            where + QLatin1String("the nodes are neither siblings nor a group and its child"));
        return;
    }
    EdgeRecord record;
    record.srcNode = from.node;
    record.srcIndex = findPort(from, kind != EdgeKind::Down, item, where);
    record.dstNode = to.node;
    record.dstIndex = findPort(to, kind == EdgeKind::Up, item, where);
    if (record.srcIndex < 0 || record.dstIndex < 0)
        return;
    edges.append(record);
    items.push_back(item);
}

QVector<Place> EdgeReader::addAll()
{
    QVector<Place> places;
    EdgeCheck check(snapshot, edges);
    const Paths paths(snapshot);
    for (int i = 0; i < edges.size(); ++i) {
        const EdgeCheck::Verdict verdict = check.add(edges.at(i));
        if (verdict == EdgeCheck::Accepted)
            places.append(syntax.place(at(items, i)));
        else
            reportRefused(i, verdict, check, paths);
    }
    return places;
}

void EdgeReader::reportRefused(int edge, EdgeCheck::Verdict verdict, const EdgeCheck& check,
                               const Paths& paths)
{
    const int item = at(items, edge);
    const EdgeRecord& record = edges.at(edge);
    const EdgeKind kind = snapshot.kindBetween(record.srcNode, record.dstNode);
    const PortRef from = Snapshot::sourceOf(record, kind);
    const PortRef to = Snapshot::destinationOf(record, kind);
    if (verdict == EdgeCheck::AlreadyFed) {
        const PortRef feeder = snapshot.sourceOf(snapshot.port(to).source);
        syntax.report(item, "already-fed",
                      startOf(item) + paths.port(to) + QLatin1String(" is already fed by ")
                          + paths.port(feeder));
    } else if (verdict == EdgeCheck::LeavesGroup) {
        const int oldest = snapshot.port(from).destinations.value(0, -1);
        syntax.report(
            item, "leaves-group",
            startOf(item) + paths.port(from) + QLatin1String(" already feeds ")
                + paths.port(snapshot.destinationOf(oldest))
                + QLatin1String(" of its group; list its edges to siblings before that one"));
    } else {
        QStringList names;
        const QVector<PortRef> cycle = check.cycle();
        for (const PortRef& port : cycle)
            names.append(paths.port(port));
        names.append(names.first());
        syntax.report(item, "cycle",
                      startOf(item) + QLatin1String("this edge closes the cycle ")
                          + names.join(QLatin1String(" -> ")));
    }
}

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin
