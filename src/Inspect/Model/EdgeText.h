// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_INSPECT_EDGETEXT_H
#define KESTRIN_ORV_INSPECT_EDGETEXT_H

#include <Kestrin/Orv/Inspect/Paths.h>
#include <Kestrin/Orv/Inspect/Snapshot.h>

namespace Kestrin {
namespace Orv {
namespace Inspect {

/// An edge as documents and messages write it: "A.out -> B.in".
/// \param paths those of the snapshot.
inline QString edgeText(const Paths& paths, const Snapshot& snapshot, int edge)
{
    return paths.port(snapshot.sourceOf(edge)) + QLatin1String(" -> ")
        + paths.port(snapshot.destinationOf(edge));
}

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin

#endif
