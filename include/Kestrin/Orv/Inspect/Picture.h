// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_INSPECT_PICTURE_H
#define KESTRIN_ORV_INSPECT_PICTURE_H

#include <Kestrin/Orv/Inspect/Export.h>
#include <Kestrin/Orv/Inspect/Snapshot.h>

#include <QtCore/QByteArray>

namespace Kestrin {
namespace Orv {
namespace Inspect {

/// Draws the whole hierarchy as Graphviz text in UTF-8. Groups are clusters, and ports are cells of
/// their node. Passes that run, are disabled, are not needed or have failed differ in label and
/// line style as well as in colour. An input that takes its default and an edge that carries no
/// value are marked.
///
/// The same snapshot gives the same bytes on every system. Every name is escaped, and shortened to
/// 48 characters. Each node is drawn once, even if parents and lists of children contradict each
/// other. Removed nodes are left out.
/// \param failed the nodes whose passes have failed.
///
/// Linear in the size of the snapshot, plus the time of predictSchedule().
ORV_INSPECT_EXPORT QByteArray toGraphviz(const Snapshot& snapshot,
                                         const QVector<int>& failed = QVector<int>());

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin

#endif
