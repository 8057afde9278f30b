// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_INSPECT_PORTNUMBERS_H
#define KESTRIN_ORV_INSPECT_PORTNUMBERS_H

#include <Kestrin/Orv/Inspect/Snapshot.h>

#include <cstddef>
#include <vector>

namespace Kestrin {
namespace Orv {
namespace Inspect {

/// A list that is filled in the order of node refs, edge refs or port numbers.
template<typename T>
using Table = std::vector<T>;

template<typename T>
T& at(Table<T>& table, int index)
{
    return table[static_cast<std::size_t>(index)];
}
template<typename T>
const T& at(const Table<T>& table, int index)
{
    return table[static_cast<std::size_t>(index)];
}
template<typename T>
Table<T> tableOf(int size, const T& value)
{
    return Table<T>(static_cast<std::size_t>(size), value);
}

/// Numbers all ports of a snapshot from 0, so that a plain list can say something of each.
class PortNumbers
{
public:
    explicit PortNumbers(const Snapshot& shown)
        : snapshot(shown)
    {
        firsts.reserve(static_cast<std::size_t>(snapshot.nodes.size()) + 1);
        for (const NodeRecord& node : snapshot.nodes) {
            firsts.push_back(count);
            count += node.inputs.size() + node.outputs.size();
        }
        firsts.push_back(count);
    }

    int size() const { return count; }

    /// -1 for a port that does not exist.
    int input(int node, int index) const
    {
        const NodeRecord& record = snapshot.node(node);
        return index >= 0 && index < record.inputs.size() ? first(node) + index : -1;
    }
    int output(int node, int index) const
    {
        const NodeRecord& record = snapshot.node(node);
        return index >= 0 && index < record.outputs.size()
            ? first(node) + record.inputs.size() + index
            : -1;
    }

private:
    int first(int node) const { return firsts[static_cast<std::size_t>(node)]; }

    const Snapshot& snapshot;
    std::vector<int> firsts; // by node
    int count = 0;
};

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin

#endif
