// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include <Kestrin/Orv/Inspect/Lint.h>

#include "Lint/Checks.h"

#include <algorithm>

namespace Kestrin {
namespace Orv {
namespace Inspect {

namespace {

/// A code, its meaning in one line, and the check that reports it.
struct Check
{
    const char* code;
    const char* meaning;
    void (*run)(const LintFacts& facts, Findings& findings);
};

/// All checks, in the order in which they run. Findings about the same place come in this order.
const Check kChecks[] = {
    {"hierarchy-out-of-step", "parents and lists of children contradict each other",
     checkParentsAndChildren},
    {"removed-but-listed", "a removed node is still on its parent's list", checkRemovedChildren},
    {"duplicate-name", "a node has the name of an older sibling", checkNodeNames},
    {"duplicate-port", "a port has the name of an earlier one of its node", checkPortNames},
    {"empty-group", "a group holds no pass", checkEmptyGroups},
    {"shared-pass", "two nodes have the same pass", checkSharedPasses},
    {"unneeded-pass", "an enabled pass never runs", checkUnneededPasses},
    {"invalid-default", "an input takes its default value, which is invalid", checkDefaults},
    {"stale-target", "the target does not exist or has been removed", checkTarget},
    {"unregistered-port", "the root has other ports than the renderer knows", checkRegisteredPorts},
    {"unread-parameter", "no pass reads a parameter", checkParameters},
    {"dead-output", "an output of the renderer is fed by no pass", checkRendererOutputs},
    {"stuck-port", "a port is taken by an edge that does not exist", checkTakenPorts},
    {"unrelated-edge",
     "an edge carries nothing: its ends are neither siblings nor parent and child",
     checkUnrelatedEdges},
    {"stale-index", "an edge names another port than the one that has it", checkEdgeEnds},
    {"unfed-group-input", "an input of a group is read inside, but nothing feeds it",
     checkUnfedGroupInputs},
    {"unread-group-input", "an input of a group is fed, but nothing inside reads it",
     checkUnreadGroupInputs},
    {"unfed-group-output", "an output of a group is read, but nothing inside feeds it",
     checkUnfedGroupOutputs},
    {"unread-output", "nothing reads an output", checkUnreadOutputs},
    {"fewer-readers", "a group output has fewer readers than the pass output behind it has edges",
     checkGroupOutputReaders},
    {"uncounted-users", "an output has more readers than the renderer counts", checkUncountedUsers},
    {"cycle-through-group", "passes feed each other in a cycle", checkCycles},
};

} // namespace

QVector<LintCode> lintCodes()
{
    QVector<LintCode> codes;
    for (const Check& check : kChecks)
        codes.append({QLatin1String(check.code), QLatin1String(check.meaning)});
    std::sort(codes.begin(), codes.end(),
              [](const LintCode& a, const LintCode& b) { return a.code < b.code; });
    return codes;
}

QVector<Finding> lint(const Snapshot& snapshot)
{
    const LintFacts facts(snapshot);
    Findings findings(snapshot);
    for (const Check& check : kChecks) {
        findings.setCode(check.code);
        check.run(facts, findings);
    }
    return findings.sorted();
}

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin
