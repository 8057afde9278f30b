// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Document/CanonicalSnapshot.h"

#include "Model/LookUp.h"
#include "Rules/EdgeCheck.h"

#include <Kestrin/Orv/Inspect/Paths.h>

#include <QtCore/QSet>

namespace Kestrin {
namespace Orv {
namespace Inspect {

namespace {

class Canonicalizer
{
public:
    Canonicalizer(const Snapshot& from, CanonicalSnapshot& to)
        : original(from)
        , paths(from)
        , canonical(to)
        , refs(from.nodes.size(), kNotYet)
    {
    }

    void run()
    {
        addRoot();
        addNodes();
        checkChildren();
        numberPasses();
        addEdges();
        setTarget();
    }

private:
    static constexpr int kNotYet = -1;
    static constexpr int kNowhere = -2;

    void lose(const char* code, const QString& text, int node, int edge, bool gone = true)
    {
        canonical.losses.append({QLatin1String(code), text, node, edge, gone});
    }
    /// Of a node of the snapshot.
    QString nameOf(int node) const
    {
        return node == 0 ? QLatin1String("the renderer") : paths.node(node);
    }
    QString edgeText(int edge) const
    {
        return paths.port(original.sourceOf(edge)) + QLatin1String(" -> ")
            + paths.port(original.destinationOf(edge));
    }

    void addRoot();
    void addNodes();
    void addNode(int node);
    void checkChildren();
    void numberPasses();
    void addEdges();
    void setTarget();
    QVector<int> edgeOrder() const;
    bool report(int edge, EdgeCheck::Verdict verdict);

    static QVector<PortRecord> bare(QVector<PortRecord> ports, bool withDefaults)
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
    QVector<int> refs; // by node of the original: its ref in the canonical
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
    root.inputs = bare(root.inputs, false);
    root.outputs = bare(root.outputs, false);

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
                 + QString::number(root.outputs.size()) + QLatin1String(" of them"),
             0, -1);
    canonical.snapshot.nodes[0] = root;
    canonical.origins = {0};
    if (!refs.isEmpty())
        refs[0] = 0;
}

void Canonicalizer::addNodes()
{
    QVector<int> line; // a node and those above it that have not been added
    for (int node = 1; node < original.nodes.size(); ++node) {
        line.clear();
        int above = node;
        // A line longer than the table is a cycle.
        while (above > 0 && above < refs.size() && refs.at(above) == kNotYet
               && !original.nodes.at(above).removed && line.size() < refs.size()) {
            line.append(above);
            above = original.nodes.at(above).parent;
        }
        const bool leadsToRoot = above >= 0 && above < refs.size() && refs.at(above) >= 0;
        while (!line.isEmpty()) {
            const int next = line.takeLast();
            if (leadsToRoot) {
                addNode(next);
            } else if (refs.at(next) == kNotYet) {
                refs[next] = kNowhere;
                lose("unreachable-node",
                     paths.node(next) + QLatin1String(" does not lie below the root"), next, -1);
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
    record.inputs = bare(record.inputs, record.pass);
    record.outputs = bare(record.outputs, false);
    record.enabled = record.pass && record.enabled;
    if (!record.pass)
        record.type.clear();
    canonical.snapshot.nodes[record.parent].children.append(ref);
    canonical.snapshot.nodes.append(record);
    canonical.origins.append(node);
}

/// Whether each parent lists the children that a document makes it list.
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
                 nameOf(node) + QLatin1String(" lists its children otherwise than the node table"),
                 node, -1, false);
    }
}

/// Passes are numbered as they will be registered.
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
            lose("shared-pass",
                 nameOf(node) + QLatin1String(" has a pass that another node has as well"), node,
                 -1);
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
                 + QLatin1String(", which would name a pass"),
             node, -1);
        record.value = -1;
    }
}

/// The live edges in the order of their table; but where the oldest edge that leaves an output is
/// an up edge that is older than one to a sibling, which a graph takes no more, that one comes
/// first.
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

bool Canonicalizer::report(int edge, EdgeCheck::Verdict verdict)
{
    const auto because = [&](const char* code, const char* reason) {
        lose(code, edgeText(edge) + QLatin1String(reason), -1, edge);
    };
    switch (verdict) {
    case EdgeCheck::Accepted:
        return true;
    case EdgeCheck::NoSuchPort:
        because("stray-edge", " has lost a port");
        break;
    case EdgeCheck::NotRelated:
        because("unrelated-nodes", " connects neither siblings nor a group and its child");
        break;
    case EdgeCheck::AlreadyFed:
        because("already-fed", " enters a port that another edge feeds");
        break;
    case EdgeCheck::LeavesGroup:
        because("leaves-group", " leaves an output whose oldest edge leaves the group");
        break;
    case EdgeCheck::Cycle:
        because("cycle", " closes a cycle that a graph refuses in this order");
        break;
    }
    return false;
}

void Canonicalizer::addEdges()
{
    const QVector<int> order = edgeOrder();
    QVector<int> candidates;
    QVector<EdgeRecord> records;
    for (const int edge : order) {
        EdgeRecord record = original.edges.at(edge);
        record.srcNode = record.srcNode >= 0 ? refs.value(record.srcNode, kNowhere) : kNowhere;
        record.dstNode = record.dstNode >= 0 ? refs.value(record.dstNode, kNowhere) : kNowhere;
        if (original.kindOf(edge) == EdgeKind::None) {
            report(edge, EdgeCheck::NotRelated);
        } else if (record.srcNode < 0 || record.dstNode < 0) {
            continue; // the loss of the node has been reported
        } else if (original.port(original.destinationOf(edge)).source != edge) {
            report(edge, EdgeCheck::NoSuchPort);
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
        // What lies inside a group now may not have been there when the edge was made.
        const EdgeCheck::Verdict verdict = add(i);
        if (verdict == EdgeCheck::Cycle)
            refused.append(i);
        else
            report(candidates.at(i), verdict);
    }
    for (const int i : qAsConst(refused))
        report(candidates.at(i), add(i));

    int last = -1;
    for (const int edge : qAsConst(canonical.edgeOrigins)) {
        if (edge < last)
            lose("edge-order", edgeText(edge) + QLatin1String(" is written at another place"), -1,
                 edge, false);
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
        lose("target-gone", QLatin1String("the target is no node any more"), -1, -1);
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
