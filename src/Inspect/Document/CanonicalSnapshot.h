// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_INSPECT_CANONICALSNAPSHOT_H
#define KESTRIN_ORV_INSPECT_CANONICALSNAPSHOT_H

#include <Kestrin/Orv/Inspect/Document.h>

namespace Kestrin {
namespace Orv {
namespace Inspect {

/// What a document can hold of a snapshot, as a snapshot of its own: sound, nothing removed, every
/// node behind its parent and listed by it, every edge accepted by a graph in this order, every
/// pass with a value of its own.
struct CanonicalSnapshot
{
    /// Something of the snapshot that is not as it was.
    struct Loss
    {
        QString code;
        QString text;
        int node;  ///< of the original; -1 for none
        int edge;  ///< likewise
        bool gone; ///< left out or another, and not just in another order
    };

    explicit CanonicalSnapshot(const Snapshot& original);

    Snapshot snapshot;
    QVector<int> origins;     ///< by node of the canonical snapshot: the node of the original
    QVector<int> edgeOrigins; ///< by edge
    QVector<Loss> losses;
};

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin

#endif
