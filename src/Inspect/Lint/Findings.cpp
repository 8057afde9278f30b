// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Lint/Findings.h"

#include <algorithm>

namespace Kestrin {
namespace Orv {
namespace Inspect {

namespace {

/// The order in which findings about one node come.
int rankOf(const Finding& finding)
{
    if (finding.port.node >= 0)
        return finding.port.isOutput ? 2 : 1;
    return finding.edge >= 0 ? 3 : 0;
}

bool isBefore(const Finding& a, const Finding& b)
{
    if (a.node != b.node)
        return a.node < b.node;
    const int rank = rankOf(a);
    if (rank != rankOf(b))
        return rank < rankOf(b);
    return rank == 3 ? a.edge < b.edge : a.port.index < b.port.index;
}

} // namespace

Findings::Findings(const Snapshot& shown)
    : snapshot(shown)
{
}

void Findings::setCode(const char* newCode)
{
    code = newCode;
}

void Findings::add(int node, const QString& text)
{
    findings.append({QLatin1String(code), text, node, PortRef(), -1});
}

void Findings::add(const PortRef& port, const QString& text, int edge)
{
    findings.append({QLatin1String(code), text, port.node, port, edge});
}

void Findings::addEdge(int edge, const QString& text)
{
    const int node = snapshot.edge(edge).dstNode;
    const bool exists = node >= 0 && node < snapshot.nodes.size();
    findings.append({QLatin1String(code), text, exists ? node : -1, PortRef(), edge});
}

QVector<Finding> Findings::sorted() const
{
    QVector<Finding> list = findings;
    std::stable_sort(list.begin(), list.end(), isBefore);
    return list;
}

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin
