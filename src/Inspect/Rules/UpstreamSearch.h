// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_INSPECT_UPSTREAMSEARCH_H
#define KESTRIN_ORV_INSPECT_UPSTREAMSEARCH_H

#include "Model/Table.h"

#include <Kestrin/Orv/Inspect/Snapshot.h>

#include <QtCore/QVector>

namespace Kestrin {
namespace Orv {
namespace Inspect {

/// The search of Graph::precedes() with followHierarchy: breadth first, from a node to the nodes
/// that its inputs take their values from. It remembers how it got there.
///
/// Keeps a reference to the snapshot, whose edges may change between two searches.
class UpstreamSearch
{
public:
    explicit UpstreamSearch(const Snapshot& searched);

    /// Whether `upstream` is `downstream` or a node upstream of it. Both exist. Linear in the
    /// inputs of the nodes upstream of `downstream`, times the depth of the groups crossed.
    bool find(int upstream, int downstream);

    /// After a search that has found it: the inputs on a shortest way, from the one that takes the
    /// value of `upstream` to the one that belongs to `downstream`. None if they are the same node.
    QVector<PortRef> inputs() const;

private:
    struct Step
    {
        int node;
        int from;  // position in `reached`: the node whose input led here
        int input; // of that node
    };

    const Snapshot& snapshot;
    Table<Step> reached;   // by the last search, the node that it has found last
    Table<int> lastSearch; // by node
    int searches = 0;
};

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin

#endif
