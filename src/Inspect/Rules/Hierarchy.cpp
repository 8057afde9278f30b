// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Rules/Hierarchy.h"

namespace Kestrin {
namespace Orv {
namespace Inspect {

Hierarchy::Hierarchy(const Snapshot& snapshot)
    : cycles(tableOf(snapshot.nodes.size(), -1))
    , onCycle(tableOf(snapshot.nodes.size(), char(0)))
    , reached(tableOf(snapshot.nodes.size(), char(0)))
    , positions(tableOf(snapshot.nodes.size(), 0))
    , extents(tableOf(snapshot.nodes.size(), 1))
{
    order.reserve(cycles.size());
    for (int node = 0; node < snapshot.nodes.size(); ++node)
        climb(snapshot, node);
    number(snapshot);
}

bool Hierarchy::isSameOrAbove(int ancestor, int node) const
{
    if (!exists(ancestor) || !exists(node))
        return false;
    if (isOnCycle(ancestor))
        return at(cycles, ancestor) == at(cycles, node);
    const int distance = at(positions, node) - at(positions, ancestor);
    return distance >= 0 && distance < at(extents, ancestor);
}

/// From `start` up to what is known already, or to the end.
void Hierarchy::climb(const Snapshot& snapshot, int start)
{
    enum : char { Unknown, OnTheWay, Done };
    Table<int> way;
    int node = start;
    while (exists(node) && at(reached, node) == Unknown) {
        at(reached, node) = OnTheWay;
        way.push_back(node);
        node = snapshot.nodes.at(node).parent;
    }
    int cycle = exists(node) ? at(cycles, node) : -1;
    if (exists(node) && at(reached, node) == OnTheWay) { // the way has closed a cycle at `node`
        cycle = node;
        for (auto member = way.rbegin(); *member != node; ++member)
            at(onCycle, *member) = 1;
        at(onCycle, node) = 1;
    }
    for (; !way.empty(); way.pop_back()) {
        at(cycles, way.back()) = cycle;
        at(reached, way.back()) = Done;
        order.push_back(way.back());
    }
}

/// Numbers the nodes so that all below a node follow it. The nodes of a cycle count as having no
/// parent.
void Hierarchy::number(const Snapshot& snapshot)
{
    const auto parentOf = [&](int node) {
        const int parent = snapshot.nodes.at(node).parent;
        return exists(parent) && !isOnCycle(node) ? parent : -1;
    };
    for (auto node = order.rbegin(); node != order.rend(); ++node) {
        if (parentOf(*node) >= 0)
            at(extents, parentOf(*node)) += at(extents, *node);
    }
    Table<int> next = tableOf(static_cast<int>(cycles.size()), 0); // by node: for its next child
    int nextTop = 0;
    for (const int node : order) {
        int& place = parentOf(node) >= 0 ? at(next, parentOf(node)) : nextTop;
        at(positions, node) = place;
        at(next, node) = place + 1;
        place += at(extents, node);
    }
}

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin
