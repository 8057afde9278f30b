// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Document/NodeIndex.h"

#include "Model/ValueText.h"

#include <QtCore/QStringList>

#include <algorithm>

namespace Kestrin {
namespace Orv {
namespace Inspect {

/// The node that a path leads to. kSeveral if the path leaves out a number that it needs.
int NodeIndex::resolve(const QString& path) const
{
    if (path.isEmpty())
        return 0;
    const auto exact = nodesByPath.constFind(path);
    if (exact != nodesByPath.constEnd())
        return *exact;
    int node = 0;
    const QStringList segments = path.split(QLatin1Char('/'));
    for (const QString& text : segments) {
        const PathSegment segment = parsePathSegment(text);
        const QVector<int> all = nodesByName.value(qMakePair(node, segment.name));
        if (!segment.valid || all.isEmpty() || segment.ordinal >= all.size())
            return kNone;
        if (segment.ordinal < 0 && all.size() > 1)
            return kSeveral;
        node = all.at(qMax(segment.ordinal, 0));
    }
    return node;
}

/// The parent of a new entry, which must have been listed before.
int NodeIndex::findParent(const QString& path, const QString& parentPath, int item)
{
    const int parent = resolve(parentPath);
    if (parent >= 0)
        return parent;
    missing.insert(path);
    if (complete && !missing.contains(parentPath)) {
        missing.insert(parentPath);
        syntax.report(item, "unknown-parent",
                      quoted(path) + QLatin1String(": no entry before this one is the group ")
                          + quoted(parentPath));
    }
    return kNone;
}

bool NodeIndex::readPath(int item, NodeRecord& node, Entry& entry)
{
    QString path;
    if (!syntax.readString(item, "\"path\"", path)) {
        setIncomplete();
        return false;
    }
    const int slash = path.lastIndexOf(QLatin1Char('/'));
    const PathSegment segment = parsePathSegment(path.mid(slash + 1));
    if (!segment.valid || slash == 0) {
        syntax.report(item, "bad-path", quoted(path) + QLatin1String(" is not the path of a node"));
        missing.insert(path);
        return false;
    }
    const QString parentPath = path.left(qMax(slash, 0));
    const int parent = findParent(path, parentPath, item);
    if (parent < 0)
        return false;
    const auto first = nodesByPath.constFind(path);
    if (first != nodesByPath.constEnd()) {
        // The nodes of a repeated group have repeated paths as well.
        if (!repeated.contains(parentPath))
            reportRepetition(item, path, *first);
        repeated.insert(path);
        // An edge may mean the ports of the other entry.
        at(entries, *first).hasAllInputs = false;
        at(entries, *first).hasAllOutputs = false;
        return false;
    }
    node.name = segment.name;
    node.parent = parent;
    entry.pathItem = item;
    entry.ordinal = segment.ordinal;
    return true;
}

void NodeIndex::reportRepetition(int item, const QString& path, int first)
{
    const PathSegment segment = parsePathSegment(path.mid(path.lastIndexOf(QLatin1Char('/')) + 1));
    syntax.report(item, "duplicate-path",
                  quoted(path) + QLatin1String(" is already in line ")
                      + QString::number(syntax.place(at(entries, first).pathItem).line)
                      + QLatin1String("; number the nodes of one name, starting with ")
                      + quoted(pathSegmentText(segment.name, 0)));
}

void NodeIndex::add(const NodeRecord& node, const Entry& entry)
{
    const int ref = static_cast<int>(entries.size());
    nodesByPath.insert(syntax.string(entry.pathItem), ref);
    nodesByName[qMakePair(node.parent, node.name)].append(ref);
    entries.push_back(entry);
}

void NodeIndex::checkOrdinals()
{
    for (int ref = 1; ref < snapshot.nodes.size(); ++ref) {
        const NodeRecord& node = snapshot.nodes.at(ref);
        const Entry& entry = at(entries, ref);
        const QVector<int> all = nodesByName.value(qMakePair(node.parent, node.name));
        const int position =
            static_cast<int>(std::lower_bound(all.cbegin(), all.cend(), ref) - all.cbegin());
        const bool needsNumber = all.size() > 1 || node.name.isEmpty();
        if (entry.ordinal == position || (!needsNumber && entry.ordinal < 0))
            continue;
        const QString path = syntax.string(entry.pathItem);
        if (repeated.contains(path))
            continue;
        const QString right = path.left(path.lastIndexOf(QLatin1Char('/')) + 1)
            + pathSegmentText(node.name, needsNumber ? position : PathSegment::kNoOrdinal);
        syntax.report(entry.pathItem, "wrong-number",
                      quoted(path) + QLatin1String(" must be ") + quoted(right)
                          + QLatin1String(" by the order of the entries"));
    }
}

int NodeIndex::find(const QString& path, int item, const QString& where)
{
    const int node = resolve(path);
    if (node >= 0 || missing.contains(path))
        return node;
    if (node == kSeveral) {
        missing.insert(path);
        syntax.report(item, "ambiguous-node",
                      where + QLatin1String("several nodes are called ") + quoted(path)
                          + QLatin1String(": give a number, as in ")
                          + quoted(path + QLatin1String("[0]")));
    } else if (complete) {
        missing.insert(path);
        syntax.report(item, "unknown-node",
                      where + QLatin1String("there is no node ") + quoted(path));
    }
    return node;
}

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin
