// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_INSPECT_SCHEDULE_H
#define KESTRIN_ORV_INSPECT_SCHEDULE_H

#include <Kestrin/Orv/Inspect/Export.h>
#include <Kestrin/Orv/Inspect/Snapshot.h>

namespace Kestrin {
namespace Orv {
namespace Inspect {

/// The result of Renderer::setup(), predicted without calling a pass.
struct Schedule
{
    QVector<int> order;     ///< the nodes of the passes that run, in their order of execution
    QVector<int> positions; ///< by node ref: its position in `order`; -1 if it does not run
    QVector<bool> needed; ///< by node ref: reached from an output or the target, disabled ones too
    /// By node ref: the port that led to it first. This is an output of the renderer, or an input
    /// of a node that was reached before. Its node is -1 for the target itself and for nodes that
    /// are not needed.
    QVector<PortRef> reachedBy;
    /// By node ref and output index: the number of users that the pass gets. Empty for nodes that
    /// do not run.
    QVector<QVector<int>> users;
};

/// Predicts the execution order and the user counts. Linear in the size of the snapshot;
/// where the parents of nodes form a cycle, up to the number of nodes times that.
ORV_INSPECT_EXPORT Schedule predictSchedule(const Snapshot& snapshot);

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin

#endif
