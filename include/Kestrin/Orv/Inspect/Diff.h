// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_INSPECT_DIFF_H
#define KESTRIN_ORV_INSPECT_DIFF_H

#include <Kestrin/Orv/Inspect/Export.h>
#include <Kestrin/Orv/Inspect/Snapshot.h>

#include <QtCore/QJsonArray>

namespace Kestrin {
namespace Orv {
namespace Inspect {

/// One difference between two snapshots.
struct Change
{
    QString code;   ///< stable and documented, such as "input-rewired"
    QString path;   ///< of the changed item; its path in the older snapshot if it was removed
    QString before; ///< the old value; empty for a new item
    QString after;  ///< the new value; empty for a removed item
};

/// All codes that diff() can report, in alphabetical order.
ORV_INSPECT_EXPORT QVector<QString> diffCodes();

/// Lists the changes from one snapshot to another, by name and not by ref: nodes and ports added,
/// removed, renamed or moved to another group; inputs rewired; flags, types, defaults, parameters,
/// outputs and the target changed. There are no changes between two snapshots that are written as
/// the same document. Two snapshots without a change differ at most in the order of nodes and
/// edges.
///
/// Nodes with the same path are the same node. Other nodes that look alike from outside are
/// considered renamed or moved, and their children with them. The changes of the renderer and of
/// nodes in the newer snapshot come first, in the order of the newer tree from the root down.
/// Removed nodes come last. Linear in the size of the snapshots and in the length of the texts; if
/// many nodes have been renamed, plus the time of sorting the candidates.
ORV_INSPECT_EXPORT QVector<Change> diff(const Snapshot& before, const Snapshot& after);

/// The changes for people: one line each, "code path: before -> after", ending with a line break.
/// Empty if there are none.
ORV_INSPECT_EXPORT QString toText(const QVector<Change>& changes);
/// The changes for programs: objects with the fields of Change, as strings.
ORV_INSPECT_EXPORT QJsonArray toJson(const QVector<Change>& changes);

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin

Q_DECLARE_TYPEINFO(Kestrin::Orv::Inspect::Change, Q_MOVABLE_TYPE);

#endif
