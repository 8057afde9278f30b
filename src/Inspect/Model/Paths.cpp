// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include <Kestrin/Orv/Inspect/Paths.h>

#include "Model/LookUp.h"
#include "Model/PathSegment.h"
#include "Model/Positions.h"

#include <QtCore/QHash>
#include <QtCore/QPair>
#include <QtCore/QStringList>

#include <algorithm>

namespace Kestrin {
namespace Orv {
namespace Inspect {

namespace {

const int kUnique = PathSegment::kNoOrdinal;
const int kUnlisted = -2;

bool mustBeEscaped(QChar c)
{
    switch (c.unicode()) {
    case '%':
    case '/':
    case '.':
    case '[':
    case ']':
    case '>':
    case 0x7F:
        return true;
    default:
        return c.unicode() < 0x20;
    }
}

/// Those of the positions that a segment may mean.
QVector<int> chosen(const QVector<int>& positions, const PathSegment& segment)
{
    if (segment.ordinal == kUnique)
        return positions;
    if (segment.ordinal < positions.size())
        return {positions.at(segment.ordinal)};
    return {};
}

} // namespace

QString pathSegmentText(const QString& name, int ordinal)
{
    const QString text = Paths::escaped(name);
    if (ordinal == kUnique)
        return name.isEmpty() ? QLatin1String("[0]") : text;
    return text + QLatin1Char('[') + QString::number(ordinal) + QLatin1Char(']');
}

PathSegment parsePathSegment(const QString& text)
{
    PathSegment segment;
    const int bracket = text.indexOf(QLatin1Char('['));
    const QString name = text.left(bracket);
    if (bracket >= 0) {
        if (!text.endsWith(QLatin1Char(']')))
            return segment;
        bool isNumber = false;
        segment.ordinal = text.mid(bracket + 1, text.size() - bracket - 2).toInt(&isNumber);
        if (!isNumber || segment.ordinal < 0)
            return segment;
    } else if (name.isEmpty()) {
        return segment; // an empty name is followed by a number
    }

    segment.name.reserve(name.size());
    for (int i = 0; i < name.size(); ++i) {
        if (name.at(i) != QLatin1Char('%')) {
            segment.name += name.at(i);
            continue;
        }
        bool isNumber = false;
        const uint code = name.mid(i + 1, 2).toUInt(&isNumber, 16);
        if (!isNumber || i + 2 >= name.size())
            return segment;
        segment.name += QChar(code);
        i += 2;
    }
    segment.valid = true;
    return segment;
}

struct Q_DECL_HIDDEN Paths::Impl
{
    explicit Impl(const Snapshot& shown);

    QString segment(int ref) const;
    QVector<int> portsOfName(int ref, bool isOutput, const QString& name) const;
    QString port(int node, int index, bool isOutput) const;

    const Snapshot& snapshot;
    /// The live children of a node, by name.
    QHash<QPair<int, QString>, QVector<int>> children;
    /// By node: its position among the siblings of its name.
    QVector<int> ordinals;
    /// By node: its part of a path.
    QVector<QString> segments;
    /// The ports of nodes with many of them; those of others are searched one by one.
    QHash<QPair<int, bool>, Positions> portIndex;
};

Paths::Impl::Impl(const Snapshot& shown)
    : snapshot(shown)
    , ordinals(shown.nodes.size(), kUnlisted)
{
    const int manyPorts = 16;
    children.reserve(snapshot.nodes.size());
    for (int parent = 0; parent < snapshot.nodes.size(); ++parent) {
        const NodeRecord& record = snapshot.nodes.at(parent);
        for (const int child : record.children) {
            const NodeRecord& node = snapshot.node(child);
            if (node.removed || node.parent != parent || ordinals.at(child) != kUnlisted)
                continue;
            QVector<int>& siblings = children[qMakePair(parent, node.name)];
            ordinals[child] = siblings.size();
            siblings.append(child);
        }
        if (record.inputs.size() > manyPorts)
            portIndex.insert(qMakePair(parent, false), positionsOf(record.inputs));
        if (record.outputs.size() > manyPorts)
            portIndex.insert(qMakePair(parent, true), positionsOf(record.outputs));
    }
    for (const QVector<int>& siblings : qAsConst(children)) {
        if (siblings.size() == 1)
            ordinals[siblings.first()] = kUnique;
    }
    segments.reserve(snapshot.nodes.size());
    for (int node = 0; node < snapshot.nodes.size(); ++node)
        segments.append(segment(node));
}

QString Paths::Impl::segment(int ref) const
{
    const NodeRecord& node = snapshot.node(ref);
    const int ordinal = ordinals.at(ref);
    if (ordinal != kUnlisted)
        return pathSegmentText(node.name, ordinal);
    return escaped(node.name)
        + (node.removed ? QLatin1String("[removed ") : QLatin1String("[unlisted "))
        + QString::number(ref) + QLatin1Char(']');
}

QVector<int> Paths::Impl::portsOfName(int ref, bool isOutput, const QString& name) const
{
    const auto index = portIndex.constFind(qMakePair(ref, isOutput));
    if (index != portIndex.constEnd())
        return index->value(name);

    QVector<int> found;
    const NodeRecord& node = snapshot.node(ref);
    const QVector<PortRecord>& ports = isOutput ? node.outputs : node.inputs;
    for (int i = 0; i < ports.size(); ++i) {
        if (ports.at(i).name == name)
            found.append(i);
    }
    return found;
}

Paths::Paths(const Snapshot& snapshot)
    : impl(new Impl(snapshot))
{
}

Paths::~Paths() = default;

QString Paths::escaped(const QString& name)
{
    QString text;
    text.reserve(name.size());
    for (const QChar c : name) {
        if (mustBeEscaped(c))
            text += QLatin1Char('%') + QString::number(c.unicode() + 0x100, 16).right(2).toUpper();
        else
            text += c;
    }
    return text;
}

QString Paths::node(int ref) const
{
    // Parents that a compaction has left out of step may form a cycle.
    const Snapshot& snapshot = impl->snapshot;
    QVector<int> line;
    int length = 0;
    int node = ref;
    for (int steps = snapshot.nodes.size(); node > 0 && node < snapshot.nodes.size(); --steps) {
        if (steps == 0)
            return QLatin1String("[cycle]/") + impl->segments.at(ref);
        line.append(node);
        length += impl->segments.at(node).size() + 1;
        node = snapshot.nodes.at(node).parent;
    }
    QString path;
    path.reserve(length);
    for (int i = line.size() - 1; i >= 0; --i) {
        path += impl->segments.at(line.at(i));
        if (i > 0)
            path += QLatin1Char('/');
    }
    return path;
}

QString Paths::input(int node, int index) const
{
    return port({node, index, false});
}

QString Paths::output(int node, int index) const
{
    return port({node, index, true});
}

QString Paths::port(const PortRef& ref) const
{
    const NodeRecord& record = impl->snapshot.node(ref.node);
    const QVector<PortRecord>& ports = ref.isOutput ? record.outputs : record.inputs;
    QString name;
    if (ref.index >= 0 && ref.index < ports.size()) {
        name = ports.at(ref.index).name;
        const QVector<int> same = impl->portsOfName(ref.node, ref.isOutput, name);
        // Ascending, and perhaps all ports of a node that has very many.
        const auto* const position = std::lower_bound(same.cbegin(), same.cend(), ref.index);
        name = pathSegmentText(name, same.size() == 1 ? kUnique : int(position - same.cbegin()));
    } else {
        name = (ref.isOutput ? QLatin1String("[no output ") : QLatin1String("[no input "))
            + QString::number(ref.index) + QLatin1Char(']');
    }
    return ref.node == 0 ? name : node(ref.node) + QLatin1Char('.') + name;
}

QVector<int> Paths::findNodes(const QString& path) const
{
    QVector<int> found{0};
    if (path.isEmpty())
        return found;
    const QStringList segments = path.split(QLatin1Char('/'));
    for (const QString& text : segments) {
        const PathSegment segment = parsePathSegment(text);
        if (!segment.valid)
            return {};
        QVector<int> next;
        for (const int parent : qAsConst(found))
            next += chosen(impl->children.value(qMakePair(parent, segment.name)), segment);
        found = next;
    }
    return found;
}

QVector<PortRef> Paths::findPorts(const QString& path) const
{
    const int dot = path.lastIndexOf(QLatin1Char('.'));
    const PathSegment segment = parsePathSegment(path.mid(dot + 1));
    QVector<PortRef> found;
    if (!segment.valid || dot == 0)
        return found;
    const QVector<int> nodes = findNodes(path.left(qMax(dot, 0)));
    for (const bool isOutput : {false, true}) {
        for (const int node : nodes) {
            const QVector<int> ports =
                chosen(impl->portsOfName(node, isOutput, segment.name), segment);
            for (const int index : ports)
                found.append({node, index, isOutput});
        }
    }
    return found;
}

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin
