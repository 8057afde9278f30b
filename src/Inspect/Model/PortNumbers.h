// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_INSPECT_PORTNUMBERS_H
#define KESTRIN_ORV_INSPECT_PORTNUMBERS_H

#include "Model/Table.h"

#include <Kestrin/Orv/Inspect/Snapshot.h>

namespace Kestrin {
namespace Orv {
namespace Inspect {

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

    /// The number of a port; -1 for one that does not exist.
    int of(const PortRef& port) const
    {
        return port.isOutput ? output(port.node, port.index) : input(port.node, port.index);
    }
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
    int first(int node) const { return at(firsts, node); }

    const Snapshot& snapshot;
    Table<int> firsts; // by node
    int count = 0;
};

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin

#endif
