// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Lint/Checks.h"
#include "Model/EdgeText.h"

namespace Kestrin {
namespace Orv {
namespace Inspect {

void checkTakenPorts(const LintFacts& facts, Findings& findings)
{
    const auto check = [&](const PortRef& port) {
        const int edge = facts.snapshot.port(port).source;
        if (edge == -1 || !facts.snapshot.edge(edge).removed)
            return;
        findings.add(port,
                     facts.paths.port(port)
                         + (edge >= 0 && edge < facts.snapshot.edges.size()
                                ? QLatin1String(" is taken by an edge that has been removed")
                                : QLatin1String(" is taken by an edge that does not exist"))
                         + QLatin1String(", so that nothing can feed it."),
                     edge);
    };
    for (int node = 0; node < facts.snapshot.nodes.size(); ++node) {
        if (facts.node(node).removed)
            continue;
        for (int i = 0; i < facts.node(node).inputs.size(); ++i)
            check({node, i, false});
        for (int i = 0; i < facts.node(node).outputs.size(); ++i)
            check({node, i, true});
    }
}

void checkUnrelatedEdges(const LintFacts& facts, Findings& findings)
{
    for (int edge = 0; edge < facts.snapshot.edges.size(); ++edge) {
        if (!facts.snapshot.edges.at(edge).removed && facts.snapshot.kindOf(edge) == EdgeKind::None)
            findings.addEdge(edge,
                             edgeText(facts.paths, facts.snapshot, edge)
                                 + QLatin1String(" carries nothing: its ends are neither siblings "
                                                 "nor parent and child."));
    }
}

namespace {

/// Where each edge is connected, as the ports have it.
class Connections
{
public:
    explicit Connections(const LintFacts& facts)
        : snapshot(facts.snapshot)
        , leaves(tableOf(snapshot.edges.size(), PortRef()))
        , enters(tableOf(snapshot.edges.size(), PortRef()))
    {
        for (int node = 0; node < snapshot.nodes.size(); ++node) {
            if (facts.node(node).removed)
                continue;
            for (int i = 0; i < facts.node(node).inputs.size(); ++i)
                addPort({node, i, false});
            for (int i = 0; i < facts.node(node).outputs.size(); ++i)
                addPort({node, i, true});
        }
    }

    /// The port that has the edge among those that leave it; none if no port has.
    const PortRef& sourceOf(int edge) const { return at(leaves, edge); }
    /// The port that has the edge as the one that feeds it.
    const PortRef& destinationOf(int edge) const { return at(enters, edge); }

private:
    bool isEdge(int edge) const { return edge >= 0 && edge < snapshot.edges.size(); }

    /// Of several ports that have an edge, the one that the edge names counts, or else the first.
    void addPort(const PortRef& port)
    {
        const PortRecord& record = snapshot.port(port);
        if (isEdge(record.source) && !snapshot.edges.at(record.source).removed) {
            const EdgeRecord& edge = snapshot.edges.at(record.source);
            PortRef& known = at(enters, record.source);
            if (known.node < 0 || (edge.dstNode == port.node && edge.dstIndex == port.index))
                known = port;
        }
        for (const int leaving : record.destinations) {
            if (!isEdge(leaving))
                continue;
            const EdgeRecord& edge = snapshot.edges.at(leaving);
            PortRef& known = at(leaves, leaving);
            if (known.node < 0 || (edge.srcNode == port.node && edge.srcIndex == port.index))
                known = port;
        }
    }

    const Snapshot& snapshot;
    Table<PortRef> leaves; // by edge
    Table<PortRef> enters;
};

/// What an edge says of one of its ends against what the ports say.
void checkEnd(const LintFacts& facts, Findings& findings, int edge, const PortRef& named,
              const PortRef& connected, const char* verb)
{
    if (connected.node == named.node && connected.index == named.index)
        return;
    const QString end = QLatin1String(named.isOutput ? "output " : "input ")
        + QString::number(named.index) + QLatin1String(" of ") + facts.nameOf(named.node)
        + (facts.snapshot.hasPort(named) ? QLatin1String(", now ") + facts.paths.port(named)
                                         : QLatin1String(", which does not exist"));
    const QString meant = connected.node >= 0
        ? QLatin1String("but is connected to ") + facts.paths.port(connected)
        : QLatin1String("but no port of the node has it");
    findings.addEdge(edge,
                     QLatin1String("Edge ") + QString::number(edge) + QLatin1String(verb) + end
                         + QLatin1String(", ") + meant + QLatin1Char('.'));
}

} // namespace

void checkEdgeEnds(const LintFacts& facts, Findings& findings)
{
    const Connections connections(facts);
    for (int edge = 0; edge < facts.snapshot.edges.size(); ++edge) {
        if (facts.snapshot.edges.at(edge).removed)
            continue;
        checkEnd(facts, findings, edge, facts.snapshot.sourceOf(edge), connections.sourceOf(edge),
                 " leaves ");
        checkEnd(facts, findings, edge, facts.snapshot.destinationOf(edge),
                 connections.destinationOf(edge), " enters ");
    }
}

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin
