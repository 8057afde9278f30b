// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_INSPECT_POSITIONS_H
#define KESTRIN_ORV_INSPECT_POSITIONS_H

#include <Kestrin/Orv/Inspect/Snapshot.h>

#include <QtCore/QHash>

namespace Kestrin {
namespace Orv {
namespace Inspect {

/// The positions of each name in a list, in ascending order.
using Positions = QHash<QString, QVector<int>>;

inline Positions positionsOf(const QVector<QString>& names)
{
    Positions positions;
    positions.reserve(names.size());
    for (int i = 0; i < names.size(); ++i)
        positions[names.at(i)].append(i);
    return positions;
}

inline Positions positionsOf(const QVector<PortRecord>& ports)
{
    Positions positions;
    positions.reserve(ports.size());
    for (int i = 0; i < ports.size(); ++i)
        positions[ports.at(i).name].append(i);
    return positions;
}

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin

#endif
