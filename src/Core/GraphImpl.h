// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_GRAPHIMPL_H
#define KESTRIN_ORV_GRAPHIMPL_H

#include <Kestrin/Orv/Graph.h>

#include <QtCore/QVector>

#include <cstring>

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

/// Has memory fetched that will be read soon. The compiler takes a function that does nothing else for
/// one without effect and leaves its calls out; the empty statement keeps it from that.
inline void fetch(const void* memory)
{
    __builtin_prefetch(memory);
    __asm__ volatile("");
}

/// The start of a list of ports, told without reading the list: what it would answer itself, but
/// soon enough to fetch the memory ahead, and a step less for a walk to wait for.
inline const Port* firstOf(const QVector<Port>& ports)
{
    const void* const pointer = &ports;
    const char* list;
    static_assert(sizeof ports == sizeof list && alignof(Port) <= alignof(QArrayData),
                  "a QVector is a pointer to a header, which the entries follow");
    std::memcpy(&list, pointer, sizeof list);
    const auto* first = reinterpret_cast<const Port*>(list + sizeof(QArrayData));
    Q_ASSERT(first == ports.constData());
    return first;
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

    /// An input, and what a walk needs to know to go on from it.
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
        for (int steps = numNodes; from.isFedByParent() && steps > 0; --steps)
            from = input(from.source->srcNode, from.source->srcIndex);
        return from;
    }
    /// Whether the input is fed by a sibling.
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

    /// From an input of `owner` to the output that feeds it, the way precedes() and the walkers go:
    /// the first half of walkToSourceNode(), or walkAcross() alone. Answers an edge whose source is
    /// that output, of a node in the table; null when there is none.
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

    // On graphs that the caches do not hold, a walk waits for memory most of its time: each of its
    // steps tells the address of the next. But it is often known which nodes will come up, so their
    // records are fetched ahead, in two goes: first lists of ports, and, once these are there, edges.

    /// For a search that is to call feedOf() for the nodes in a queue, whose next one is `queue[0]`.
    void fetchAhead(const int* queue, int length) const
    {
        if (length <= 4)
            return;
        if (const Node* later = node(queue[4]))
            fetchList(later->inputs, 3); // what four ports take
        if (const Node* soon = node(queue[2]))
            fetchFirstEdge(soon->inputs);
    }
    /// For a walk to or from a node, and through the groups that it lies in.
    void fetchPorts(int ref) const
    {
        for (int depth = 0; hasNode(ref) && ref != Graph::kRootNodeRef && depth < 4; ++depth) {
            fetchList(nodes[ref].inputs, 2);
            fetchList(nodes[ref].outputs, 1);
            ref = nodes[ref].parent;
        }
    }
    void fetchEdges(int ref) const
    {
        for (int depth = 0; hasNode(ref) && ref != Graph::kRootNodeRef && depth < 4; ++depth) {
            fetchFirstEdge(nodes[ref].inputs);
            fetchFirstEdge(nodes[ref].outputs);
            ref = nodes[ref].parent;
        }
    }

private:
    static void fetchList(const QVector<Port>& ports, std::size_t numCacheLines)
    {
        const auto* list = reinterpret_cast<const char*>(firstOf(ports)) - sizeof(QArrayData);
        for (std::size_t line = 0; line < numCacheLines; ++line)
            fetch(list + 64 * line);
    }
    void fetchFirstEdge(const QVector<Port>& ports) const
    {
        if (!ports.isEmpty()
            && static_cast<uint>(firstOf(ports)->source) < static_cast<uint>(numEdges))
            fetch(edges + firstOf(ports)->source);
    }
};

/// What a search from input to input keeps of a node, in a byte: whether it has been reached, and an
/// output of it that has been traced to its producer, which need not be done twice. That saves the
/// walk into a group for all of its readers but the first.
class SearchMark
{
public:
    explicit SearchMark(unsigned char& byteOfNode)
        : byte(byteOfNode)
    {
    }
    /// False when the node was reached before.
    bool reach()
    {
        const bool isNew = !(byte & 1);
        byte |= 1;
        return isNew;
    }
    /// False when this very output is the one that was traced last.
    bool trace(int output)
    {
        const int number = output + 1;
        if (byte >> 1 == number)
            return false;
        if (number < 128)
            byte = static_cast<unsigned char>(number << 1 | (byte & 1));
        return true;
    }

private:
    unsigned char& byte;
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
