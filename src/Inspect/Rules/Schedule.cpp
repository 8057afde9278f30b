// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include <Kestrin/Orv/Inspect/Schedule.h>

#include "Rules/CountedUsers.h"
#include "Rules/PredictSchedule.h"

#include <algorithm>

namespace Kestrin {
namespace Orv {
namespace Inspect {

namespace {

const int kRoot = 0;

/// Goes through the graph as Renderer::setup() does.
class Search
{
public:
    Search(const Snapshot& searched, const ValueFlow& valueFlow, Schedule& result)
        : snapshot(searched)
        , flow(valueFlow)
        , schedule(result)
    {
    }

    /// Appends the passes that `start` needs, and then its own. `by` is what led to it.
    void walk(int start, const PortRef& by);

private:
    bool visit(int ref, const PortRef& by);

    const Snapshot& snapshot;
    const ValueFlow& flow;
    Schedule& schedule;
};

bool Search::visit(int ref, const PortRef& by)
{
    if (ref < 0 || ref >= schedule.needed.size() || schedule.needed.at(ref))
        return false;
    schedule.needed[ref] = true;
    schedule.reachedBy[ref] = by;
    return true;
}

void Search::walk(int start, const PortRef& by)
{
    if (!visit(start, by))
        return;

    // Depth first, with the path on a list of its own: a chain may be longer than the C stack is
    // deep.
    struct Step
    {
        int node;
        int nextInput;
    };
    QVector<Step> path{{start, 0}};
    while (!path.isEmpty()) {
        Step& top = path.last();
        if (top.nextInput < snapshot.node(top.node).inputs.size()) {
            const PortRef input{top.node, top.nextInput++, false};
            const ValueFlow::Source source = flow.source(input);
            if (source.found && visit(source.at.node, input))
                path.append({source.at.node, 0});
        } else {
            if (snapshot.isLivePass(top.node)) {
                schedule.positions[top.node] = schedule.order.size();
                schedule.order.append(top.node);
            }
            path.removeLast();
        }
    }
}

} // namespace

Schedule predictSchedule(const Snapshot& snapshot)
{
    return predictSchedule(snapshot, ValueFlow(snapshot));
}

Schedule predictSchedule(const Snapshot& snapshot, const ValueFlow& flow)
{
    const int numNodes = snapshot.nodes.size();
    Schedule schedule;
    schedule.positions.fill(-1, numNodes);
    schedule.needed.fill(false, numNodes);
    schedule.reachedBy.resize(numNodes);
    schedule.users.resize(numNodes);

    Search search(snapshot, flow, schedule);
    const int numOutputs = std::min(snapshot.numOutputs, snapshot.node(kRoot).outputs.size());
    for (int i = 0; i < numOutputs; ++i) {
        const PortRef output{kRoot, i, true};
        const ValueFlow::End end = flow.end(output);
        if (end.steps > 0)
            search.walk(end.at.node, output);
    }
    if (snapshot.target != kRoot && !snapshot.node(snapshot.target).removed)
        search.walk(snapshot.target, PortRef());

    const CountedUsers users(snapshot, flow.ports(), schedule.needed);
    for (const int node : qAsConst(schedule.order)) {
        QVector<int>& counts = schedule.users[node];
        counts.resize(snapshot.node(node).outputs.size());
        for (int output = 0; output < counts.size(); ++output)
            counts[output] = users.of(node, output);
    }
    return schedule;
}

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin
