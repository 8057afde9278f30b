// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_GRAPHIMPL_H
#define KESTRIN_ORV_GRAPHIMPL_H

#include <Kestrin/Orv/Graph.h>

#include <QtCore/QVector>

namespace Kestrin {
namespace Orv {

// The graph in memory: two flat tables that hold each other's positions, no pointers.
//
//     nodes    0     1     2     3          edges    0     1     2
//           +-----+-----+-----+-----+             +-----+-----+-----+
//           |root |     |  x  |     |             |     |  x  |     |   x = removed
//           +-----+-----+-----+-----+             +-----+-----+-----+
//             |     ^     parent ^ |                |  ^
//             |     +------------+ |                |  +- Port::source (-1: unfed) and
//             +- children: 1, 3    |                |     Port::destinations name edges
//                                  +- inputs,       +- srcNode, srcIndex, dstNode, dstIndex
//                                     outputs          name nodes and their ports
//
// Both tables only grow at their ends; purge() alone drops the removed slots. A default-constructed
// record stands for "nothing there": it is what look-ups of a missing slot answer.

struct Port
{
    QString name;
    int source = Graph::kInvalidEdgeRef; // the edge that feeds this port
    QVector<int> destinations;           // the edges that leave it, oldest first
    int group = Graph::kInvalidGroupRef; // position in the node's group names, or any other number
};

struct Node
{
    QString name;
    int parent = Graph::kInvalidNodeRef;
    int value = -1;
    QVector<Port> inputs;
    QVector<Port> outputs;
    QVector<QString> inputGroups;
    QVector<QString> outputGroups; // stays empty: addOutputGroup() names its groups in inputGroups
    QVector<int> children;
    bool removed = true;
};

struct Edge
{
    int srcNode = Graph::kInvalidNodeRef;
    int srcIndex = -1;
    int dstNode = Graph::kInvalidNodeRef;
    int dstIndex = -1;
    bool removed = true;
};

} // namespace Orv
} // namespace Kestrin

Q_DECLARE_TYPEINFO(Kestrin::Orv::Port, Q_MOVABLE_TYPE);
Q_DECLARE_TYPEINFO(Kestrin::Orv::Node, Q_MOVABLE_TYPE);
Q_DECLARE_TYPEINFO(Kestrin::Orv::Edge, Q_MOVABLE_TYPE);

namespace Kestrin {
namespace Orv {

template<typename T>
bool hasIndex(const QVector<T>& list, int index)
{
    return static_cast<uint>(index) < static_cast<uint>(list.size());
}

/// What stands for a missing entry of a list: an empty record, an empty name or, in a list of refs,
/// -1.
template<typename T>
Q_NEVER_INLINE const T& nothing()
{
    static const T none{};
    return none;
}

template<>
inline const int& nothing<int>()
{
    static const int none = -1;
    return none;
}

/// The entry at any `index` whatever. With this one check in every read, no query can leave a
/// table.
template<typename T>
const T& lookUp(const QVector<T>& list, int index)
{
    return hasIndex(list, index) ? list.at(index) : nothing<T>();
}

/// The entry at `index`, or null.
template<typename T>
const T* entry(const QVector<T>& list, int index)
{
    return hasIndex(list, index) ? list.constData() + index : nullptr;
}

/// The entry at `index` for changing, or null.
template<typename T>
T* find(QVector<T>& list, int index)
{
    return hasIndex(list, index) ? &list[index] : nullptr;
}

/// The addresses of both tables, for the walks against the flow of data: the ordering query, the
/// walkers and the renderer's frames consist of little else, so the walks are here to be inlined and
/// what they read is to stay in registers. Lasts until the graph changes.
///
/// An edge that feeds a port enters the very node that owns the port, so the kind of the edge follows
/// from its source alone. On a sound tree each step changes the level and a walk ends by itself. After
/// a purge it may run in a circle, so no walk takes more steps than there are nodes.
struct GraphView
{
    const Node* nodes;
    int numNodes;
    const Edge* edges;
    int numEdges;

    const Node* node(int ref) const
    {
        return static_cast<uint>(ref) < static_cast<uint>(numNodes) ? nodes + ref : nullptr;
    }
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
        const Port* record = entry(ports, port);
        return record ? sourceOf(*record) : nullptr;
    }

    /// An input's node, and the edge that feeds the input; null for what there is not.
    struct Trail
    {
        const Node* owner;
        const Edge* source;

        bool isDown() const { return source && source->srcNode == owner->parent; }
    };
    Trail trailOf(int ref, int port) const
    {
        const Node* owner = node(ref);
        return {owner, owner ? sourceOf(owner->inputs, port) : nullptr};
    }

    /// walkUp(), answering what walkAcross() goes on from. Moves the position if it climbs.
    Trail climb(Trail trail, int& ref, int& port) const
    {
        for (int steps = numNodes; trail.isDown() && steps > 0; --steps) {
            ref = trail.source->srcNode;
            port = trail.source->srcIndex;
            trail = trailOf(ref, port);
        }
        return trail;
    }
    /// walkAcross(), given the input's node and the edge that feeds the input.
    bool cross(Trail trail, int& ref, int& port) const
    {
        if (!trail.source || parentOf(trail.source->srcNode) != trail.owner->parent)
            return false;
        ref = trail.source->srcNode;
        port = trail.source->srcIndex;
        return true;
    }
    bool walkDown(int& ref, int& port) const
    {
        bool moved = false;
        for (int steps = numNodes; steps > 0; --steps) {
            const Node* owner = node(ref);
            const Edge* source = owner ? sourceOf(owner->outputs, port) : nullptr;
            if (!source || parentOf(source->srcNode) != ref)
                break;
            ref = source->srcNode;
            port = source->srcIndex;
            moved = true;
        }
        return moved;
    }

    bool walkUp(int& ref, int& port) const
    {
        const Trail start = trailOf(ref, port);
        climb(start, ref, port);
        return start.isDown();
    }
    bool walkAcross(int& ref, int& port) const { return cross(trailOf(ref, port), ref, port); }
    bool walkToSourceNode(int& ref, int& port) const
    {
        const bool fed = cross(climb(trailOf(ref, port), ref, port), ref, port);
        if (fed)
            walkDown(ref, port);
        return fed;
    }

    /// The node that feeds an input of `owner`, traced as precedes() and the walkers do; -1 if there
    /// is none.
    int feedingNode(const Node& owner, const Port& input, bool followHierarchy) const
    {
        Trail trail{&owner, sourceOf(input)};
        int ref = Graph::kInvalidNodeRef;
        int port = -1;
        if (followHierarchy)
            trail = climb(trail, ref, port);
        if (!cross(trail, ref, port))
            return Graph::kInvalidNodeRef;
        if (followHierarchy)
            walkDown(ref, port);
        return node(ref) ? ref : Graph::kInvalidNodeRef;
    }
};

/// The two tables and the plain questions to them.
struct GraphTables
{
    QVector<Node> nodes;
    QVector<Edge> edges;

    GraphView view() const
    {
        return {nodes.constData(), nodes.size(), edges.constData(), edges.size()};
    }

    const Node& node(int ref) const { return lookUp(nodes, ref); }
    const Edge& edge(int ref) const { return lookUp(edges, ref); }
    const Port& input(int ref, int port) const { return lookUp(node(ref).inputs, port); }
    const Port& output(int ref, int port) const { return lookUp(node(ref).outputs, port); }

    bool isRegular(const Edge& edge) const
    {
        return !edge.removed && node(edge.srcNode).parent == node(edge.dstNode).parent;
    }
    bool isDown(const Edge& edge) const
    {
        return !edge.removed && edge.srcNode == node(edge.dstNode).parent;
    }
    bool isUp(const Edge& edge) const
    {
        return !edge.removed && node(edge.srcNode).parent == edge.dstNode;
    }
};

struct Graph::Impl : GraphTables
{
    Node* liveNode(int ref);

    int connect(Port& left, Port& entered, const Edge& edge);
    void removeEdge(int ref);
    void disconnect(const Port& port);

    QVector<int> markSubtreeRemoved(int ref);
};

inline const GraphTables& tablesOf(const Graph& graph)
{
    return *graph.impl;
}

} // namespace Orv
} // namespace Kestrin

#endif
