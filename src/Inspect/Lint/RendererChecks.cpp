// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Lint/Checks.h"

namespace Kestrin {
namespace Orv {
namespace Inspect {

namespace {

/// The renderer reads this parameter itself.
const char* const kStaggered = "Orv_bool_staggeredFirstFrame";

} // namespace

void checkTarget(const LintFacts& facts, Findings& findings)
{
    const int target = facts.snapshot.target;
    if (target == -1 || facts.isLive(target))
        return;
    findings.add(0,
                 QLatin1String("The target, node ") + QString::number(target)
                     + (facts.exists(target) ? QLatin1String(", has been removed.")
                                             : QLatin1String(", does not exist.")));
}

void checkRegisteredPorts(const LintFacts& facts, Findings& findings)
{
    if (!facts.isLive(0))
        return;
    const NodeRecord& root = facts.node(0);
    const int numParameters = facts.snapshot.parameters.size();
    const int numOutputs = facts.snapshot.numOutputs;
    if (root.inputs.size() < numParameters)
        findings.add(0,
                     QLatin1String("The renderer has ") + QString::number(numParameters)
                         + QLatin1String(" parameters but the root has ")
                         + QString::number(root.inputs.size()) + QLatin1String(" inputs."));
    if (root.outputs.size() < numOutputs)
        findings.add(0,
                     QLatin1String("The renderer has ") + QString::number(numOutputs)
                         + QLatin1String(" outputs but the root has ")
                         + QString::number(root.outputs.size()) + QLatin1Char('.'));
    for (int i = numParameters; i < root.inputs.size(); ++i)
        findings.add(PortRef{0, i, false},
                     facts.paths.input(0, i)
                         + QLatin1String(" is an input of the root but no parameter of the "
                                         "renderer: its readers take an invalid value."));
    for (int i = qMax(numOutputs, 0); i < root.outputs.size(); ++i)
        findings.add(PortRef{0, i, true},
                     facts.paths.output(0, i)
                         + QLatin1String(" is an output of the root but none of the renderer: it "
                                         "is never filled."));
}

void checkParameters(const LintFacts& facts, Findings& findings)
{
    if (!facts.isLive(0))
        return;
    const NodeRecord& root = facts.node(0);
    const int numParameters = qMin(root.inputs.size(), facts.snapshot.parameters.size());
    for (int i = 0; i < numParameters; ++i) {
        if (!facts.isRead({0, i, false}) && root.inputs.at(i).name != QLatin1String(kStaggered))
            findings.add(PortRef{0, i, false},
                         QLatin1String("No pass reads the parameter ") + facts.paths.input(0, i)
                             + QLatin1Char('.'));
    }
}

void checkRendererOutputs(const LintFacts& facts, Findings& findings)
{
    if (!facts.isLive(0))
        return;
    const int numOutputs = qMin(facts.node(0).outputs.size(), facts.snapshot.numOutputs);
    for (int i = 0; i < numOutputs; ++i) {
        const PortRef output{0, i, true};
        const ValueFlow::End end = facts.flow.end(output);
        if (end.steps > 0 && facts.node(end.at.node).pass)
            continue;
        findings.add(output,
                     QLatin1String("No pass feeds the output ") + facts.paths.port(output)
                         + (end.steps > 0 ? QLatin1String(": it reads ") + facts.paths.port(end.at)
                                    + QLatin1String(", which nothing feeds")
                                          : QString())
                         + QLatin1Char('.'));
    }
}

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin
