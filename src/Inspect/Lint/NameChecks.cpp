// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Lint/Checks.h"

#include <QtCore/QHash>

namespace Kestrin {
namespace Orv {
namespace Inspect {

void checkNodeNames(const LintFacts& facts, Findings& findings)
{
    QHash<QString, int> firsts;
    for (int node = 0; node < facts.snapshot.nodes.size(); ++node) {
        if (facts.node(node).removed)
            continue;
        firsts.clear();
        for (const int child : facts.node(node).children) {
            if (!facts.isLive(child) || facts.node(child).parent != node)
                continue;
            const auto first = firsts.constFind(facts.node(child).name);
            if (first == firsts.constEnd())
                firsts.insert(facts.node(child).name, child);
            else if (*first != child)
                findings.add(child,
                             facts.paths.node(child)
                                 + QLatin1String(" has the name of an older sibling, ")
                                 + facts.paths.node(*first)
                                 + QLatin1String("; look-ups by name find only that one."));
        }
    }
}

namespace {

void checkNamesOf(const LintFacts& facts, Findings& findings, int node, bool isOutput)
{
    const QVector<PortRecord>& ports =
        isOutput ? facts.node(node).outputs : facts.node(node).inputs;
    QHash<QString, int> firsts;
    for (int i = 0; i < ports.size(); ++i) {
        const QString& name = ports.at(i).name;
        if (name.isEmpty())
            continue; // ports without names are meant to be numbered
        const auto first = firsts.constFind(name);
        if (first == firsts.constEnd())
            firsts.insert(name, i);
        else
            findings.add(PortRef{node, i, isOutput},
                         facts.paths.port({node, i, isOutput}) + QLatin1String(" has the name of ")
                             + facts.paths.port({node, *first, isOutput})
                             + QLatin1String("; look-ups by name find only that one."));
    }
}

} // namespace

void checkPortNames(const LintFacts& facts, Findings& findings)
{
    for (int node = 0; node < facts.snapshot.nodes.size(); ++node) {
        if (facts.node(node).removed)
            continue;
        checkNamesOf(facts, findings, node, false);
        checkNamesOf(facts, findings, node, true);
    }
}

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin
