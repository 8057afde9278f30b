// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Lint/Checks.h"

namespace Kestrin {
namespace Orv {
namespace Inspect {

namespace {

/// Calls \p check with each input of each group that holds a pass.
template<typename Check>
void forGroupInputs(const LintFacts& facts, const Check& check)
{
    for (int node = 1; node < facts.snapshot.nodes.size(); ++node) {
        if (!facts.isGroup(node) || facts.isIdleGroup(node))
            continue;
        for (int i = 0; i < facts.node(node).inputs.size(); ++i)
            check(PortRef{node, i, false});
    }
}

/// Whether an output without readers is no mistake.
bool mayStayUnread(const LintFacts& facts, int node)
{
    return (facts.node(node).pass && !facts.runs(node)) || node == facts.snapshot.target
        || facts.isIdleGroup(node);
}

/// The first edge from a port that carries its value; -1 for none.
int firstCarrier(const LintFacts& facts, const PortRef& port)
{
    for (const int edge : facts.snapshot.port(port).destinations) {
        if (facts.snapshot.kindOf(edge) != EdgeKind::None)
            return edge;
    }
    return -1;
}

} // namespace

void checkUnfedGroupInputs(const LintFacts& facts, Findings& findings)
{
    forGroupInputs(facts, [&](const PortRef& input) {
        if (facts.isRead(input) && facts.snapshot.port(input).source == -1)
            findings.add(input,
                         QLatin1String("Nothing feeds ") + facts.paths.port(input)
                             + QLatin1String(", which is read inside the group."));
    });
}

void checkUnreadGroupInputs(const LintFacts& facts, Findings& findings)
{
    forGroupInputs(facts, [&](const PortRef& input) {
        if (!facts.isRead(input) && facts.isRead(facts.snapshot.feeder(input)))
            findings.add(input,
                         QLatin1String("Nothing inside the group reads ") + facts.paths.port(input)
                             + QLatin1Char('.'));
    });
}

void checkUnfedGroupOutputs(const LintFacts& facts, Findings& findings)
{
    for (int node = 1; node < facts.snapshot.nodes.size(); ++node) {
        if (!facts.isGroup(node) || facts.isIdleGroup(node))
            continue;
        for (int i = 0; i < facts.node(node).outputs.size(); ++i) {
            const PortRef output{node, i, true};
            if (facts.isRead(output) && facts.snapshot.port(output).source == -1)
                findings.add(output,
                             QLatin1String("Nothing inside the group feeds ")
                                 + facts.paths.port(output)
                                 + QLatin1String(", which is read outside."));
        }
    }
}

void checkUnreadOutputs(const LintFacts& facts, Findings& findings)
{
    for (int node = 1; node < facts.snapshot.nodes.size(); ++node) {
        if (!facts.isLive(node) || mayStayUnread(facts, node))
            continue;
        for (int i = 0; i < facts.node(node).outputs.size(); ++i) {
            const PortRef output{node, i, true};
            // An output that only passes on the value of another is not reported: the other is.
            const PortRef feeder = facts.snapshot.feeder(output);
            const bool isOrigin = !facts.isGroup(node) && !facts.snapshot.hasPort(feeder);
            if (facts.isRead(output) || !(isOrigin || facts.isRead(feeder)))
                continue;
            const int edge = firstCarrier(facts, output);
            findings.add(output,
                         QLatin1String("Nothing reads ") + facts.paths.port(output)
                             + (edge >= 0 ? QLatin1String(": ")
                                        + facts.paths.port(facts.snapshot.destinationOf(edge))
                                        + QLatin1String(", which it feeds, leads to no pass")
                                          : QString())
                             + QLatin1Char('.'));
        }
    }
}

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin
