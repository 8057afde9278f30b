// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_INSPECT_NODETREE_H
#define KESTRIN_ORV_INSPECT_NODETREE_H

#include "Model/LookUp.h"

#include <Kestrin/Orv/Inspect/Snapshot.h>

#include <QtCore/QVector>

namespace Kestrin {
namespace Orv {
namespace Inspect {

/// The nodes that are not removed, as a tree that holds each exactly once, whatever the snapshot
/// holds.
class NodeTree
{
public:
    explicit NodeTree(const Snapshot& snapshot);

    /// Those that the node lists, in its order, and then those that it does not.
    const QVector<int>& children(int node) const { return lookUp(below, node); }
    /// Whether the node's parent lists it.
    bool isListed(int node) const { return lookUp(listed, node); }
    /// One node of each part of the tree that cannot be reached from the root: the top of what lies
    /// below a removed node, any node of a cycle of parents.
    const QVector<int>& detached() const { return unreachable; }

private:
    void linkChildren(const Snapshot& snapshot);
    void findDetached(const Snapshot& snapshot);

    QVector<QVector<int>> below;
    QVector<bool> listed;
    QVector<int> unreachable;
};

/// Depth first, calls `enter` before the children of a node and `leave` after them, each with the
/// node and its depth. Leaves out nodes that are marked as visited, and marks the others. Without
/// recursion: a tree may be as deep as there are nodes.
template<typename Enter, typename Leave>
void traverse(const NodeTree& tree, int from, int depth, QVector<bool>& visited, const Enter& enter,
              const Leave& leave)
{
    struct Level
    {
        int node;
        int next;
    };
    QVector<Level> stack{{from, 0}};
    visited[from] = true;
    enter(from, depth);
    while (!stack.isEmpty()) {
        Level& level = stack.last();
        const QVector<int>& children = tree.children(level.node);
        if (level.next == children.size()) {
            leave(level.node, depth + stack.size() - 1);
            stack.removeLast();
            continue;
        }
        const int child = children.at(level.next++);
        if (visited.at(child))
            continue;
        visited[child] = true;
        enter(child, depth + stack.size());
        stack.append({child, 0});
    }
}

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin

#endif
