// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_INSPECT_DOWNSTREAM_H
#define KESTRIN_ORV_INSPECT_DOWNSTREAM_H

#include <Kestrin/Orv/Inspect/Snapshot.h>

#include <QtCore/QVector>

namespace Kestrin {
namespace Orv {
namespace Inspect {

/// Where the flow of data from a node ends.
struct DownstreamEnd
{
    int node = -1;          ///< nothing reads its outputs; -1 if all ways lead into cycles
    QVector<PortRef> route; ///< the ports from there back to where the search began
};

/// The nearest end of the flow of data from \p start: a breadth-first search along the edges that
/// the walks of the graph take against the flow. Linear in what lies downstream.
DownstreamEnd nearestEnd(const Snapshot& snapshot, int start);

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin

#endif
