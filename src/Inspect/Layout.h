// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_INSPECT_LAYOUT_H
#define KESTRIN_ORV_INSPECT_LAYOUT_H

#include <Kestrin/Orv/Inspect/Document.h>

namespace Kestrin {
namespace Orv {
namespace Inspect {

/// What a document can hold of a snapshot, as a snapshot of its own: sound, nothing removed, every
/// node behind its parent and listed by it, every edge accepted by a graph in this order, every
/// pass with a value of its own.
struct Layout
{
    /// Something of the snapshot that is not as it was.
    struct Loss
    {
        QString code;
        QString text;
        int node;  ///< in the snapshot laid out; -1 for none
        int edge;  ///< likewise
        bool gone; ///< left out or another, and not just in another order
    };

    explicit Layout(const Snapshot& original);

    Snapshot snapshot;
    QVector<int> origins;     ///< by node of the layout: the node of the snapshot laid out
    QVector<int> edgeOrigins; ///< by edge
    QVector<Loss> losses;
};

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin

#endif
