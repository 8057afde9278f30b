// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_INSPECT_CHECKS_H
#define KESTRIN_ORV_INSPECT_CHECKS_H

#include "Lint/Findings.h"
#include "Lint/LintFacts.h"

namespace Kestrin {
namespace Orv {
namespace Inspect {

// The checks. Each reports under one code; the table in Lint.cpp says which.

// HierarchyChecks.cpp
void checkParentsAndChildren(const LintFacts& facts, Findings& findings);
void checkRemovedChildren(const LintFacts& facts, Findings& findings);

// NameChecks.cpp
void checkNodeNames(const LintFacts& facts, Findings& findings);
void checkPortNames(const LintFacts& facts, Findings& findings);

// PassChecks.cpp
void checkEmptyGroups(const LintFacts& facts, Findings& findings);
void checkSharedPasses(const LintFacts& facts, Findings& findings);
void checkUnneededPasses(const LintFacts& facts, Findings& findings);
void checkDefaults(const LintFacts& facts, Findings& findings);

// RendererChecks.cpp
void checkTarget(const LintFacts& facts, Findings& findings);
void checkRegisteredPorts(const LintFacts& facts, Findings& findings);
void checkParameters(const LintFacts& facts, Findings& findings);
void checkRendererOutputs(const LintFacts& facts, Findings& findings);

// EdgeChecks.cpp
void checkTakenPorts(const LintFacts& facts, Findings& findings);
void checkUnrelatedEdges(const LintFacts& facts, Findings& findings);
void checkEdgeEnds(const LintFacts& facts, Findings& findings);

// ReaderChecks.cpp
void checkUnfedGroupInputs(const LintFacts& facts, Findings& findings);
void checkUnreadGroupInputs(const LintFacts& facts, Findings& findings);
void checkUnfedGroupOutputs(const LintFacts& facts, Findings& findings);
void checkUnreadOutputs(const LintFacts& facts, Findings& findings);

// UserCountChecks.cpp
void checkGroupOutputReaders(const LintFacts& facts, Findings& findings);
void checkUncountedUsers(const LintFacts& facts, Findings& findings);

// CycleChecks.cpp
void checkCycles(const LintFacts& facts, Findings& findings);

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin

#endif
