// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Picture/NodeTree.h"

namespace Kestrin {
namespace Orv {
namespace Inspect {

NodeTree::NodeTree(const Snapshot& snapshot)
    : below(snapshot.nodes.size())
    , listed(snapshot.nodes.size(), false)
{
    linkChildren(snapshot);
    findDetached(snapshot);
}

void NodeTree::linkChildren(const Snapshot& snapshot)
{
    const int numNodes = snapshot.nodes.size();
    for (int parent = 0; parent < numNodes; ++parent) {
        for (const int child : snapshot.nodes.at(parent).children) {
            const NodeRecord& node = snapshot.node(child);
            if (node.removed || node.parent != parent || child == 0 || listed.at(child))
                continue;
            listed[child] = true;
            below[parent].append(child);
        }
    }
    for (int ref = 1; ref < numNodes; ++ref) {
        const NodeRecord& node = snapshot.nodes.at(ref);
        if (!node.removed && !listed.at(ref) && node.parent >= 0 && node.parent < numNodes)
            below[node.parent].append(ref);
    }
}

void NodeTree::findDetached(const Snapshot& snapshot)
{
    const int numNodes = snapshot.nodes.size();
    QVector<bool> visited(numNodes, false);
    const auto visit = [&](int ref) {
        const auto nothing = [](int, int) {};
        traverse(*this, ref, 0, visited, nothing, nothing);
    };
    if (numNodes > 0)
        visit(0);
    for (const bool isCycle : {false, true}) { // first the tops, which lead to all but cycles
        for (int ref = 1; ref < numNodes; ++ref) {
            const NodeRecord& node = snapshot.nodes.at(ref);
            if (node.removed || visited.at(ref) || !(isCycle || snapshot.node(node.parent).removed))
                continue;
            unreachable.append(ref);
            visit(ref);
        }
    }
}

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin
