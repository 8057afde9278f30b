// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Rules/EdgeCheck.h"

#include "Model/LookUp.h"

#include <algorithm>

namespace Kestrin {
namespace Orv {
namespace Inspect {

namespace {

/// Arcs between vertices, grouped by the vertex that they leave.
class Arcs
{
public:
    explicit Arcs(int numVertices)
        : first(static_cast<std::size_t>(numVertices) + 1)
    {
    }
    void add(int from, int to) { arcs.push_back({from, to}); }
    /// After the last add().
    void sort()
    {
        for (const Arc& arc : arcs)
            ++first[index(arc.from)];
        int sum = 0;
        for (int& entry : first) {
            sum += entry;
            entry = sum;
        }
        targets.resize(arcs.size());
        for (const Arc& arc : arcs)
            targets[index(--first[index(arc.from)])] = arc.to;
    }
    int begin(int vertex) const { return first[index(vertex)]; }
    int end(int vertex) const { return first[index(vertex + 1)]; }
    int target(int position) const { return targets[index(position)]; }

private:
    struct Arc
    {
        int from;
        int to;
    };
    static std::size_t index(int i) { return static_cast<std::size_t>(i); }

    std::vector<Arc> arcs;
    std::vector<int> first;
    std::vector<int> targets;
};

/// By vertex: the number of its strongly connected component; -1 where it is alone in it. Tarjan's
/// algorithm, with the path on a list of its own. Also tells in which order it has left the
/// vertices.
std::vector<int> componentsOf(const Arcs& arcs, int numVertices, std::vector<int>& finished)
{
    const auto at = [](auto& list, int i) -> auto&
    {
        return list[static_cast<std::size_t>(i)];
    };
    struct Step
    {
        int vertex;
        int next; // the arc to follow next
    };
    const auto size = static_cast<std::size_t>(numVertices);
    std::vector<int> found(size, -1);  // the order in which vertices are reached
    std::vector<int> lowest(size, -1); // the first found that is reached from it and still pending
    std::vector<int> cycles(size, -1);
    std::vector<bool> pending(size, false);
    std::vector<int> stack;
    std::vector<Step> path;
    int numFound = 0;
    int numFinished = 0;
    int numCycles = 0;
    finished.assign(size, -1);

    const auto enter = [&](int vertex) {
        at(found, vertex) = at(lowest, vertex) = numFound++;
        stack.push_back(vertex);
        pending[static_cast<std::size_t>(vertex)] = true;
        path.push_back({vertex, arcs.begin(vertex)});
    };
    for (int start = 0; start < numVertices; ++start) {
        if (at(found, start) < 0)
            enter(start);
        while (!path.empty()) {
            const int vertex = path.back().vertex;
            if (path.back().next < arcs.end(vertex)) {
                const int next = arcs.target(path.back().next++);
                if (at(found, next) < 0)
                    enter(next);
                else if (pending[static_cast<std::size_t>(next)])
                    at(lowest, vertex) = std::min(at(lowest, vertex), at(found, next));
                continue;
            }
            path.pop_back();
            at(finished, vertex) = numFinished++;
            if (!path.empty()) {
                int& above = at(lowest, path.back().vertex);
                above = std::min(above, at(lowest, vertex));
            }
            if (at(lowest, vertex) != at(found, vertex))
                continue;
            const bool alone = stack.back() == vertex;
            int member = -1;
            do {
                member = stack.back();
                stack.pop_back();
                pending[static_cast<std::size_t>(member)] = false;
                if (!alone)
                    at(cycles, member) = numCycles;
            } while (member != vertex);
            numCycles += !alone;
        }
    }
    return cycles;
}

// Each node has two vertices.
int inputsOf(int node)
{
    return 2 * node;
}

int outputsOf(int node)
{
    return 2 * node + 1;
}

} // namespace

EdgeCheck::EdgeCheck(Snapshot& target, const QVector<EdgeRecord>& candidates)
    : snapshot(target)
    , cycles(cyclesOf(target, candidates, finished))
    , closed(cycles.size(), false)
    , order(finished)
    , lastSearch(static_cast<std::size_t>(target.nodes.size()), 0)
{
    for (int node = 0; node < snapshot.nodes.size(); ++node) {
        const Arc through{outputsOf(node), inputsOf(node)};
        if (closesCycle(through))
            giveUpOn(through);
    }
}

EdgeCheck::Arc EdgeCheck::arcOf(const EdgeRecord& edge, EdgeKind kind)
{
    switch (kind) {
    case EdgeKind::Regular:
        return {inputsOf(edge.dstNode), outputsOf(edge.srcNode)};
    case EdgeKind::Down:
        return {inputsOf(edge.dstNode), inputsOf(edge.srcNode)};
    case EdgeKind::Up:
        return {outputsOf(edge.dstNode), outputsOf(edge.srcNode)};
    case EdgeKind::None:
        break;
    }
    return {-1, -1};
}

/// Arcs lead along all the edges there will ever be, and from each node's outputs to its inputs,
/// whether it is a pass or a group. A search that begins at a node's inputs reaches no node whose
/// outputs these arcs do not lead to. So an edge that the search refuses closes a cycle of
/// arcs.
std::vector<int> EdgeCheck::cyclesOf(const Snapshot& target, const QVector<EdgeRecord>& candidates,
                                     std::vector<int>& finished)
{
    const int numNodes = target.nodes.size();
    Arcs arcs(2 * numNodes);
    for (int node = 0; node < numNodes; ++node)
        arcs.add(outputsOf(node), inputsOf(node));
    for (const EdgeRecord& edge : candidates) {
        const EdgeKind kind = target.kindBetween(edge.srcNode, edge.dstNode);
        if (edge.srcNode < 0 || edge.srcNode >= numNodes || edge.dstNode < 0
            || edge.dstNode >= numNodes || kind == EdgeKind::None)
            continue;
        const Arc arc = arcOf(edge, kind);
        arcs.add(arc.from, arc.to);
    }
    arcs.sort();
    return componentsOf(arcs, 2 * numNodes, finished);
}

/// Whether an arc closes a cycle with those before it, as far as that is known. If not, it is
/// one of those before the next.
bool EdgeCheck::closesCycle(const Arc& arc)
{
    const int cycle = cycles[static_cast<std::size_t>(arc.from)];
    if (cycle < 0 || cycle != cycles[static_cast<std::size_t>(arc.to)])
        return false;
    return closed[static_cast<std::size_t>(cycle)] || !order.add(arc.from, arc.to);
}

/// From now on, its cycle is searched for every edge.
void EdgeCheck::giveUpOn(const Arc& arc)
{
    closed[static_cast<std::size_t>(cycles[static_cast<std::size_t>(arc.from)])] = true;
}

/// As Graph::precedes() with followHierarchy. Remembers how it got there.
bool EdgeCheck::precedes(int upstream, int downstream)
{
    ++searches;
    reached.assign(1, {downstream, -1, -1});
    lastSearch[static_cast<std::size_t>(downstream)] = searches;
    if (upstream == downstream)
        return true;
    for (std::size_t next = 0; next < reached.size(); ++next) {
        const int node = reached[next].node;
        const int numInputs = snapshot.nodes.at(node).inputs.size();
        for (int input = 0; input < numInputs; ++input) {
            int source = node;
            int port = input;
            if (!snapshot.walkToSourceNode(source, port))
                continue;
            int& search = lastSearch[static_cast<std::size_t>(source)];
            if (search == searches)
                continue;
            search = searches;
            reached.push_back({source, static_cast<int>(next), input});
            if (source == upstream)
                return true;
        }
    }
    return false;
}

QVector<PortRef> EdgeCheck::cycle() const
{
    QVector<PortRef> ports{Snapshot::sourceOf(refused, EdgeKind::Regular),
                           Snapshot::destinationOf(refused, EdgeKind::Regular)};
    // From the refused edge's destination, found last, to its source, where the search began.
    for (int step = static_cast<int>(reached.size()) - 1; step > 0;) {
        const Step& hop = reached[static_cast<std::size_t>(step)];
        step = hop.from;
        int node = reached[static_cast<std::size_t>(step)].node;
        PortRef port{node, hop.input, false};
        QVector<PortRef> against{port};
        while (port.node != hop.node || !port.isOutput) {
            const PortRecord& record = port.isOutput ? snapshot.output(port.node, port.index)
                                                     : snapshot.input(port.node, port.index);
            const EdgeRecord& edge = snapshot.edge(record.source);
            if (edge.removed)
                break;
            port = Snapshot::sourceOf(edge, snapshot.kindBetween(edge.srcNode, edge.dstNode));
            against.append(port);
        }
        // Down to what produces the value; a group on the way is left by its inside.
        std::reverse(against.begin(), against.end());
        ports += against;
    }
    return ports;
}

EdgeCheck::Verdict EdgeCheck::add(const EdgeRecord& edge)
{
    const EdgeKind kind = snapshot.kindBetween(edge.srcNode, edge.dstNode);
    if (kind == EdgeKind::None)
        return NotRelated;
    const auto ports = [this](const PortRef& ref) -> QVector<PortRecord>* {
        if (ref.node < 0 || ref.node >= snapshot.nodes.size())
            return nullptr;
        NodeRecord& node = snapshot.nodes[ref.node];
        QVector<PortRecord>& list = ref.isOutput ? node.outputs : node.inputs;
        return ref.index >= 0 && ref.index < list.size() ? &list : nullptr;
    };
    QVector<PortRecord>* const left = ports(Snapshot::sourceOf(edge, kind));
    QVector<PortRecord>* const entered = ports(Snapshot::destinationOf(edge, kind));
    if (!left || !entered)
        return NoSuchPort;
    if (entered->at(edge.dstIndex).source >= 0)
        return AlreadyFed;
    if (kind == EdgeKind::Regular) {
        const QVector<int>& leaving = left->at(edge.srcIndex).destinations;
        if (!leaving.isEmpty() && snapshot.kindOf(leaving.first()) != EdgeKind::Regular)
            return LeavesGroup;
    }
    const Arc arc = arcOf(edge, kind);
    if (closesCycle(arc)) {
        if (kind == EdgeKind::Regular && precedes(edge.dstNode, edge.srcNode)) {
            refused = edge;
            return Cycle;
        }
        giveUpOn(arc);
    }

    const int ref = snapshot.edges.size();
    snapshot.edges.append(edge);
    snapshot.edges[ref].removed = false;
    (*left)[edge.srcIndex].destinations.append(ref);
    (*entered)[edge.dstIndex].source = ref;
    return Accepted;
}

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin
