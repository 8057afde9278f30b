// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_INSPECT_HIERARCHY_H
#define KESTRIN_ORV_INSPECT_HIERARCHY_H

#include "Model/Table.h"

#include <Kestrin/Orv/Inspect/Snapshot.h>

namespace Kestrin {
namespace Orv {
namespace Inspect {

/// Which nodes lie in which, by the parents that the nodes name. Answers in constant time.
///
/// Parents may form a cycle: a purge that renumbers nodes can leave them so. Then each node of the
/// cycle is above all others, and above itself.
class Hierarchy
{
public:
    /// Linear in the number of nodes.
    explicit Hierarchy(const Snapshot& snapshot);

    /// Whether the parents of a node lead into a cycle instead of to a node without a parent.
    bool leadsIntoCycle(int node) const { return at(cycles, node) >= 0; }
    /// Whether `ancestor` is `node` or above it; false if one of them does not exist.
    bool isSameOrAbove(int ancestor, int node) const;

    /// All nodes, each after its parent unless the parents form a cycle.
    const Table<int>& parentsFirst() const { return order; }

private:
    void climb(const Snapshot& snapshot, int start);
    void number(const Snapshot& snapshot);

    bool exists(int node) const { return node >= 0 && node < static_cast<int>(cycles.size()); }
    bool isOnCycle(int node) const { return at(onCycle, node) != 0; }

    Table<int> cycles;    // by node: a node of the cycle that its parents lead into; -1 for none
    Table<char> onCycle;  // by node: whether it is part of that cycle
    Table<char> reached;  // by node: whether its parents have been followed
    Table<int> order;     // all nodes, parents first
    Table<int> positions; // by node: where it stands when each node is followed by all below it
    Table<int> extents;   // by node: how many nodes there are of it and below it
};

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin

#endif
