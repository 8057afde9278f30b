// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_INSPECT_DIFFSIDE_H
#define KESTRIN_ORV_INSPECT_DIFFSIDE_H

#include "Model/PortNumbers.h"

#include <Kestrin/Orv/Inspect/Paths.h>
#include <Kestrin/Orv/Inspect/Snapshot.h>

namespace Kestrin {
namespace Orv {
namespace Inspect {

/// One of the two snapshots that are compared, with the counterparts of its nodes and ports in the
/// other one.
///
/// Only listed nodes are compared: the root, and every live node that a listed parent has among
/// its children. For all queries an unlisted node feeds nothing and reads nothing.
///
/// Keeps a reference to the snapshot, which must outlive this and stay as it is.
class DiffSide
{
public:
    explicit DiffSide(const Snapshot& compared);

    const Snapshot& snapshot() const { return shown; }
    const Paths& paths() const { return names; }

    /// The listed nodes, parents before their children.
    const Table<int>& nodes() const { return listed; }
    bool isListed(int ref) const
    {
        return ref >= 0 && ref < shown.nodes.size() && at(listedFlags, ref);
    }
    const NodeRecord& node(int ref) const { return shown.node(ref); }
    /// The listed children of a node.
    Table<int> children(int ref) const;
    const QVector<PortRecord>& ports(int ref, bool isOutput) const
    {
        return isOutput ? node(ref).outputs : node(ref).inputs;
    }

    /// The port of a listed node that feeds a port; no port if there is none.
    PortRef feeder(const PortRef& port) const;
    /// The ports of listed nodes that a port feeds.
    QVector<PortRef> readers(const PortRef& port) const;

    /// The counterpart of a node; -1 if it has none so far.
    int match(int ref) const { return at(nodeMatches, ref); }
    bool isMatched(int ref) const { return match(ref) >= 0; }
    void setMatch(int ref, int other) { at(nodeMatches, ref) = other; }
    /// The counterpart of a port; no port if it has none so far.
    PortRef match(const PortRef& port) const;
    bool isMatched(const PortRef& port) const { return match(port).node >= 0; }
    /// \param port an existing port of a node that has a match
    /// \param otherIndex the index of the same side's port of that match
    void setMatch(const PortRef& port, int otherIndex)
    {
        at(portMatches, numbers.of(port)) = otherIndex;
    }

private:
    const Snapshot& shown;
    const Paths names;
    const PortNumbers numbers;
    Table<int> listed;
    Table<char> listedFlags; // by node
    Table<int> nodeMatches;  // by node
    Table<int> portMatches;  // by port number: the index of the counterpart; -1 for none
};

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin

#endif
