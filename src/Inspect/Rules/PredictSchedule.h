// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_INSPECT_PREDICTSCHEDULE_H
#define KESTRIN_ORV_INSPECT_PREDICTSCHEDULE_H

#include "Rules/ValueFlow.h"

#include <Kestrin/Orv/Inspect/Schedule.h>

namespace Kestrin {
namespace Orv {
namespace Inspect {

/// As predictSchedule(), with the flow of values in the snapshot, which the caller has already.
Schedule predictSchedule(const Snapshot& snapshot, const ValueFlow& flow);

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin

#endif
