// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_INSPECT_FINDINGS_H
#define KESTRIN_ORV_INSPECT_FINDINGS_H

#include <Kestrin/Orv/Inspect/Lint.h>

namespace Kestrin {
namespace Orv {
namespace Inspect {

/// Collects what the checks find. Each finding takes the code of the check that is running.
class Findings
{
public:
    explicit Findings(const Snapshot& shown);

    /// Sets the code of the findings that follow.
    void setCode(const char* newCode);

    /// A finding about a node.
    void add(int node, const QString& text);
    /// A finding about a port, and perhaps about an edge at it.
    void add(const PortRef& port, const QString& text, int edge = -1);
    /// A finding about an edge.
    void addEdge(int edge, const QString& text);

    /// All findings, in the order that lint() promises.
    QVector<Finding> sorted() const;

private:
    const Snapshot& snapshot;
    const char* code = "";
    QVector<Finding> findings;
};

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin

#endif
