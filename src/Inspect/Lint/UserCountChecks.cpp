// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Lint/Checks.h"

#include <Kestrin/Orv/Inspect/UserCounts.h>

#include <QtCore/QStringList>

namespace Kestrin {
namespace Orv {
namespace Inspect {

namespace {

/// The output of a pass against the readers of the group outputs that it feeds.
void checkReadersOf(const LintFacts& facts, Findings& findings, const PortRef& output)
{
    const int parent = facts.node(output.node).parent;
    const QVector<int>& destinations = facts.snapshot.port(output).destinations;
    for (const int edge : destinations) {
        if (facts.snapshot.kindOf(edge) != EdgeKind::Up)
            continue;
        const PortRef groupOutput{parent, facts.snapshot.edge(edge).dstIndex, true};
        const int numReaders = facts.snapshot.port(groupOutput).destinations.size();
        if (numReaders == 0 || numReaders >= destinations.size())
            continue;
        findings.add(groupOutput,
                     facts.paths.port(groupOutput) + QLatin1String(" has ")
                         + counted(numReaders, "reader") + QLatin1String(", fewer than the ")
                         + counted(destinations.size(), "edge") + QLatin1String(" that leave ")
                         + facts.paths.port(output) + QLatin1String(", which feeds it."),
                     edge);
    }
}

/// The readers that the renderer does not look at, as the end of a sentence.
QString uncountedNames(const LintFacts& facts, const QVector<OutputReader>& readers)
{
    const int numShown = 3;
    QStringList names;
    int numUncounted = 0;
    for (const OutputReader& reader : readers) {
        if (!reader.counted && ++numUncounted <= numShown)
            names.append(facts.paths.port(reader.port));
    }
    if (numUncounted > numShown)
        names.append(QString::number(numUncounted - numShown) + QLatin1String(" more"));
    if (names.isEmpty())
        return QString();
    return QLatin1String("; not counted: ") + names.join(QLatin1String(", "));
}

} // namespace

/// The renderer counts the users of a pass output by looking at as many readers of the group output
/// that it feeds as there are edges from the pass output. There should be that many.
void checkGroupOutputReaders(const LintFacts& facts, Findings& findings)
{
    for (int node = 1; node < facts.snapshot.nodes.size(); ++node) {
        if (!facts.isLive(node) || !facts.node(node).pass || facts.node(node).parent <= 0)
            continue;
        for (int i = 0; i < facts.node(node).outputs.size(); ++i)
            checkReadersOf(facts, findings, {node, i, true});
    }
}

void checkUncountedUsers(const LintFacts& facts, Findings& findings)
{
    const UserCounts users(facts.snapshot, facts.schedule);
    for (int node = 1; node < facts.snapshot.nodes.size(); ++node) {
        if (!facts.runs(node) || facts.hierarchy.leadsIntoCycle(node))
            continue;
        for (int i = 0; i < facts.node(node).outputs.size(); ++i) {
            const int count = users.count(node, i);
            const QVector<OutputReader> readers = users.readers(node, i);
            if (count >= readers.size())
                continue;
            findings.add(PortRef{node, i, true},
                         facts.paths.output(node, i) + QLatin1String(" has ")
                             + counted(readers.size(), "user")
                             + QLatin1String(", but the renderer counts ") + QString::number(count)
                             + uncountedNames(facts, readers) + QLatin1Char('.'));
        }
    }
}

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin
