// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_INSPECT_ROUTE_H
#define KESTRIN_ORV_INSPECT_ROUTE_H

#include <Kestrin/Orv/Inspect/Snapshot.h>

#include <QtCore/QVector>

namespace Kestrin {
namespace Orv {
namespace Inspect {

// The walks of Snapshot, with a list of the ports that they pass: the port where a walk begins, the
// one where it ends, and every group boundary between them. All go against the flow of data. Each
// appends at least the port where it begins, so that the last entry is where it ends. As in the
// graph, no walk takes more steps than there are nodes.

/// As Snapshot::walkUp(): from an input to the outermost input of a group that feeds it.
void appendUp(const Snapshot& snapshot, const PortRef& input, QVector<PortRef>& route);

/// As Snapshot::walkDown(): from an output to the innermost output that feeds it.
void appendDown(const Snapshot& snapshot, const PortRef& output, QVector<PortRef>& route);

/// As Snapshot::walkAcross() and then walkDown(): from an input, which is not appended, to the
/// output of a sibling and on to the output that produces its value. False, and appends nothing, if
/// no sibling feeds the input.
bool appendAcross(const Snapshot& snapshot, const PortRef& input, QVector<PortRef>& route);

/// As Snapshot::walkToSourceNode(): from an input to the output that produces its value. False if
/// the walk ends at an input.
bool appendToSource(const Snapshot& snapshot, const PortRef& input, QVector<PortRef>& route);

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin

#endif
