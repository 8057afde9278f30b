// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_INSPECT_EDGECHECK_H
#define KESTRIN_ORV_INSPECT_EDGECHECK_H

#include "ArrowOrder.h"

#include <Kestrin/Orv/Inspect/Paths.h>
#include <Kestrin/Orv/Inspect/Snapshot.h>

#include <vector>

namespace Kestrin {
namespace Orv {
namespace Inspect {

/// Adds edges to a snapshot by the rules of Graph::addEdge(), addUpEdge() and addDownEdge(), which
/// one follows from the nodes at its ends.
///
/// The graph searches everything upstream for each edge. Here that is done only where it may find
/// something: all edges are looked through for circles once, in a relation that holds more than the
/// graph's own. Those outside of circles close none, and of the others, those that do not complete
/// a circle of this relation.
class EdgeCheck
{
public:
    enum Verdict { Accepted, NoSuchPort, NotRelated, AlreadyFed, LeavesGroup, Cycle };

    /// \param target has sound nodes, and no edges yet. Stays where it is while this is used.
    /// \param candidates all edges that add() will be asked about.
    EdgeCheck(Snapshot& target, const QVector<EdgeRecord>& candidates);

    /// Adds an edge unless a rule forbids it.
    Verdict add(const EdgeRecord& edge);

    /// The kind that an edge between two nodes has.
    static EdgeKind kindOf(const Snapshot& snapshot, int srcNode, int dstNode);
    /// The ports at its ends.
    static PortRef source(const EdgeRecord& edge, EdgeKind kind);
    static PortRef destination(const EdgeRecord& edge, EdgeKind kind);

    /// The ports of the whole circle that the edge just refused would close, along the flow, from
    /// that edge's source to its source.
    QVector<PortRef> cycle() const;

private:
    /// From a vertex to one that a search upstream may reach next.
    struct Arrow
    {
        int from;
        int to;
    };
    static Arrow arrowOf(const EdgeRecord& edge, EdgeKind kind);
    static std::vector<int> circlesOf(const Snapshot& target, const QVector<EdgeRecord>& candidates,
                                      std::vector<int>& finished);
    bool closesCircle(const Arrow& arrow);
    void giveUpOn(const Arrow& arrow);
    bool precedes(int upstream, int downstream);

    Snapshot& snapshot;
    std::vector<int> finished; // by vertex: the order in which the search for circles left them
    std::vector<int> circles;  // by vertex: the circle that it may be part of; -1 for none
    std::vector<bool> closed;  // by circle: whether it is one, of edges that the graph takes
    ArrowOrder order;          // of the accepted edges in the others

    // The last search: which nodes it has reached, and through which input of which.
    struct Step
    {
        int node;
        int from;  // position in `reached`
        int input; // of the node there
    };
    std::vector<Step> reached;
    std::vector<int> lastSearch; // by node
    int searches = 0;
    EdgeRecord refused;
};

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin

#endif
