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

/// The whole hierarchy as Graphviz text, UTF-8: groups as clusters, ports as cells of their node,
/// and what runs, is disabled, not needed or failed distinguished by label and line style as well
/// as colour. An input of a pass that takes its default says so, as does an edge that carries
/// nothing.
///
/// The same bytes for the same snapshot everywhere. Every name is escaped, and shortened to 48
/// characters. Nodes that have not been removed are drawn once each, whatever their parents and
/// children say; removed ones are left out.
/// \param failed the nodes whose passes have failed.
/// Linear in what the snapshot holds, beside predictSchedule().
ORV_INSPECT_EXPORT QByteArray toGraphviz(const Snapshot& snapshot,
                                         const QVector<int>& failed = QVector<int>());

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin

#endif
