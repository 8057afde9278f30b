// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include <Kestrin/Orv/Inspect/Snapshot.h>

#include "Model/LookUp.h"
#include "Model/Step.h"

namespace Kestrin {
namespace Orv {
namespace Inspect {

Snapshot::Snapshot()
{
    NodeRecord root;
    root.removed = false;
    nodes.append(root);
}

const NodeRecord& Snapshot::node(int ref) const
{
    return lookUp(nodes, ref);
}

const EdgeRecord& Snapshot::edge(int ref) const
{
    return lookUp(edges, ref);
}

const PortRecord& Snapshot::input(int ref, int index) const
{
    return lookUp(node(ref).inputs, index);
}

const PortRecord& Snapshot::output(int ref, int index) const
{
    return lookUp(node(ref).outputs, index);
}

const PortRecord& Snapshot::port(const PortRef& ref) const
{
    return ref.isOutput ? output(ref.node, ref.index) : input(ref.node, ref.index);
}

bool Snapshot::hasPort(const PortRef& ref) const
{
    const NodeRecord& record = node(ref.node);
    return ref.index >= 0
        && ref.index < (ref.isOutput ? record.outputs.size() : record.inputs.size());
}

EdgeKind Snapshot::kindBetween(int srcNode, int dstNode) const
{
    const int srcParent = node(srcNode).parent;
    const int dstParent = node(dstNode).parent;
    if (srcParent == dstParent)
        return EdgeKind::Regular;
    if (srcNode == dstParent)
        return EdgeKind::Down;
    if (srcParent == dstNode)
        return EdgeKind::Up;
    return EdgeKind::None;
}

EdgeKind Snapshot::kindOf(int ref) const
{
    const EdgeRecord& record = edge(ref);
    return record.removed ? EdgeKind::None : kindBetween(record.srcNode, record.dstNode);
}

PortRef Snapshot::sourceOf(int ref) const
{
    return sourceOf(edge(ref), kindOf(ref));
}

PortRef Snapshot::destinationOf(int ref) const
{
    return destinationOf(edge(ref), kindOf(ref));
}

PortRef Snapshot::sourceOf(const EdgeRecord& edge, EdgeKind kind)
{
    return {edge.srcNode, edge.srcIndex, kind != EdgeKind::Down};
}

PortRef Snapshot::destinationOf(const EdgeRecord& edge, EdgeKind kind)
{
    return {edge.dstNode, edge.dstIndex, kind == EdgeKind::Up};
}

PortRef Snapshot::feeder(const PortRef& ref) const
{
    const EdgeRecord& source = edge(port(ref).source);
    if (source.removed)
        return PortRef();
    const int parent = node(ref.node).parent;
    if (!ref.isOutput && source.srcNode == parent)
        return {source.srcNode, source.srcIndex, false};
    if (node(source.srcNode).parent == (ref.isOutput ? ref.node : parent))
        return {source.srcNode, source.srcIndex, true};
    return PortRef();
}

bool Snapshot::isLivePass(int ref) const
{
    const NodeRecord& record = node(ref);
    return record.pass && record.enabled;
}

// As in the graph, no walk takes more steps than there are nodes: a hierarchy that a compaction has
// left out of step may form a cycle.

/// Steps on the side of `port` as often as there are nodes; false if not even once.
static bool walk(const Snapshot& snapshot, PortRef port, int& ref, int& index)
{
    int steps = 0;
    while (steps < snapshot.nodes.size() && stepOnSameSide(snapshot, port))
        ++steps;
    ref = port.node;
    index = port.index;
    return steps > 0;
}

bool Snapshot::walkUp(int& ref, int& port) const
{
    return walk(*this, {ref, port, false}, ref, port);
}

bool Snapshot::walkAcross(int& ref, int& port) const
{
    const EdgeRecord& source = edge(input(ref, port).source);
    if (source.removed || kindBetween(source.srcNode, ref) != EdgeKind::Regular)
        return false;
    ref = source.srcNode;
    port = source.srcIndex;
    return true;
}

bool Snapshot::walkDown(int& ref, int& port) const
{
    return walk(*this, {ref, port, true}, ref, port);
}

bool Snapshot::walkToSourceNode(int& ref, int& port) const
{
    walkUp(ref, port);
    if (!walkAcross(ref, port))
        return false;
    walkDown(ref, port);
    return true;
}

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin
