// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_INSPECT_EXPLAINERIMPL_H
#define KESTRIN_ORV_INSPECT_EXPLAINERIMPL_H

#include <Kestrin/Orv/Inspect/Explain.h>

namespace Kestrin {
namespace Orv {
namespace Inspect {

const int kRoot = 0;
const int kNone = -1;

inline bool exists(const Snapshot& snapshot, int ref)
{
    return ref >= 0 && ref < snapshot.nodes.size();
}

struct Explainer::Impl
{
    explicit Impl(const Snapshot& explained)
        : snapshot(explained)
        , schedule(predictSchedule(explained))
        , paths(explained)
    {
    }

    const Snapshot& snapshot;
    const Schedule schedule;
    const Paths paths;
};

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin

#endif
