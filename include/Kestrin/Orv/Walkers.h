// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_WALKERS_H
#define KESTRIN_ORV_WALKERS_H

#include <Kestrin/Orv/Export.h>

#include <QtCore/qglobal.h>

namespace Kestrin {
namespace Orv {

class Graph;
struct WalkFrame;

/// @file
/// Three iterators over a graph's nodes. All are used in the same way:
///
///     for (BottomUpInputWalker walker(graph, node, true); walker.valid(); walker.next())
///         visit(walker.node());
///
/// A walker keeps a pointer to its graph. The graph must neither change nor be destroyed while the
/// walker is in use. After the last node, valid() stays false, node() returns -1 and next() does
/// nothing.
///
/// The input walkers accept any start. For -1 they yield nothing; for another start that is not in
/// the graph, they yield only that number. Their flag followHierarchy chooses how an input leads to
/// a node, as in Graph::precedes(). false follows only a regular edge that feeds the input
/// directly. true traces the input through group boundaries to the node that produces its value.

/// Visits all nodes that feed a start node, directly or indirectly, and the start node last. Yields
/// each node once, sources before the nodes that they feed, inputs in ascending order. (If edges
/// form a cycle through the start node, the start node is yielded a second time.)
///
/// Linear in the nodes and inputs reached. Allocates one byte per child of the root, and a frame
/// for each node on the current path. Allocates one byte per node of the graph when the walk
/// reaches a node whose ref is not below the number of the root's children.
class ORV_EXPORT BottomUpInputWalker
{
public:
    /// Begins the walk that ends at \p node and moves to its first node. For -1, valid() is false
    /// from the start.
    BottomUpInputWalker(const Graph& graph, int node, bool followHierarchy);
    ~BottomUpInputWalker();
    BottomUpInputWalker(const BottomUpInputWalker&) = delete;
    BottomUpInputWalker& operator=(const BottomUpInputWalker&) = delete;

    /// False once the last node has been passed.
    bool valid() const;
    /// The current node; -1 when not valid.
    int node() const;
    /// Moves to the next node; does nothing when not valid.
    void next();

private:
    void moveNext();
    void pop();

    const Graph* graph;
    bool followHierarchy;
    unsigned char*
        visited;      // 0 or 1 by node ref, for the refs below the number of the root's children
    WalkFrame* stack; // the top frame; null at the end
};

/// Visits the subtree of a start node: children in their order and before their parent, the start
/// node last. Yields nothing when the start is not a valid node. Yields removed children below the
/// start like any other if they are still listed. If the lists of children no longer form a tree
/// (see Graph::purge()), yields each node once.
///
/// Linear in the nodes reached. Allocates a frame for each node on the current path and, if the
/// lists of children no longer form a tree, one bit per node of the graph.
class ORV_EXPORT BottomUpSubgraphWalker
{
public:
    /// Begins the walk that ends at \p node and moves to its first node. If \p node is not valid,
    /// valid() is false from the start.
    BottomUpSubgraphWalker(const Graph& graph, int node);
    ~BottomUpSubgraphWalker();
    BottomUpSubgraphWalker(const BottomUpSubgraphWalker&) = delete;
    BottomUpSubgraphWalker& operator=(const BottomUpSubgraphWalker&) = delete;

    /// False once the last node has been passed.
    bool valid() const;
    /// The current node; -1 when not valid.
    int node() const;
    /// Moves to the next node; does nothing when not valid.
    void next();

private:
    void moveNext();
    void pop();

    const Graph* graph;
    WalkFrame* stack; // the top frame; null at the end
};

/// Visits a start node and then all nodes that feed it, directly or indirectly: each node once,
/// level by level, inputs in ascending order.
///
/// Linear in the nodes and inputs reached. Allocates, once, a byte and an int per node of the
/// graph.
class ORV_EXPORT BreadthFirstInputWalker
{
public:
    /// Begins the walk at \p node itself. For -1, valid() is false from the start.
    BreadthFirstInputWalker(const Graph& graph, int node, bool followHierarchy);
    ~BreadthFirstInputWalker();
    BreadthFirstInputWalker(const BreadthFirstInputWalker&) = delete;
    BreadthFirstInputWalker& operator=(const BreadthFirstInputWalker&) = delete;

    /// False once the last node has been passed.
    bool valid() const;
    /// The current node; -1 when not valid.
    int node() const;
    /// Moves to the next node; does nothing when not valid.
    void next();

private:
    const Graph* graph;
    bool followHierarchy;
    unsigned char* visited; // 0 or 1 by node ref
    int* queue;             // preceded by the length of `visited`
    int head;
    int tail;
};

} // namespace Orv
} // namespace Kestrin

#endif
