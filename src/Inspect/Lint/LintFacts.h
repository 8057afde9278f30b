// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_INSPECT_LINTFACTS_H
#define KESTRIN_ORV_INSPECT_LINTFACTS_H

#include "Rules/Hierarchy.h"
#include "Rules/ValueFlow.h"

#include <Kestrin/Orv/Inspect/Paths.h>
#include <Kestrin/Orv/Inspect/Schedule.h>
#include <Kestrin/Orv/Inspect/Snapshot.h>

namespace Kestrin {
namespace Orv {
namespace Inspect {

/// What the checks ask of a snapshot, worked out once before they run.
struct LintFacts
{
    /// Linear in what the snapshot holds.
    explicit LintFacts(const Snapshot& shown);

    const NodeRecord& node(int ref) const { return snapshot.node(ref); }
    bool exists(int ref) const { return ref >= 0 && ref < snapshot.nodes.size(); }
    bool isLive(int ref) const { return exists(ref) && !node(ref).removed; }
    bool isGroup(int ref) const { return ref > 0 && isLive(ref) && !node(ref).pass; }
    /// A group without a pass anywhere below it.
    bool isIdleGroup(int ref) const { return isGroup(ref) && !at(holdsPass, ref); }
    /// Whether the node has a pass that runs.
    bool runs(int ref) const { return schedule.positions.value(ref, -1) >= 0; }
    /// Whether a pass or an output of the renderer takes the value of a port, or would if it ran.
    /// False for a port that does not exist.
    bool isRead(const PortRef& port) const;

    /// The path of a node that may be the root or none at all.
    QString nameOf(int ref) const;

    const Snapshot& snapshot;
    const Paths paths;
    const ValueFlow flow;
    const Schedule schedule;
    const Hierarchy hierarchy;
    Table<char> holdsPass; ///< by node: whether a pass lies below it
    Table<char> read;      ///< by port number: see isRead()

private:
    void findPasses();
    void findRead();
};

/// A number of things: "1 edge", "2 edges".
QString counted(int number, const char* things);

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin

#endif
