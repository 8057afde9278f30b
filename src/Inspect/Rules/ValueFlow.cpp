// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Rules/ValueFlow.h"

#include "Model/Step.h"

namespace Kestrin {
namespace Orv {
namespace Inspect {

ValueFlow::ValueFlow(const Snapshot& shown)
    : snapshot(shown)
    , numbers(shown)
    , ends(tableOf(numbers.size(), End()))
{
    Table<State> states = tableOf(numbers.size(), Unknown);
    for (int node = 0; node < snapshot.nodes.size(); ++node) {
        for (int i = 0; i < snapshot.nodes.at(node).inputs.size(); ++i)
            follow({node, i, false}, states);
        for (int i = 0; i < snapshot.nodes.at(node).outputs.size(); ++i)
            follow({node, i, true}, states);
    }
}

ValueFlow::End ValueFlow::end(const PortRef& port) const
{
    const int number = numbers.of(port);
    return number >= 0 ? at(ends, number) : End{port, 0};
}

ValueFlow::Source ValueFlow::source(const PortRef& input) const
{
    Source source;
    const End up = end(input);
    source.at = up.at;
    source.ups = up.steps;
    PortRef across = up.at;
    if (!snapshot.walkAcross(across.node, across.index))
        return source;
    across.isOutput = true;
    const End down = end(across);
    source.found = true;
    source.edge = snapshot.port(up.at).source;
    source.at = down.at;
    source.downs = down.steps;
    return source;
}

bool ValueFlow::carriesValue(const PortRef& port) const
{
    if (port.isOutput)
        return snapshot.isLivePass(end(port).at.node);
    const Source from = source(port);
    return from.found ? snapshot.isLivePass(from.at.node) : from.at.node == 0;
}

/// A walk as the graph takes it: of no more steps than there are nodes.
ValueFlow::End ValueFlow::walk(PortRef port) const
{
    int steps = 0;
    while (steps < snapshot.nodes.size() && stepOnSameSide(snapshot, port))
        ++steps;
    return {port, steps};
}

void ValueFlow::setEnd(const PortRef& port, const End& end, Table<State>& states)
{
    const int number = numbers.of(port);
    at(ends, number) = end.steps <= snapshot.nodes.size() ? end : walk(port);
    at(states, number) = Known;
}

void ValueFlow::follow(PortRef port, Table<State>& states)
{
    way.clear();
    int number = numbers.of(port);
    while (number >= 0 && at(states, number) == Unknown) {
        at(states, number) = OnTheWay;
        way.push_back(port);
        if (!stepOnSameSide(snapshot, port)) {
            number = -1;
            break;
        }
        number = numbers.of(port);
    }
    if (way.empty())
        return;

    if (number >= 0 && at(states, number) == OnTheWay) {
        int entry = static_cast<int>(way.size()) - 1;
        while (at(way, entry) != port)
            --entry;
        settleCycle(states, entry);
        return;
    }
    const auto approach = approaches.constFind(number);
    if (approach != approaches.constEnd()) {
        settleApproach(*approach, states);
        return;
    }
    // The last port on the way is the end itself, or one step before what is known.
    End end = number >= 0 ? at(ends, number) : End{port, 0};
    if (number < 0 && way.back() == port) {
        setEnd(port, end, states);
        way.pop_back();
    }
    for (; !way.empty(); way.pop_back()) {
        ++end.steps;
        setEnd(way.back(), end, states);
    }
}

/// The way has come back to its port at the position `entry`.
void ValueFlow::settleCycle(Table<State>& states, int entry)
{
    const Table<PortRef> cycle(way.begin() + entry, way.end());
    cycles.push_back(cycle);
    const int numSteps = snapshot.nodes.size();
    const auto length = static_cast<int>(cycle.size());
    const int index = static_cast<int>(cycles.size()) - 1;
    for (int i = 0; i < length; ++i) {
        setEnd(at(cycle, i), {at(cycle, (i + numSteps) % length), numSteps}, states);
        approaches.insert(numbers.of(at(cycle, i)), {index, i, 0});
    }
    way.resize(static_cast<std::size_t>(entry));
    settleApproach({index, 0, 0}, states);
}

/// The way leads to a port that leads into a cycle.
void ValueFlow::settleApproach(const Approach& last, Table<State>& states)
{
    const int numSteps = snapshot.nodes.size();
    const Table<PortRef>& cycle = at(cycles, last.cycle);
    const auto length = static_cast<int>(cycle.size());
    Approach approach = last;
    for (; !way.empty(); way.pop_back()) {
        ++approach.distance;
        const int inCycle = numSteps - approach.distance;
        const End end = inCycle >= 0 ? End{at(cycle, (approach.entry + inCycle) % length), numSteps}
                                     : walk(way.back());
        setEnd(way.back(), end, states);
        approaches.insert(numbers.of(way.back()), approach);
    }
}

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin
