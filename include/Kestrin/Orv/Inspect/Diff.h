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
    QString path;   ///< what has changed, by its path; that of the older snapshot if it is gone
    QString before; ///< what it was; empty for what is new
    QString after;  ///< what it is; empty for what is gone
};

/// All codes that diff() can report, in alphabetical order.
ORV_INSPECT_EXPORT QVector<QString> diffCodes();

/// What has changed from one snapshot to another, by name and not by ref: nodes and ports added,
/// removed, renamed or moved to another group, inputs rewired, flags, types, defaults, parameters,
/// outputs and the target changed. Empty for two that are written as the same document; the other
/// way round, two without a change differ in the order of nodes and edges at most.
///
/// Nodes are the same that have the same path; failing that, what looks alike from outside is taken
/// for renamed or moved, and its children go with it. First come the changes of the renderer and of
/// nodes that there are, in the order of the newer tree from the root down, then the nodes that are
/// gone. Linear in what the snapshots hold and in the length of the texts; where many nodes have
/// been renamed, their agreements are sorted as well.
ORV_INSPECT_EXPORT QVector<Change> diff(const Snapshot& before, const Snapshot& after);

/// The changes for people: one line each, "code path: before -> after", ending with a line break;
/// empty for none.
ORV_INSPECT_EXPORT QString toText(const QVector<Change>& changes);
/// The changes for programs: objects with the fields of Change, as strings.
ORV_INSPECT_EXPORT QJsonArray toJson(const QVector<Change>& changes);

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin

Q_DECLARE_TYPEINFO(Kestrin::Orv::Inspect::Change, Q_MOVABLE_TYPE);

#endif
