// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_INSPECT_USERCOUNTS_H
#define KESTRIN_ORV_INSPECT_USERCOUNTS_H

#include <Kestrin/Orv/Inspect/Export.h>
#include <Kestrin/Orv/Inspect/Schedule.h>
#include <Kestrin/Orv/Inspect/Snapshot.h>

#include <QtCore/QVector>

#include <memory>

namespace Kestrin {
namespace Orv {
namespace Inspect {

/// A port that reads the value of an output, through any number of groups.
struct OutputReader
{
    PortRef port; ///< an input of a pass that runs, or an output of the renderer
    /// Whether the renderer looks at this reader when it counts the users of the output. It looks
    /// across one group boundary: into the groups that the output's edges enter, and at the readers
    /// of the group that they leave.
    bool counted = false;
};

/// For each output of a pass that runs: the user count that the pass gets, and the true readers of
/// the output. The two differ if values pass through several groups, if a group output has more
/// readers than edges leave the pass output behind it, and if a group or a disabled pass counts as
/// a user. A host that frees a resource when the count is reached needs both.
///
/// Keeps a reference to the snapshot. The snapshot must neither change nor be destroyed while this
/// object is in use.
class ORV_INSPECT_EXPORT UserCounts
{
public:
    /// Predicts the schedule first. Linear in the size of the snapshot, plus the time of
    /// predictSchedule().
    explicit UserCounts(const Snapshot& snapshot);
    /// Uses a schedule that exists already. Linear in the size of the snapshot.
    /// \param schedule the result of predictSchedule() for this snapshot.
    UserCounts(const Snapshot& snapshot, const Schedule& schedule);
    ~UserCounts();

    /// The number that Renderer::setup() gives to RenderPass::setNumOutputUsers(); 0 if this is not
    /// an output of a pass that runs.
    int count(int node, int output) const;
    /// The readers of an output: inputs in the order of the node table, then outputs of the
    /// renderer. Empty if this is not an output of a pass that runs.
    QVector<OutputReader> readers(int node, int output) const;
    /// The ports from a reader back to the output that produces its value, including every group
    /// boundary. The reader comes first. Contains only the reader if nothing feeds it. Linear in
    /// the group boundaries crossed.
    QVector<PortRef> path(const PortRef& reader) const;

private:
    struct Impl;
    std::unique_ptr<const Impl> impl;
};

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin

Q_DECLARE_TYPEINFO(Kestrin::Orv::Inspect::OutputReader, Q_PRIMITIVE_TYPE);

#endif
