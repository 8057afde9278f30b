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

/// What has changed from one snapshot to another, by name and not by ref: nodes and ports added,
/// removed, renamed or moved to another group, inputs rewired, flags, types, defaults, parameters,
/// outputs and the target changed. Empty for two that are written as the same document. Linear in
/// what they hold.
ORV_INSPECT_EXPORT QVector<Change> diff(const Snapshot& before, const Snapshot& after);

/// The changes for people: one line each, ending with a line break; empty for none.
ORV_INSPECT_EXPORT QString toText(const QVector<Change>& changes);
/// The changes for programs.
ORV_INSPECT_EXPORT QJsonArray toJson(const QVector<Change>& changes);

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin

#endif
