// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Lint/Checks.h"
#include "Rules/StronglyConnected.h"

#include <QtCore/QStringList>

namespace Kestrin {
namespace Orv {
namespace Inspect {

namespace {

/// The nodes in which each lies upstream of every other, set by set.
class Cycles
{
public:
    explicit Cycles(const LintFacts& gathered)
        : facts(gathered)
        , sets(tableOf(facts.snapshot.nodes.size(), -1))
        , consumers(tableOf(facts.snapshot.nodes.size(), -1))
    {
        findSets();
    }

    void report(Findings& findings);

private:
    void findSets();
    int producerOf(const PortRef& input) const;
    int findClosing(int start);
    PortRef inputFrom(int node, int producer) const;
    QString names(int start, int closing, int& last) const;

    const LintFacts& facts;
    Table<int> sets;      // by node: the smallest node of its set; -1 where it is on no cycle
    Table<int> consumers; // by node: the node that was found to read it
};

/// The live node that produces the value of an input; -1 for none.
int Cycles::producerOf(const PortRef& input) const
{
    const ValueFlow::Source source = facts.flow.source(input);
    return source.found && facts.isLive(source.at.node) ? source.at.node : -1;
}

void Cycles::findSets()
{
    const int numNodes = facts.snapshot.nodes.size();
    Arcs arcs(numNodes);
    Table<char> readsItself = tableOf(numNodes, char(0));
    for (int node = 0; node < numNodes; ++node) {
        if (!facts.isLive(node))
            continue;
        for (int i = 0; i < facts.node(node).inputs.size(); ++i) {
            const int producer = producerOf({node, i, false});
            if (producer >= 0)
                arcs.add(node, producer);
            if (producer == node)
                at(readsItself, node) = 1;
        }
    }
    arcs.sort();
    const StronglyConnected found(arcs);
    Table<int> smallest = tableOf(numNodes, -1); // by component
    for (int node = 0; node < numNodes; ++node) {
        const int component = at(found.components, node);
        if (component >= 0 && at(smallest, component) < 0)
            at(smallest, component) = node;
        if (component >= 0)
            at(sets, node) = at(smallest, component);
        else if (at(readsItself, node))
            at(sets, node) = node;
    }
}

/// Searches the set of `start` breadth first, against the flow, for the node that reads `start`.
int Cycles::findClosing(int start)
{
    Table<int> pending{start};
    for (std::size_t next = 0; next < pending.size(); ++next) {
        const int node = pending[next];
        for (int i = 0; i < facts.node(node).inputs.size(); ++i) {
            const int producer = producerOf({node, i, false});
            if (producer < 0 || at(sets, producer) != start)
                continue;
            if (producer == start)
                return node;
            if (at(consumers, producer) < 0) {
                at(consumers, producer) = node;
                pending.push_back(producer);
            }
        }
    }
    return -1;
}

/// The nodes of the shortest cycle through `start`, along the flow of values.
/// \param last becomes the node whose value `start` reads.
QString Cycles::names(int start, int closing, int& last) const
{
    const int numShown = 16;
    QStringList list{facts.paths.node(start)};
    int length = 0;
    last = start;
    for (int node = closing; node != start; node = at(consumers, node)) {
        if (++length < numShown)
            list.append(facts.paths.node(node));
        last = node;
    }
    if (length >= numShown)
        list.append(QString::number(length + 1 - numShown) + QLatin1String(" more"));
    list.append(facts.paths.node(start));
    return list.join(QLatin1String(" -> "));
}

/// The first input of a node that takes its value from a producer.
PortRef Cycles::inputFrom(int node, int producer) const
{
    PortRef input{node, 0, false};
    while (input.index < facts.node(node).inputs.size() && producerOf(input) != producer)
        ++input.index;
    return input;
}

void Cycles::report(Findings& findings)
{
    Table<char> hasPass = tableOf(facts.snapshot.nodes.size(), char(0)); // by smallest node
    for (int node = 0; node < facts.snapshot.nodes.size(); ++node) {
        if (at(sets, node) >= 0 && facts.node(node).pass)
            at(hasPass, at(sets, node)) = 1;
    }
    for (int start = 0; start < facts.snapshot.nodes.size(); ++start) {
        if (at(sets, start) != start || !at(hasPass, start))
            continue;
        const int closing = findClosing(start);
        if (closing < 0)
            continue;
        int last = start;
        const QString cycle = names(start, closing, last);
        const PortRef input = inputFrom(start, last);
        findings.add(input, QLatin1String("Values run in a cycle: ") + cycle + QLatin1Char('.'),
                     facts.snapshot.port(input).source);
    }
}

} // namespace

void checkCycles(const LintFacts& facts, Findings& findings)
{
    Cycles(facts).report(findings);
}

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin
