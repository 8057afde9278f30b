// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_INSPECT_CANONICALSNAPSHOT_H
#define KESTRIN_ORV_INSPECT_CANONICALSNAPSHOT_H

#include <Kestrin/Orv/Inspect/Document.h>

namespace Kestrin {
namespace Orv {
namespace Inspect {

/// The part of a snapshot that a document can hold, as a snapshot of its own: nothing is removed,
/// every node comes after its parent and is listed by it, every pass has its own value, and a graph
/// accepts the edges in their order.
struct CanonicalSnapshot
{
    /// A difference from the original. Removed nodes and edges are not losses.
    struct Loss
    {
        QString code;
        QString text;
        int node;  ///< of the original; -1 for none
        int edge;  ///< of the original; -1 for none
        bool gone; ///< whether something is left out or changed; false if only the order differs
    };

    explicit CanonicalSnapshot(const Snapshot& original);

    Snapshot snapshot;
    QVector<int> origins;     ///< by node of the canonical snapshot: the node of the original
    QVector<int> edgeOrigins; ///< by edge of the canonical snapshot: the edge of the original
    QVector<Loss> losses;
};

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin

#endif
