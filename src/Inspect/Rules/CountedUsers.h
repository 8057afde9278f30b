// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_INSPECT_COUNTEDUSERS_H
#define KESTRIN_ORV_INSPECT_COUNTEDUSERS_H

#include "Model/PortNumbers.h"
#include "Rules/Hierarchy.h"

#include <Kestrin/Orv/Inspect/Snapshot.h>

#include <QtCore/QVector>

namespace Kestrin {
namespace Orv {
namespace Inspect {

/// How many users the renderer counts for an output, by the rule of its setup. It looks at the
/// nodes at the ends of the output's edges, one level into groups and one level out of the group,
/// whatever these nodes do with the value.
class CountedUsers
{
public:
    /// \param isNeeded by node: whether setup reaches it; kept by reference, as the others.
    /// Linear in what the snapshot holds.
    CountedUsers(const Snapshot& counted, const PortNumbers& numbers,
                 const QVector<bool>& isNeeded);

    /// Linear in the number of edges that leave the output.
    int of(int node, int output) const;

private:
    bool isUser(int node) const { return needed.value(node, false); }
    bool isUserOrRoot(int node) const { return node == 0 || isUser(node); }
    int usersInside(int group, int input) const;
    int usersOutside(int group, int output, int numLookedAt) const;

    const Snapshot& snapshot;
    const PortNumbers& ports;
    const QVector<bool>& needed;
    const Hierarchy hierarchy;
    Table<int> inside;   // by input: how many of the nodes that it feeds inside are users
    Table<int> sums;     // for each output: of its first 0, 1, 2... readers, how many are users
    Table<int> firstSum; // by output: where those begin
};

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin

#endif
