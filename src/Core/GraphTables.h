// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_GRAPHTABLES_H
#define KESTRIN_ORV_GRAPHTABLES_H

#include <Kestrin/Orv/Graph.h>

#include <QtCore/QVector>

namespace Kestrin {
namespace Orv {

// The graph in memory: two flat tables that refer to each other by position, without pointers.
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
// Both tables only grow at their ends. Only purge() drops the removed slots. A default-constructed
// record means "nothing there": look-ups return it for a missing slot.

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
    int numSourceEdges = 0; // the source edges that leave this node, see isSourceEdge()
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

/// The value for a missing entry of a list: an empty record, an empty name or, in a list of refs,
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

/// The entry at `index`, which may be any number. Every read makes this check, so no query reads
/// outside a table.
template<typename T>
const T& lookUp(const QVector<T>& list, int index)
{
    return hasIndex(list, index) ? list.at(index) : nothing<T>();
}

/// The entry at `index`, to be changed, or null.
template<typename T>
T* find(QVector<T>& list, int index)
{
    return hasIndex(list, index) ? &list[index] : nullptr;
}

/// The two tables and the simple queries on them.
struct GraphTables
{
    QVector<Node> nodes;
    QVector<Edge> edges;

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
    /// Whether a search upstream can end at the edge's source. walkAcross() follows regular edges
    /// to their source, walkDown() follows up edges. A search finds nothing else.
    bool isSourceEdge(const Edge& edge) const { return isRegular(edge) || isUp(edge); }
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
