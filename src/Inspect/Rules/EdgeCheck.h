// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_INSPECT_EDGECHECK_H
#define KESTRIN_ORV_INSPECT_EDGECHECK_H

#include "Rules/TopologicalOrder.h"
#include "Rules/UpstreamSearch.h"

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
/// something: all edges are looked through for cycles once, in a relation that holds more than the
/// graph's own. Those outside of cycles close none, and of the others, those that do not complete
/// a cycle of this relation.
class EdgeCheck
{
public:
    enum Verdict { Accepted, NoSuchPort, NotRelated, AlreadyFed, LeavesGroup, Cycle };

    /// \param target has sound nodes, and no edges yet. Stays where it is while this is used.
    /// \param candidates all edges that add() will be asked about.
    EdgeCheck(Snapshot& target, const QVector<EdgeRecord>& candidates);

    /// Adds an edge unless a rule forbids it.
    Verdict add(const EdgeRecord& edge);

    /// The ports of the whole cycle that the edge just refused would close, along the flow, from
    /// that edge's source to its source.
    QVector<PortRef> cycle() const;

private:
    /// From a vertex to one that a search upstream may reach next.
    struct Arc
    {
        int from;
        int to;
    };
    static Arc arcOf(const EdgeRecord& edge, EdgeKind kind);
    static std::vector<int> cyclesOf(const Snapshot& target, const QVector<EdgeRecord>& candidates,
                                     std::vector<int>& finished);
    bool closesCycle(const Arc& arc);
    void giveUpOn(const Arc& arc);

    Snapshot& snapshot;
    std::vector<int> finished; // by vertex: the order in which the search for cycles left them
    std::vector<int> cycles;   // by vertex: the cycle that it may be part of; -1 for none
    std::vector<bool> closed;  // by cycle: whether it is one, of edges that the graph takes
    TopologicalOrder order;    // of the accepted edges in the others
    UpstreamSearch search;     // of the accepted edges
    EdgeRecord refused;
};

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin

#endif
