// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_INSPECT_LINT_H
#define KESTRIN_ORV_INSPECT_LINT_H

#include <Kestrin/Orv/Inspect/Export.h>
#include <Kestrin/Orv/Inspect/Paths.h>
#include <Kestrin/Orv/Inspect/Snapshot.h>

namespace Kestrin {
namespace Orv {
namespace Inspect {

/// A probable mistake in a graph: something that the graph allows, but that its author seldom
/// wants.
struct Finding
{
    QString code;  ///< stable and documented, such as "unread-output"
    QString text;  ///< for people: one line that names everything by its path
    int node = -1; ///< the node that it is about
    PortRef port;  ///< the port, if it is about one; its node is -1 otherwise
    int edge = -1; ///< the edge, if it is about one
};

/// The meaning of a code, in short.
struct LintCode
{
    QString code;    ///< as Finding::code
    QString meaning; ///< one line
};

/// All codes that lint() can report, in alphabetical order.
ORV_INSPECT_EXPORT QVector<LintCode> lintCodes();

/// Checks a snapshot for everything that lintCodes() lists. Findings come in the order of the node
/// table. Findings about one node come in this order: the node itself, its inputs, its outputs, the
/// edges that enter it. Linear in the size of the snapshot and in the length of the texts;
/// where the parents of nodes form a cycle, up to the number of nodes times that.
ORV_INSPECT_EXPORT QVector<Finding> lint(const Snapshot& snapshot);

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin

Q_DECLARE_TYPEINFO(Kestrin::Orv::Inspect::Finding, Q_MOVABLE_TYPE);
Q_DECLARE_TYPEINFO(Kestrin::Orv::Inspect::LintCode, Q_MOVABLE_TYPE);

#endif
