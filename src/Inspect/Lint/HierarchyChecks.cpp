// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Lint/Checks.h"

namespace Kestrin {
namespace Orv {
namespace Inspect {

namespace {

/// A node that its parent does not list.
void reportParent(const LintFacts& facts, Findings& findings, int node)
{
    const int parent = facts.node(node).parent;
    QString text = facts.paths.node(node);
    if (facts.hierarchy.leadsIntoCycle(node))
        text += QLatin1String(" has parents that form a cycle.");
    else if (!facts.exists(parent))
        text += QLatin1String(" has no parent: node ") + QString::number(parent)
            + QLatin1String(" does not exist.");
    else if (facts.node(parent).removed)
        text += QLatin1String(" has a parent that has been removed, ") + facts.paths.node(parent)
            + QLatin1Char('.');
    else
        text += QLatin1String(" is not among the children of its parent, ") + facts.nameOf(parent)
            + QLatin1Char('.');
    findings.add(node, text);
}

/// The children that a node lists.
/// \param listedBy by node: the last node that was found to list it.
void checkChildren(const LintFacts& facts, Findings& findings, int node, Table<int>& listedBy)
{
    const auto report = [&](const char* what, const QString& child) {
        findings.add(node,
                     (node == 0 ? QLatin1String("The root") : facts.paths.node(node))
                         + QLatin1String(" lists a child ") + QLatin1String(what)
                         + QLatin1String(", ") + child + QLatin1Char('.'));
    };
    for (const int child : facts.node(node).children) {
        if (!facts.exists(child)) {
            report("that does not exist", QLatin1String("node ") + QString::number(child));
            continue;
        }
        if (at(listedBy, child) == node)
            report("twice", facts.nameOf(child));
        else if (!facts.node(child).removed && facts.node(child).parent != node)
            report("that has another parent", facts.nameOf(child));
        at(listedBy, child) = node;
    }
}

} // namespace

void checkParentsAndChildren(const LintFacts& facts, Findings& findings)
{
    const int numNodes = facts.snapshot.nodes.size();
    Table<char> listedByParent = tableOf(numNodes, char(0));
    for (int node = 0; node < numNodes; ++node) {
        for (const int child : facts.node(node).children) {
            if (child > 0 && facts.exists(child) && facts.node(child).parent == node)
                at(listedByParent, child) = 1;
        }
    }
    Table<int> listedBy = tableOf(numNodes, -1);
    for (int node = 0; node < numNodes; ++node) {
        if (facts.node(node).removed)
            continue;
        if (node != 0 && !at(listedByParent, node))
            reportParent(facts, findings, node);
        checkChildren(facts, findings, node, listedBy);
    }
}

void checkRemovedChildren(const LintFacts& facts, Findings& findings)
{
    Table<int> listedBy = tableOf(facts.snapshot.nodes.size(), -1);
    for (int node = 0; node < facts.snapshot.nodes.size(); ++node) {
        if (facts.node(node).removed)
            continue;
        for (const int child : facts.node(node).children) {
            if (!facts.exists(child) || !facts.node(child).removed || at(listedBy, child) == node)
                continue;
            at(listedBy, child) = node;
            findings.add(child,
                         facts.paths.node(child)
                             + QLatin1String(" has been removed but is still a child of ")
                             + facts.nameOf(node) + QLatin1Char('.'));
        }
    }
}

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin
