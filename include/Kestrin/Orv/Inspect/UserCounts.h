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

/// A port that takes the value of an output, through however many groups.
struct OutputReader
{
    PortRef port; ///< an input of a pass that runs, or an output of the renderer
    /// Whether the renderer looks at this reader when it counts the users of the output. It looks
    /// into the groups that its edges enter and at the readers of the group that they leave, not
    /// any further.
    bool counted = false;
};

/// For each output of a pass that runs: the number of users that the pass is given, and the readers
/// that there really are. The two differ where values pass through several groups, where a group
/// output has fewer readers than the pass output behind it has edges, and where a group or a
/// disabled pass counts as a user. A pass that frees a resource after so many releases needs both.
///
/// Keeps a reference to the snapshot, which must neither change nor go while this is used.
class ORV_INSPECT_EXPORT UserCounts
{
public:
    /// Predicts the schedule first. Linear in what the snapshot holds.
    explicit UserCounts(const Snapshot& snapshot);
    /// As above.
    /// \param schedule what predictSchedule() answers for this snapshot.
    UserCounts(const Snapshot& snapshot, const Schedule& schedule);
    ~UserCounts();

    /// The number that Renderer::setup() gives to RenderPass::setNumOutputUsers(); 0 for what is no
    /// output of a pass that runs.
    int count(int node, int output) const;
    /// The readers of an output: inputs in the order of the node table, then outputs of the
    /// renderer. Empty for what is no output of a pass that runs.
    QVector<OutputReader> readers(int node, int output) const;
    /// The ports from a reader back to the output that produces its value, every group boundary
    /// on the way included; the reader comes first. Only the reader itself if nothing feeds it.
    /// Linear in the group boundaries crossed.
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
