// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Lint/Checks.h"

#include <QtCore/QHash>

namespace Kestrin {
namespace Orv {
namespace Inspect {

void checkEmptyGroups(const LintFacts& facts, Findings& findings)
{
    for (int node = 1; node < facts.snapshot.nodes.size(); ++node) {
        // Of empty groups within each other, the outermost is reported.
        if (facts.isIdleGroup(node) && facts.node(node).value < 0
            && !facts.isIdleGroup(facts.node(node).parent))
            findings.add(node, facts.paths.node(node) + QLatin1String(" holds no pass."));
    }
}

void checkSharedPasses(const LintFacts& facts, Findings& findings)
{
    QHash<int, int> firsts; // by pass: the first node that has it
    for (int node = 1; node < facts.snapshot.nodes.size(); ++node) {
        if (!facts.isLive(node) || !facts.node(node).pass)
            continue;
        const auto first = firsts.constFind(facts.node(node).value);
        if (first == firsts.constEnd())
            firsts.insert(facts.node(node).value, node);
        else
            findings.add(node,
                         facts.paths.node(node) + QLatin1String(" has the same pass as ")
                             + facts.paths.node(*first)
                             + QLatin1String(", which therefore takes the inputs of both."));
    }
}

void checkUnneededPasses(const LintFacts& facts, Findings& findings)
{
    const int target = facts.snapshot.target;
    for (int node = 1; node < facts.snapshot.nodes.size(); ++node) {
        if (!facts.isLive(node) || !facts.snapshot.isLivePass(node) || facts.runs(node))
            continue;
        const bool isInTarget =
            facts.isGroup(target) && facts.hierarchy.isSameOrAbove(target, node);
        findings.add(
            node,
            facts.paths.node(node)
                + (isInTarget
                       ? QLatin1String(" never runs: the target is a group, and the renderer "
                                       "runs the passes that feed it, not the passes inside it.")
                       : QLatin1String(" never runs: neither an output of the renderer "
                                       "nor the target needs it.")));
    }
}

namespace {

/// Why an input takes its default; empty if it takes something else.
QString reasonForDefault(const LintFacts& facts, const PortRef& input)
{
    const ValueFlow::Source source = facts.flow.source(input);
    const PortRef& end = source.at;
    if (!source.found) {
        if (source.ups > 0 && end.node == 0)
            return QString(); // a parameter
        return QLatin1String("nothing feeds ")
            + (source.ups > 0 ? facts.paths.port(end) : QLatin1String("it"));
    }
    if (!facts.node(end.node).pass)
        return QLatin1String("it reads ") + facts.paths.output(end.node, end.index)
            + QLatin1String(", which no pass feeds");
    if (!facts.node(end.node).enabled)
        return QLatin1String("it reads ") + facts.paths.output(end.node, end.index)
            + QLatin1String(", whose pass is disabled");
    return QString();
}

} // namespace

void checkDefaults(const LintFacts& facts, Findings& findings)
{
    for (int node = 1; node < facts.snapshot.nodes.size(); ++node) {
        if (!facts.isLive(node) || !facts.snapshot.isLivePass(node))
            continue;
        for (int i = 0; i < facts.node(node).inputs.size(); ++i) {
            const PortRef input{node, i, false};
            if (facts.snapshot.port(input).defaultValue.isValid())
                continue;
            const QString reason = reasonForDefault(facts, input);
            if (!reason.isEmpty())
                findings.add(input,
                             facts.paths.port(input)
                                 + QLatin1String(" takes its default value, which is invalid: ")
                                 + reason + QLatin1Char('.'));
        }
    }
}

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin
