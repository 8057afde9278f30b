// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Document/CanonicalSnapshot.h"

#include "Model/EdgeText.h"
#include "Model/LookUp.h"
#include "Rules/EdgeCheck.h"

#include <Kestrin/Orv/Inspect/Paths.h>

#include <QtCore/QSet>

namespace Kestrin {
namespace Orv {
namespace Inspect {

namespace {

/// Builds the canonical snapshot of another one.
class Canonicalizer
{
public:
    Canonicalizer(const Snapshot& from, CanonicalSnapshot& to)
        : original(from)
        , paths(from)
        , canonical(to)
        , refs(from.nodes.size(), kNotSeen)
    {
    }

    void run()
    {
        addRoot();
        addNodes();
        checkChildren();
        numberPasses();
        addEdges();
        checkEdgeOrder();
        setTarget();
    }

private:
    static constexpr int kNotSeen = -1;
    static constexpr int kUnreachable = -2;

    void lose(const char* code, const QString& text, int node, int edge, bool gone = true)
    {
        canonical.losses.append({QLatin1String(code), text, node, edge, gone});
    }
    void loseEdge(const char* code, int edge, const char* reason, bool gone = true)
    {
        lose(code, edgeText(paths, original, edge) + QLatin1String(reason), -1, edge, gone);
    }
    QString nameOf(int node) const
    {
        return node == 0 ? QLatin1String("the renderer") : paths.node(node);
    }

    void addRoot();
    void addNodes();
    void addNode(int node);
    void checkChildren();
    void numberPasses();
    void addEdges();
    void checkEdgeOrder();
    void setTarget();
    QVector<int> edgeOrder() const;
    void reportVerdict(int edge, EdgeCheck::Verdict verdict);

    /// Ports without their edges.
    static QVector<PortRecord> unconnected(QVector<PortRecord> ports, bool withDefaults)
    {
        for (PortRecord& port : ports) {
            port.source = -1;
            port.destinations.clear();
            if (!withDefaults)
                port.defaultValue = QVariant();
        }
        return ports;
    }

    const Snapshot& original;
    const Paths paths;
    CanonicalSnapshot& canonical;
    QVector<int> refs; // by node of the original: its ref in the canonical snapshot
};

void Canonicalizer::addRoot()
{
    NodeRecord root = original.node(0);
    if (root.removed)
        lose("removed-root", QLatin1String("the root of the graph has been removed"), 0, -1);
    if (root.pass)
        lose("root-with-pass", QLatin1String("the root of the graph has the value of a pass"), 0,
             -1);
    root.parent = -1;
    root.removed = false;
    root.pass = false;
    root.enabled = false;
    root.type.clear();
    root.children.clear();
    root.inputs = unconnected(root.inputs, false);
    root.outputs = unconnected(root.outputs, false);

    canonical.snapshot.parameters = original.parameters;
    canonical.snapshot.parameters.resize(root.inputs.size());
    if (original.parameters.size() != root.inputs.size())
        lose("parameter-mismatch",
             QLatin1String("the renderer has ") + QString::number(original.parameters.size())
                 + QLatin1String(" parameters, but its root has ")
                 + QString::number(root.inputs.size()) + QLatin1String(" inputs"),
             0, -1);
    canonical.snapshot.numOutputs = root.outputs.size();
    if (original.numOutputs != root.outputs.size())
        lose("output-mismatch",
             QLatin1String("the renderer has ") + QString::number(original.numOutputs)
                 + QLatin1String(" outputs, but its root has ")
                 + QString::number(root.outputs.size()),
             0, -1);
    canonical.snapshot.nodes[0] = root;
    canonical.origins = {0};
    if (!refs.isEmpty())
        refs[0] = 0;
}

void Canonicalizer::addNodes()
{
    QVector<int> line; // a node and its ancestors that have not been seen
    for (int node = 1; node < original.nodes.size(); ++node) {
        line.clear();
        int above = node;
        // The parents of odd snapshots may form a cycle.
        while (above > 0 && above < refs.size() && refs.at(above) == kNotSeen
               && !original.nodes.at(above).removed && line.size() < refs.size()) {
            line.append(above);
            above = original.nodes.at(above).parent;
        }
        const bool leadsToRoot = above >= 0 && above < refs.size() && refs.at(above) >= 0;
        while (!line.isEmpty()) {
            const int next = line.takeLast();
            if (leadsToRoot) {
                addNode(next);
            } else if (refs.at(next) == kNotSeen) {
                refs[next] = kUnreachable;
                lose("unreachable-node", paths.node(next) + QLatin1String(" is not below the root"),
                     next, -1);
            }
        }
    }
}

void Canonicalizer::addNode(int node)
{
    NodeRecord record = original.nodes.at(node);
    const int ref = canonical.snapshot.nodes.size();
    refs[node] = ref;
    record.parent = refs.at(record.parent);
    record.children.clear();
    record.inputs = unconnected(record.inputs, record.pass);
    record.outputs = unconnected(record.outputs, false);
    record.enabled = record.pass && record.enabled;
    if (!record.pass)
        record.type.clear();
    canonical.snapshot.nodes[record.parent].children.append(ref);
    canonical.snapshot.nodes.append(record);
    canonical.origins.append(node);
}

/// Reports the nodes that list other children than they will have when the document is read.
void Canonicalizer::checkChildren()
{
    for (int ref = 0; ref < canonical.snapshot.nodes.size(); ++ref) {
        const int node = canonical.origins.at(ref);
        QVector<int> listed;
        for (const int child : original.node(node).children) {
            if (!original.node(child).removed)
                listed.append(lookUp(refs, child));
        }
        const QVector<int>& children = canonical.snapshot.nodes.at(ref).children;
        if (listed == children)
            continue;
        const QSet<int> known(listed.cbegin(), listed.cend());
        bool allListed = true;
        for (const int child : children) {
            if (known.contains(child))
                continue;
            allListed = false;
            const int origin = canonical.origins.at(child);
            lose("unlisted-node",
                 paths.node(origin) + QLatin1String(" is not listed by its parent"), origin, -1,
                 false);
        }
        if (allListed)
            lose("child-order",
                 nameOf(node)
                     + QLatin1String(" lists its children in another order than the node table"),
                 node, -1, false);
    }
}

/// Gives the passes the values that they will have when they are added to a renderer.
void Canonicalizer::numberPasses()
{
    QSet<int> seen;
    int numPasses = 0;
    for (int ref = 1; ref < canonical.snapshot.nodes.size(); ++ref) {
        NodeRecord& record = canonical.snapshot.nodes[ref];
        if (!record.pass)
            continue;
        if (record.value >= 0 && seen.contains(record.value)) {
            const int node = canonical.origins.at(ref);
            lose("shared-pass", nameOf(node) + QLatin1String(" has the same pass as another node"),
                 node, -1);
        }
        seen.insert(record.value);
        record.value = numPasses++;
    }
    for (int ref = 0; ref < canonical.snapshot.nodes.size(); ++ref) {
        NodeRecord& record = canonical.snapshot.nodes[ref];
        if (record.pass || record.value < 0 || record.value >= numPasses)
            continue;
        const int node = canonical.origins.at(ref);
        lose("node-value",
             nameOf(node) + QLatin1String(" has the value ") + QString::number(record.value)
                 + QLatin1String(", which is the number of a pass"),
             node, -1);
        record.value = -1;
    }
}

/// The live edges in the order of their table, with one exception. A graph refuses an edge to a
/// sibling if the oldest edge of its output leaves the group. So the first edge to a sibling comes
/// before such an edge.
QVector<int> Canonicalizer::edgeOrder() const
{
    QHash<QPair<int, int>, int> siblings; // by output: the first edge to a sibling
    for (int edge = 0; edge < original.edges.size(); ++edge) {
        const EdgeRecord& record = original.edges.at(edge);
        const auto output = qMakePair(record.srcNode, record.srcIndex);
        if (original.kindOf(edge) == EdgeKind::Regular && !siblings.contains(output))
            siblings.insert(output, edge);
    }
    QVector<bool> done(original.edges.size(), false);
    QVector<int> order;
    for (int edge = 0; edge < original.edges.size(); ++edge) {
        const EdgeRecord& record = original.edges.at(edge);
        if (record.removed || done.at(edge))
            continue;
        const int sibling = original.kindOf(edge) == EdgeKind::Up
            ? siblings.value(qMakePair(record.srcNode, record.srcIndex), -1)
            : -1;
        if (sibling >= 0 && !done.at(sibling)) {
            done[sibling] = true;
            order.append(sibling);
        }
        done[edge] = true;
        order.append(edge);
    }
    return order;
}

/// Reports an edge that a graph refuses.
void Canonicalizer::reportVerdict(int edge, EdgeCheck::Verdict verdict)
{
    switch (verdict) {
    case EdgeCheck::Accepted:
        break;
    case EdgeCheck::NoSuchPort:
        loseEdge("stray-edge", edge, " names a port that has been removed or has moved");
        break;
    case EdgeCheck::NotRelated:
        loseEdge("unrelated-nodes", edge, " connects neither siblings nor a group and its child");
        break;
    case EdgeCheck::AlreadyFed:
        loseEdge("already-fed", edge, " enters a port that another edge feeds");
        break;
    case EdgeCheck::LeavesGroup:
        loseEdge("leaves-group", edge, " leaves an output whose oldest edge leaves the group");
        break;
    case EdgeCheck::Cycle:
        loseEdge("cycle", edge, " closes a cycle, so a graph refuses it");
        break;
    }
}

void Canonicalizer::addEdges()
{
    const QVector<int> order = edgeOrder();
    QVector<int> candidates;
    QVector<EdgeRecord> records;
    for (const int edge : order) {
        EdgeRecord record = original.edges.at(edge);
        record.srcNode =
            record.srcNode >= 0 ? refs.value(record.srcNode, kUnreachable) : kUnreachable;
        record.dstNode =
            record.dstNode >= 0 ? refs.value(record.dstNode, kUnreachable) : kUnreachable;
        if (original.kindOf(edge) == EdgeKind::None) {
            reportVerdict(edge, EdgeCheck::NotRelated);
        } else if (record.srcNode < 0 || record.dstNode < 0) {
            continue; // the loss of the node has been reported
        } else if (original.port(original.destinationOf(edge)).source != edge) {
            reportVerdict(edge, EdgeCheck::NoSuchPort);
        } else {
            candidates.append(edge);
            records.append(record);
        }
    }

    EdgeCheck check(canonical.snapshot, records);
    QVector<int> refused;
    const auto add = [&](int i) {
        const EdgeCheck::Verdict verdict = check.add(records.at(i));
        if (verdict == EdgeCheck::Accepted)
            canonical.edgeOrigins.append(candidates.at(i));
        return verdict;
    };
    for (int i = 0; i < candidates.size(); ++i) {
        const EdgeCheck::Verdict verdict = add(i);
        if (verdict == EdgeCheck::Cycle)
            refused.append(i);
        else
            reportVerdict(candidates.at(i), verdict);
    }
    // Edges inside a group lead the search for cycles into the group. Now that all of them are
    // there, it may find none.
    for (const int i : qAsConst(refused))
        reportVerdict(candidates.at(i), add(i));
}

void Canonicalizer::checkEdgeOrder()
{
    int last = -1;
    for (const int edge : qAsConst(canonical.edgeOrigins)) {
        if (edge < last)
            loseEdge("edge-order", edge, " is written at another position than in the edge table",
                     false);
        last = qMax(last, edge);
    }
}

void Canonicalizer::setTarget()
{
    const int target = original.target;
    if (target == -1)
        return;
    canonical.snapshot.target = target >= 0 ? refs.value(target, -1) : -1;
    if (canonical.snapshot.target < 0) {
        canonical.snapshot.target = -1;
        lose("target-gone", QLatin1String("the target is not a node of the graph"), -1, -1);
    }
}

} // namespace

CanonicalSnapshot::CanonicalSnapshot(const Snapshot& original)
{
    Canonicalizer(original, *this).run();
}

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin
