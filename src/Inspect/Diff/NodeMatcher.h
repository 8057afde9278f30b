// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_INSPECT_NODEMATCHER_H
#define KESTRIN_ORV_INSPECT_NODEMATCHER_H

#include "Diff/DiffSide.h"

#include <QtCore/QHash>

#include <deque>

namespace Kestrin {
namespace Orv {
namespace Inspect {

/// Finds the nodes and ports that are the same in two snapshots, and sets them as matches of each
/// other.
///
/// Nodes have the same shape if they look the same from outside, except for their names. The steps,
/// each for nodes that have no match yet:
///   1. children of matched nodes: of the same name
///   2. renamed children: of the same shape, with the most connections and children in common
///   3. renamed neighbours of matched nodes: of the same shape, at the same port
///   4. moved nodes: of the same name and shape, anywhere
///   5. renamed children: of the same shape, even without anything else in common
///   6. renamed ports of matched nodes: at the same index, connected in the same way
/// Every new match is followed by steps 1 to 3 for its children and neighbours.
class NodeMatcher
{
public:
    NodeMatcher(DiffSide& older, DiffSide& newer);

    void run();

private:
    struct Pair
    {
        int older;
        int newer;
    };
    /// By node: a number that is the same for nodes of the same shape, on both sides.
    using Shapes = Table<int>;

    Shapes shapesOf(const DiffSide& side);
    void match(int older, int newer);
    void matchPorts(int older, int newer, bool isOutput);
    void matchPort(const PortRef& older, const PortRef& newer);
    bool isFree(int older, int newer) const;
    bool canBeRenamed(int older, int newer) const;

    void settle();
    void matchChildren(const Pair& parents);
    void matchByEvidence(const Pair& parents);
    void matchNeighbours(const Pair& pair);
    void matchReaders(const QVector<PortRef>& older, const QVector<PortRef>& newer);
    void matchMoved();
    void matchRest();

    void matchRenamedPorts();
    PortRef likelyMatch(const PortRef& newer) const;
    bool areConnectedAlike(const PortRef& older, const PortRef& newer) const;

    DiffSide& before;
    DiffSide& after;
    QHash<QString, int> shapeNumbers;
    Shapes shapesBefore;
    Shapes shapesAfter;
    Table<Pair> pairs; // all matches, in the order in which they were found
    // New matches that steps 1, 2 and 3 have not looked at.
    std::deque<Pair> toMatchChildren;
    std::deque<Pair> toMatchByEvidence;
    std::deque<Pair> toMatchNeighbours;
};

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin

#endif
