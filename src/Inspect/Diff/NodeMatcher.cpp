// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Diff/NodeMatcher.h"

#include <QtCore/QPair>

#include <algorithm>

namespace Kestrin {
namespace Orv {
namespace Inspect {

namespace {

/// How a node looks from outside, except for its name.
QString shapeOf(const NodeRecord& node)
{
    // Names are escaped, so that none holds the separator.
    const QChar separator(QLatin1Char('\n'));
    const auto add = [separator](QString& shape, const QString& name) {
        shape += QString(name)
                     .replace(QLatin1Char('\\'), QLatin1String("\\\\"))
                     .replace(separator, QLatin1String("\\n"));
        shape += separator;
    };
    QString shape(node.pass ? QLatin1Char('p') : QLatin1Char('g'));
    add(shape, node.type);
    for (const PortRecord& input : node.inputs)
        add(shape, input.name);
    shape += separator;
    for (const PortRecord& output : node.outputs)
        add(shape, output.name);
    return shape;
}

/// A name, and how many of the same name come before it.
using Ordinal = QPair<QString, int>;

/// Gives the names of a list their ordinals.
class Ordinals
{
public:
    Ordinal next(const QString& name)
    {
        const int ordinal = counts[name]++;
        return {name, ordinal};
    }

private:
    QHash<QString, int> counts;
};

/// Nodes by a key. Hands out each once, those of one key in their order.
template<typename Key>
class NodeQueues
{
public:
    bool isEmpty() const { return queues.isEmpty(); }
    void add(const Key& key, int node) { queues[key].nodes.append(node); }
    /// The next node of a key that has no match; -1 if there is none left.
    int take(const Key& key, const DiffSide& side)
    {
        const auto queue = queues.find(key);
        if (queue == queues.end())
            return -1;
        while (queue->next < queue->nodes.size()) {
            const int node = queue->nodes.at(queue->next++);
            if (!side.isMatched(node))
                return node;
        }
        return -1;
    }

private:
    struct Queue
    {
        QVector<int> nodes;
        int next = 0;
    };
    QHash<Key, Queue> queues;
};

/// What the older children of a group that have no match have in common with newer nodes: the
/// ports that feed their inputs, the ports that read their outputs, and their own children.
class RenameEvidence
{
public:
    struct Candidate
    {
        int older;
        int newer;
        int votes; // how much they have in common
    };

    RenameEvidence(const DiffSide& older, const Table<int>& olderShapes, int olderParent,
                   const DiffSide& newer, const Table<int>& newerShapes)
        : before(older)
        , after(newer)
        , shapesBefore(olderShapes)
        , shapesAfter(newerShapes)
    {
        for (const int child : before.children(olderParent)) {
            if (!before.isMatched(child))
                add(child);
        }
    }

    bool isEmpty() const { return empty; }

    /// The older nodes that have something in common with a newer one.
    Table<Candidate> candidatesFor(int newer) const
    {
        Votes votes;
        voteByFeeders(newer, votes);
        voteByReaders(newer, votes);
        voteByChildren(newer, votes);
        Table<Candidate> candidates;
        for (const int older : votes.order)
            candidates.push_back({older, newer, votes.counts.value(older)});
        return candidates;
    }

private:
    using Feed = QPair<QPair<int, int>, QPair<int, int>>; // node and port, direction and input
    using Look = QPair<QString, int>;                     // name and shape

    struct Votes
    {
        void add(int older)
        {
            if (counts[older]++ == 0)
                order.push_back(older);
        }
        /// Many nodes with the same evidence prove too little to be worth the time.
        void add(const Table<int>& nodes)
        {
            const std::size_t tooMany = 8;
            if (nodes.size() > tooMany)
                return;
            for (const int older : nodes)
                add(older);
        }
        QHash<int, int> counts;
        Table<int> order; // of the first vote
    };

    static Feed feedOf(const PortRef& source, int input)
    {
        return {{source.node, source.index}, {source.isOutput, input}};
    }

    void add(int child)
    {
        empty = false;
        for (int i = 0; i < before.node(child).inputs.size(); ++i) {
            const PortRef source = before.feeder({child, i, false});
            if (source.node >= 0 && before.isMatched(source.node))
                readers[feedOf(source, i)].push_back(child);
        }
        for (const int inner : before.children(child))
            parents[{before.node(inner).name, at(shapesBefore, inner)}].push_back(child);
    }

    void voteByFeeders(int newer, Votes& votes) const
    {
        for (int i = 0; i < after.node(newer).inputs.size(); ++i) {
            const PortRef source = after.match(after.feeder({newer, i, false}));
            const auto found =
                source.node >= 0 ? readers.constFind(feedOf(source, i)) : readers.constEnd();
            if (found != readers.constEnd())
                votes.add(*found);
        }
    }

    void voteByReaders(int newer, Votes& votes) const
    {
        for (int i = 0; i < after.node(newer).outputs.size(); ++i) {
            for (const PortRef& reader : after.readers({newer, i, true})) {
                const PortRef source = before.feeder(after.match(reader));
                if (source.node >= 0 && source.isOutput && source.index == i)
                    votes.add(source.node);
            }
        }
    }

    void voteByChildren(int newer, Votes& votes) const
    {
        for (const int inner : after.children(newer)) {
            const auto found = parents.constFind({after.node(inner).name, at(shapesAfter, inner)});
            if (found != parents.constEnd())
                votes.add(*found);
        }
    }

    const DiffSide& before;
    const DiffSide& after;
    const Table<int>& shapesBefore;
    const Table<int>& shapesAfter;
    bool empty = true;
    QHash<Feed, Table<int>> readers; // the children that a port feeds through an input
    QHash<Look, Table<int>> parents; // the children that have a child of that look
};

template<typename Pair>
Pair takeFirst(std::deque<Pair>& queue)
{
    const Pair pair = queue.front();
    queue.pop_front();
    return pair;
}

} // namespace

NodeMatcher::NodeMatcher(DiffSide& older, DiffSide& newer)
    : before(older)
    , after(newer)
    , shapesBefore(shapesOf(older))
    , shapesAfter(shapesOf(newer))
{
}

void NodeMatcher::run()
{
    match(0, 0);
    settle();
    matchMoved();
    matchRest();
    matchRenamedPorts();
}

NodeMatcher::Shapes NodeMatcher::shapesOf(const DiffSide& side)
{
    Shapes shapes = tableOf(side.snapshot().nodes.size(), -1);
    for (const int node : side.nodes()) {
        const QString shape = shapeOf(side.node(node));
        const auto known = shapeNumbers.constFind(shape);
        const int number = known != shapeNumbers.constEnd() ? *known : shapeNumbers.size();
        if (known == shapeNumbers.constEnd())
            shapeNumbers.insert(shape, number);
        at(shapes, node) = number;
    }
    return shapes;
}

// A match and what follows from it

void NodeMatcher::match(int older, int newer)
{
    before.setMatch(older, newer);
    after.setMatch(newer, older);
    matchPorts(older, newer, false);
    matchPorts(older, newer, true);
    pairs.push_back({older, newer});
    toMatchChildren.push_back({older, newer});
    toMatchByEvidence.push_back({older, newer});
    toMatchNeighbours.push_back({older, newer});
}

void NodeMatcher::matchPort(const PortRef& older, const PortRef& newer)
{
    before.setMatch(older, newer.index);
    after.setMatch(newer, older.index);
}

/// Matches ports of the same name; of several, the first with the first.
void NodeMatcher::matchPorts(int older, int newer, bool isOutput)
{
    const QVector<PortRecord>& olderPorts = before.ports(older, isOutput);
    const QVector<PortRecord>& newerPorts = after.ports(newer, isOutput);
    const auto hasSameName = [](const PortRecord& a, const PortRecord& b) {
        return a.name == b.name;
    };
    if (olderPorts.size() == newerPorts.size()
        && std::equal(olderPorts.begin(), olderPorts.end(), newerPorts.begin(), hasSameName)) {
        for (int i = 0; i < newerPorts.size(); ++i)
            matchPort({older, i, isOutput}, {newer, i, isOutput});
        return;
    }

    QHash<Ordinal, int> byName;
    Ordinals ordinals;
    for (int i = 0; i < olderPorts.size(); ++i)
        byName.insert(ordinals.next(olderPorts.at(i).name), i);
    Ordinals newerOrdinals;
    for (int i = 0; i < newerPorts.size(); ++i) {
        const auto port = byName.constFind(newerOrdinals.next(newerPorts.at(i).name));
        if (port != byName.constEnd())
            matchPort({older, *port, isOutput}, {newer, i, isOutput});
    }
}

/// Does steps 1 to 3 until they find nothing more; names come before evidence.
void NodeMatcher::settle()
{
    for (;;) {
        if (!toMatchChildren.empty())
            matchChildren(takeFirst(toMatchChildren));
        else if (!toMatchByEvidence.empty())
            matchByEvidence(takeFirst(toMatchByEvidence));
        else if (!toMatchNeighbours.empty())
            matchNeighbours(takeFirst(toMatchNeighbours));
        else
            break;
    }
}

/// Whether two nodes may still be matched.
bool NodeMatcher::isFree(int older, int newer) const
{
    return before.isListed(older) && after.isListed(newer) && older != 0 && newer != 0
        && !before.isMatched(older) && !after.isMatched(newer);
}

/// Whether two nodes have the same shape, in groups that are the same.
bool NodeMatcher::canBeRenamed(int older, int newer) const
{
    if (!isFree(older, newer) || at(shapesBefore, older) != at(shapesAfter, newer))
        return false;
    const int parent = before.node(older).parent;
    return parent >= 0 && before.match(parent) == after.node(newer).parent;
}

// The steps

void NodeMatcher::matchChildren(const Pair& parents)
{
    // A pass never matches a group, even of the same name.
    QHash<Ordinal, int> passes;
    QHash<Ordinal, int> groups;
    Ordinals passOrdinals;
    Ordinals groupOrdinals;
    for (const int child : before.children(parents.older)) {
        const NodeRecord& node = before.node(child);
        if (node.pass)
            passes.insert(passOrdinals.next(node.name), child);
        else
            groups.insert(groupOrdinals.next(node.name), child);
    }
    Ordinals newerPassOrdinals;
    Ordinals newerGroupOrdinals;
    for (const int child : after.children(parents.newer)) {
        const NodeRecord& node = after.node(child);
        const int older = node.pass ? passes.value(newerPassOrdinals.next(node.name), -1)
                                    : groups.value(newerGroupOrdinals.next(node.name), -1);
        if (isFree(older, child))
            match(older, child);
    }
}

void NodeMatcher::matchByEvidence(const Pair& parents)
{
    const RenameEvidence evidence(before, shapesBefore, parents.older, after, shapesAfter);
    if (evidence.isEmpty())
        return;
    using Candidate = RenameEvidence::Candidate;
    Table<Candidate> candidates;
    for (const int child : after.children(parents.newer)) {
        if (after.isMatched(child))
            continue;
        for (const Candidate& candidate : evidence.candidatesFor(child)) {
            if (canBeRenamed(candidate.older, child))
                candidates.push_back(candidate);
        }
    }
    std::stable_sort(candidates.begin(), candidates.end(),
                     [](const Candidate& a, const Candidate& b) { return a.votes > b.votes; });
    for (const Candidate& candidate : candidates) {
        if (isFree(candidate.older, candidate.newer))
            match(candidate.older, candidate.newer);
    }
}

/// Follows a chain of renamed nodes from a matched one.
void NodeMatcher::matchNeighbours(const Pair& pair)
{
    for (const bool isOutput : {false, true}) {
        for (int i = 0; i < after.ports(pair.newer, isOutput).size(); ++i) {
            const PortRef newer{pair.newer, i, isOutput};
            const PortRef older = after.match(newer);
            if (older.node < 0)
                continue;
            const PortRef olderFeeder = before.feeder(older);
            const PortRef newerFeeder = after.feeder(newer);
            if (olderFeeder.index == newerFeeder.index
                && olderFeeder.isOutput == newerFeeder.isOutput
                && canBeRenamed(olderFeeder.node, newerFeeder.node))
                match(olderFeeder.node, newerFeeder.node);
            matchReaders(before.readers(older), after.readers(newer));
        }
    }
}

/// Matches readers of the same shape that read at the same port, in their order.
void NodeMatcher::matchReaders(const QVector<PortRef>& older, const QVector<PortRef>& newer)
{
    using Key = QPair<int, QPair<int, bool>>; // shape and port
    NodeQueues<Key> queues;
    for (const PortRef& reader : older) {
        if (!before.isMatched(reader.node))
            queues.add({at(shapesBefore, reader.node), {reader.index, reader.isOutput}},
                       reader.node);
    }
    if (queues.isEmpty())
        return;
    for (const PortRef& reader : newer) {
        if (after.isMatched(reader.node))
            continue;
        const int other =
            queues.take({at(shapesAfter, reader.node), {reader.index, reader.isOutput}}, before);
        if (canBeRenamed(other, reader.node))
            match(other, reader.node);
    }
}

void NodeMatcher::matchMoved()
{
    using Key = QPair<QString, int>; // name and shape
    NodeQueues<Key> queues;
    for (const int node : before.nodes()) {
        if (!before.isMatched(node))
            queues.add({before.node(node).name, at(shapesBefore, node)}, node);
    }
    for (const int node : after.nodes()) {
        if (after.isMatched(node))
            continue;
        const int older = queues.take({after.node(node).name, at(shapesAfter, node)}, before);
        if (older < 0)
            continue;
        match(older, node);
        settle();
    }
}

void NodeMatcher::matchRest()
{
    for (std::size_t i = 0; i < pairs.size(); ++i) {
        const Pair parents = pairs[i];
        NodeQueues<int> queues; // by shape
        for (const int child : before.children(parents.older)) {
            const NodeRecord& node = before.node(child);
            // Nodes without a type and ports all look the same.
            const bool hasShape =
                !node.type.isEmpty() || !node.inputs.isEmpty() || !node.outputs.isEmpty();
            if (!before.isMatched(child) && hasShape)
                queues.add(at(shapesBefore, child), child);
        }
        if (queues.isEmpty())
            continue;
        for (const int child : after.children(parents.newer)) {
            if (after.isMatched(child))
                continue;
            const int older = queues.take(at(shapesAfter, child), before);
            if (older < 0)
                continue;
            match(older, child);
            settle();
        }
    }
}

// Renamed ports

void NodeMatcher::matchRenamedPorts()
{
    // All are found first: what counts as connected alike must not depend on their order.
    Table<QPair<PortRef, PortRef>> renamed;
    for (const Pair& pair : pairs) {
        for (const bool isOutput : {false, true}) {
            const int count = qMin(before.ports(pair.older, isOutput).size(),
                                   after.ports(pair.newer, isOutput).size());
            for (int i = 0; i < count; ++i) {
                const PortRef older{pair.older, i, isOutput};
                const PortRef newer{pair.newer, i, isOutput};
                if (!before.isMatched(older) && !after.isMatched(newer)
                    && areConnectedAlike(older, newer))
                    renamed.push_back({older, newer});
            }
        }
    }
    for (const auto& ports : renamed)
        matchPort(ports.first, ports.second);
}

/// The match of a newer port, or its probable match: a port without one may have been renamed, so
/// this is the older port at the same index.
PortRef NodeMatcher::likelyMatch(const PortRef& newer) const
{
    if (newer.node < 0 || !after.isMatched(newer.node))
        return PortRef();
    const PortRef match = after.match(newer);
    return match.node >= 0 ? match : PortRef{after.match(newer.node), newer.index, newer.isOutput};
}

/// Whether two ports are fed by the same port and feed the same ports.
bool NodeMatcher::areConnectedAlike(const PortRef& older, const PortRef& newer) const
{
    const PortRef feeder = after.feeder(newer);
    if (before.feeder(older) != likelyMatch(feeder)
        || (feeder.node >= 0 && !after.isMatched(feeder.node)))
        return false;
    QVector<PortRef> expected = before.readers(older);
    QVector<PortRef> found = after.readers(newer);
    if (expected.size() != found.size())
        return false;
    for (PortRef& reader : found)
        reader = likelyMatch(reader);
    const auto isBefore = [](const PortRef& a, const PortRef& b) {
        return a.node != b.node  ? a.node < b.node
            : a.index != b.index ? a.index < b.index
                                 : a.isOutput < b.isOutput;
    };
    std::sort(expected.begin(), expected.end(), isBefore);
    std::sort(found.begin(), found.end(), isBefore);
    return expected == found;
}

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin
