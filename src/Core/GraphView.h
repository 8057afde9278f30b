// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_GRAPHVIEW_H
#define KESTRIN_ORV_GRAPHVIEW_H

#include "GraphTables.h"
#include "Prefetch.h"

namespace Kestrin {
namespace Orv {

/// The walks against the flow of data, on the addresses of both tables. The ordering query, the
/// walkers and the renderer's frames spend most of their time in these walks. So the walks are
/// inlined, and the addresses stay in registers. Valid until the graph changes.
///
/// An edge that feeds a port enters the node that owns the port, so its source alone determines the
/// kind of the edge. On a sound tree, each step changes the level, and a walk ends by itself. After
/// a purge, the parents may form a cycle, so no walk takes more steps than there are nodes.
struct GraphView
{
    const Node* nodes;
    int numNodes;
    const Edge* edges;
    int numEdges;

    explicit GraphView(const GraphTables& tables)
        : nodes(tables.nodes.constData())
        , numNodes(tables.nodes.size())
        , edges(tables.edges.constData())
        , numEdges(tables.edges.size())
    {
    }

    bool hasNode(int ref) const { return static_cast<uint>(ref) < static_cast<uint>(numNodes); }
    const Node* node(int ref) const { return hasNode(ref) ? nodes + ref : nullptr; }
    int parentOf(int ref) const
    {
        const Node* record = node(ref);
        return record ? record->parent : Graph::kInvalidNodeRef;
    }
    /// The edge that feeds a port; null when there is none.
    const Edge* sourceOf(const Port& port) const
    {
        if (static_cast<uint>(port.source) >= static_cast<uint>(numEdges))
            return nullptr;
        const Edge* source = edges + port.source;
        return source->removed ? nullptr : source;
    }
    const Edge* sourceOf(const QVector<Port>& ports, int port) const
    {
        return hasIndex(ports, port) ? sourceOf(firstOf(ports)[port]) : nullptr;
    }

    /// An input, with the data that a walk needs to continue from it.
    struct Input
    {
        int node;
        int port;
        int parent;         // of the node
        const Edge* source; // the edge that feeds the input; null when there is none

        bool isFedByParent() const { return source && source->srcNode == parent; }
    };
    Input input(int ref, int port) const
    {
        if (!hasNode(ref))
            return {ref, port, Graph::kInvalidNodeRef, nullptr};
        return {ref, port, nodes[ref].parent, sourceOf(nodes[ref].inputs, port)};
    }
    Input climb(Input from) const
    {
        for (int steps = numNodes; steps > 0; --steps) {
            const Edge* source = from.source;
            if (!source || source->srcNode != from.parent)
                break;
            from = input(source->srcNode, source->srcIndex);
        }
        return from;
    }
    /// Whether a sibling feeds the input.
    bool crosses(const Input& from) const
    {
        return from.source && parentOf(from.source->srcNode) == from.parent;
    }

    bool walkUp(int& ref, int& port) const
    {
        const Input start = input(ref, port);
        const Input top = climb(start);
        ref = top.node;
        port = top.port;
        return start.isFedByParent();
    }
    bool walkAcross(int& ref, int& port) const
    {
        const Input from = input(ref, port);
        if (!crosses(from))
            return false;
        ref = from.source->srcNode;
        port = from.source->srcIndex;
        return true;
    }
    bool walkDown(int& ref, int& port) const
    {
        const Edge* source = hasNode(ref) ? sourceOf(nodes[ref].outputs, port) : nullptr;
        bool moved = false;
        for (int steps = numNodes; source && steps > 0; --steps) {
            const int child = source->srcNode;
            if (!hasNode(child) || nodes[child].parent != ref)
                break;
            ref = child;
            port = source->srcIndex;
            moved = true;
            source = sourceOf(nodes[ref].outputs, port);
        }
        return moved;
    }
    bool walkToSourceNode(int& ref, int& port) const
    {
        walkUp(ref, port);
        if (!walkAcross(ref, port))
            return false;
        walkDown(ref, port);
        return true;
    }

    /// From an input of `owner` to the output that feeds it, as precedes() and the walkers follow
    /// it: the first half of walkToSourceNode(), or only walkAcross(). Returns an edge whose source
    /// is that output, of a node in the table; null if there is none.
    const Edge* feedOf(const Node& owner, const Port& port, bool followHierarchy) const
    {
        Input from{-1, -1, owner.parent, sourceOf(port)};
        if (followHierarchy)
            from = climb(from);
        const Edge* source = from.source;
        const bool isFedBySibling =
            source && hasNode(source->srcNode) && nodes[source->srcNode].parent == from.parent;
        return isFedBySibling ? source : nullptr;
    }
    /// The second half: the node that produces the value of an output.
    int producerOf(int ref, int output) const
    {
        walkDown(ref, output);
        return ref;
    }
    /// Both halves: the node that feeds an input of `owner`; -1 if there is none.
    int feedingNode(const Node& owner, const Port& input, bool followHierarchy) const
    {
        const Edge* feed = feedOf(owner, input, followHierarchy);
        if (!feed)
            return Graph::kInvalidNodeRef;
        return followHierarchy ? producerOf(feed->srcNode, feed->srcIndex) : feed->srcNode;
    }

    // Prefetching, see Prefetch.h. A record takes two steps: first the lists of ports and, when
    // these have arrived, the edges that they name.

    /// For a search that goes through a queue of nodes and follows their inputs. The next node is
    /// `queue[0]`.
    Q_ALWAYS_INLINE void prefetchInputs(const int* queue, int length) const
    {
        constexpr int listDistance = 4;
        constexpr int edgeDistance = 2;
        constexpr int linesOfFourPorts = 3;
        if (length <= listDistance)
            return;
        if (const Node* later = node(queue[listDistance]))
            prefetchList(later->inputs, linesOfFourPorts);
        if (const Node* soon = node(queue[edgeDistance]))
            prefetchFirstEdge(soon->inputs);
    }
    /// For a walk to or from a node, and through the groups around it.
    Q_ALWAYS_INLINE void prefetchPorts(int ref) const
    {
        for (int depth = 0; isBelowRoot(ref) && depth < numGroups; ++depth) {
            prefetchList(nodes[ref].inputs, 2);
            prefetchList(nodes[ref].outputs, 1);
            ref = nodes[ref].parent;
        }
    }
    Q_ALWAYS_INLINE void prefetchEdges(int ref) const
    {
        for (int depth = 0; isBelowRoot(ref) && depth < numGroups; ++depth) {
            prefetchFirstEdge(nodes[ref].inputs);
            prefetchFirstEdge(nodes[ref].outputs);
            ref = nodes[ref].parent;
        }
    }

private:
    static constexpr int numGroups = 4; // how far up prefetching goes

    bool isBelowRoot(int ref) const { return hasNode(ref) && ref != Graph::kRootNodeRef; }
    Q_ALWAYS_INLINE void prefetchFirstEdge(const QVector<Port>& ports) const
    {
        if (!ports.isEmpty()
            && static_cast<uint>(firstOf(ports)->source) < static_cast<uint>(numEdges))
            prefetch(edges + firstOf(ports)->source);
    }
};

} // namespace Orv
} // namespace Kestrin

#endif
