// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_INSPECT_STEP_H
#define KESTRIN_ORV_INSPECT_STEP_H

#include <Kestrin/Orv/Inspect/Snapshot.h>

namespace Kestrin {
namespace Orv {
namespace Inspect {

/// One step of Snapshot::walkUp() from an input, or of walkDown() from an output: to the port on
/// the same side that feeds it. False, and changes nothing, if there is none.
inline bool stepOnSameSide(const Snapshot& snapshot, PortRef& port)
{
    const PortRef feeder = snapshot.feeder(port);
    if (feeder.node < 0 || feeder.isOutput != port.isOutput)
        return false;
    port = feeder;
    return true;
}

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin

#endif
