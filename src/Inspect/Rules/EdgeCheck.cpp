// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Rules/EdgeCheck.h"

#include "Model/LookUp.h"
#include "Rules/Route.h"
#include "Rules/StronglyConnected.h"

#include <algorithm>
#include <utility>

namespace Kestrin {
namespace Orv {
namespace Inspect {

namespace {

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
    , search(target)
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
    StronglyConnected found(arcs);
    finished = std::move(found.finished);
    return std::move(found.components);
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

QVector<PortRef> EdgeCheck::cycle() const
{
    QVector<PortRef> ports{Snapshot::sourceOf(refused, EdgeKind::Regular),
                           Snapshot::destinationOf(refused, EdgeKind::Regular)};
    const QVector<PortRef> inputs = search.inputs();
    for (const PortRef& input : inputs) {
        QVector<PortRef> against;
        appendToSource(snapshot, input, against);
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
        if (kind == EdgeKind::Regular && search.find(edge.dstNode, edge.srcNode)) {
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
