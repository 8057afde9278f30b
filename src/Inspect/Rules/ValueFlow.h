// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_INSPECT_VALUEFLOW_H
#define KESTRIN_ORV_INSPECT_VALUEFLOW_H

#include "Model/PortNumbers.h"

#include <Kestrin/Orv/Inspect/Snapshot.h>

#include <QtCore/QHash>
#include <QtCore/QVector>

namespace Kestrin {
namespace Orv {
namespace Inspect {

/// Where values come from: for each port, where the walks of the snapshot end. Each edge is
/// followed once when this is made, however many ports lie behind it.
///
/// Keeps a reference to the snapshot, which must neither change nor go while this is used.
class ValueFlow
{
public:
    /// Linear in what the snapshot holds. Where parents form a cycle, walks of more steps than
    /// there are nodes are taken one by one.
    explicit ValueFlow(const Snapshot& shown);

    /// The end of a walk, and how many edges it followed.
    struct End
    {
        PortRef at;
        int steps = 0;
    };
    /// From an input out of groups, as Snapshot::walkUp(); from an output into groups, as
    /// Snapshot::walkDown().
    End end(const PortRef& port) const;

    /// The output that an input takes its value from, and the way there.
    struct Source
    {
        bool found = false; ///< false: no sibling feeds the input at which the way up ends
        PortRef at;         ///< the output that produces the value, or the end of the way up
        int ups = 0;        ///< down edges followed back, out of groups
        int edge = -1;      ///< the edge between siblings
        int downs = 0;      ///< up edges followed back, into groups
    };
    /// As Snapshot::walkToSourceNode().
    Source source(const PortRef& input) const;

    /// Whether a parameter or the output of a live pass reaches a port.
    bool carriesValue(const PortRef& port) const;

    /// The numbers by which tables are made that say something of each port.
    const PortNumbers& ports() const { return numbers; }

private:
    enum State : char { Unknown, OnTheWay, Known };
    /// For a port whose walk runs into a cycle of ports.
    struct Approach
    {
        int cycle;    // position in `cycles`
        int entry;    // position in that cycle at which the walk enters it
        int distance; // edges followed up to there
    };

    void follow(PortRef port, Table<State>& states);
    void settleCycle(Table<State>& states, int entry);
    void settleApproach(const Approach& last, Table<State>& states);
    void setEnd(const PortRef& port, const End& end, Table<State>& states);
    End walk(PortRef port) const;

    const Snapshot& snapshot;
    PortNumbers numbers;
    Table<End> ends; // by port number
    Table<PortRef> way;
    Table<Table<PortRef>> cycles;
    QHash<int, Approach> approaches; // by port number: those that lead into a cycle
};

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin

#endif
