// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Rules/CountedUsers.h"

namespace Kestrin {
namespace Orv {
namespace Inspect {

CountedUsers::CountedUsers(const Snapshot& counted, const PortNumbers& numbers,
                           const QVector<bool>& isNeeded)
    : snapshot(counted)
    , ports(numbers)
    , needed(isNeeded)
    , hierarchy(counted)
    , inside(tableOf(numbers.size(), 0))
    , firstSum(tableOf(numbers.size(), 0))
{
    for (int node = 0; node < snapshot.nodes.size(); ++node) {
        const NodeRecord& record = snapshot.nodes.at(node);
        for (int i = 0; i < record.inputs.size(); ++i) {
            int& sum = at(inside, ports.of({node, i, false}));
            for (const int edge : record.inputs.at(i).destinations)
                sum += isUser(snapshot.edge(edge).dstNode);
        }
        for (int i = 0; i < record.outputs.size(); ++i) {
            at(firstSum, ports.of({node, i, true})) = static_cast<int>(sums.size());
            int sum = 0;
            sums.push_back(sum);
            for (const int edge : record.outputs.at(i).destinations) {
                sum += isUserOrRoot(snapshot.edge(edge).dstNode);
                sums.push_back(sum);
            }
        }
    }
}

/// The users that a group hands an input on to.
int CountedUsers::usersInside(int group, int input) const
{
    const int number = ports.of({group, input, false});
    return number >= 0 ? at(inside, number) : 0;
}

/// The users among the oldest readers of a group's output.
int CountedUsers::usersOutside(int group, int output, int numLookedAt) const
{
    const int number = ports.of({group, output, true});
    const int numReaders = snapshot.output(group, output).destinations.size();
    return number >= 0 ? at(sums, at(firstSum, number) + qMin(numReaders, numLookedAt)) : 0;
}

int CountedUsers::of(int node, int output) const
{
    const QVector<int>& destinations = snapshot.output(node, output).destinations;
    const int parent = snapshot.node(node).parent;
    int count = 0;
    for (const int destination : destinations) {
        const EdgeRecord& edge = snapshot.edge(destination);
        const int dest = edge.dstNode;
        const bool entersGroup =
            !snapshot.node(dest).children.isEmpty() && !hierarchy.isSameOrAbove(dest, parent);
        if (entersGroup)
            count += usersInside(dest, edge.dstIndex);

        if (dest != parent) {
            count += isUserOrRoot(dest);
        } else if (parent == 0) {
            ++count;
        } else {
            // Of the readers of the group, as many are looked at as this output has edges.
            count += usersOutside(parent, edge.dstIndex, destinations.size());
            count += isUser(parent);
        }
    }
    return count;
}

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin
