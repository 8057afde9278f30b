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
/// Three iterators over a graph's nodes, used alike:
///
///     for (BottomUpInputWalker walker(graph, node, true); walker.valid(); walker.next())
///         visit(walker.node());
///
/// A walker keeps a pointer to its graph, which must neither change nor go away while the walker is
/// in use. After the last node valid() stays false, node() answers -1 and next() does nothing.
///
/// The input walkers take any start but -1, and yield one that is not in the graph alone. Their
/// flag followHierarchy chooses, as in Graph::precedes(), how an input leads to a node: false
/// follows only a regular edge that feeds the input directly; true traces the input through group
/// boundaries to the node that produces its value.

/// Visits all nodes that feed a start node, directly or not: each once, sources before the nodes
/// that they feed, inputs in ascending order, the start node last. (Where edges have been wired
/// into a cycle through the start node, it is yielded a second time.)
///
/// Linear in the nodes and inputs reached. Allocates one byte per child of the root, a frame for
/// each node on the current path, and one byte per node of the graph when the walk reaches a node
/// whose ref is not below the number of the root's children.
class ORV_EXPORT BottomUpInputWalker
{
public:
    /// Moves to the first node of the walk that ends at \p node; not valid at once for -1.
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

/// Visits the subtree of a start node: children before their parent and in their order, the start
/// node last. Yields nothing when the start is not a valid node; below it, children that are
/// removed but still listed are yielded like any other. Where the lists of children are no tree any
/// more (see Graph::purge()), each node is yielded once.
///
/// Linear in the nodes reached. Allocates a frame for each node on the current path and, where the
/// lists of children are no tree any more, one bit per node of the graph.
class ORV_EXPORT BottomUpSubgraphWalker
{
public:
    /// Moves to the first node of the walk that ends at \p node; not valid at once unless that is
    /// valid.
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

/// Visits a start node and then all nodes that feed it, directly or not: each once, level by level,
/// inputs in ascending order.
///
/// Linear in the nodes and inputs reached. Allocates, once, a byte and an int per node of the
/// graph.
class ORV_EXPORT BreadthFirstInputWalker
{
public:
    /// Stands on \p node itself; not valid at once for -1.
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
