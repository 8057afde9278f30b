// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include <Kestrin/Orv/Inspect/Schedule.h>

#include "Model/LookUp.h"

#include <algorithm>

namespace Kestrin {
namespace Orv {
namespace Inspect {

namespace {

const int kRoot = 0;
const int kNobody = -1;

/// Goes through the graph as Renderer::setup() does.
class Search
{
public:
    Search(const Snapshot& searched, Schedule& result)
        : snapshot(searched)
        , schedule(result)
    {
    }

    /// Appends the passes that `start` needs, and then its own. `by` is what led to it.
    void walk(int start, const PortRef& by);

private:
    bool visit(int ref, const PortRef& by);

    const Snapshot& snapshot;
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
            int source = input.node;
            int port = input.index;
            if (snapshot.walkToSourceNode(source, port) && visit(source, input))
                path.append({source, 0});
        } else {
            if (snapshot.isLivePass(top.node)) {
                schedule.positions[top.node] = schedule.order.size();
                schedule.order.append(top.node);
            }
            path.removeLast();
        }
    }
}

/// Counts the users of outputs among the nodes that are needed.
class UserCount
{
public:
    UserCount(const Snapshot& counted, const QVector<bool>& needed)
        : snapshot(counted)
        , isNeeded(needed)
        , mark(counted.nodes.size(), kNobody)
    {
    }

    int of(int node, int output);

private:
    bool isUser(int ref) const { return lookUp(isNeeded, ref); }
    bool isUserOrRoot(int ref) const { return isUser(ref) || ref == kRoot; }
    bool contains(int ancestor, int parent);

    const Snapshot& snapshot;
    const QVector<bool>& isNeeded;
    /// By node: the last parent found to be it or below it. Siblings, and the edges of one output,
    /// thus share one climb.
    QVector<int> mark;
    int marked = kNobody;
};

/// Whether `ancestor` is `parent` or above it.
bool UserCount::contains(int ancestor, int parent)
{
    const auto exists = [this](int ref) { return ref >= 0 && ref < mark.size(); };
    if (marked != parent) {
        marked = parent;
        // A line of parents that ends in a cycle comes back to what is marked.
        for (int ref = parent; exists(ref) && mark.at(ref) != parent;
             ref = snapshot.node(ref).parent)
            mark[ref] = parent;
    }
    return exists(parent) && exists(ancestor) && mark.at(ancestor) == parent;
}

int UserCount::of(int node, int output)
{
    const QVector<int>& destinations = snapshot.output(node, output).destinations;
    const int parent = snapshot.node(node).parent;
    int count = 0;
    for (const int destination : destinations) {
        const EdgeRecord& edge = snapshot.edge(destination);
        const int dest = edge.dstNode;

        if (!snapshot.node(dest).children.isEmpty() && !contains(dest, parent)) {
            // Into a group from outside: its children read through the group's input.
            for (const int inner : snapshot.input(dest, edge.dstIndex).destinations)
                count += isUser(snapshot.edge(inner).dstNode);
        }

        if (dest != parent) {
            count += isUserOrRoot(dest);
        } else if (parent == kRoot) {
            ++count;
        } else {
            // Out of a group: its readers, of whom as many are looked at as this output has edges.
            const QVector<int>& readers = snapshot.output(parent, edge.dstIndex).destinations;
            const int numLookedAt = std::min(readers.size(), destinations.size());
            for (int i = 0; i < numLookedAt; ++i)
                count += isUserOrRoot(snapshot.edge(readers.at(i)).dstNode);
            count += isUser(parent);
        }
    }
    return count;
}

} // namespace

Schedule predictSchedule(const Snapshot& snapshot)
{
    const int numNodes = snapshot.nodes.size();
    Schedule schedule;
    schedule.positions.fill(-1, numNodes);
    schedule.needed.fill(false, numNodes);
    schedule.reachedBy.resize(numNodes);
    schedule.users.resize(numNodes);

    Search search(snapshot, schedule);
    const int numOutputs = std::min(snapshot.numOutputs, snapshot.node(kRoot).outputs.size());
    for (int i = 0; i < numOutputs; ++i) {
        int node = kRoot;
        int output = i;
        if (snapshot.walkDown(node, output))
            search.walk(node, {kRoot, i, true});
    }
    if (snapshot.target != kRoot && !snapshot.node(snapshot.target).removed)
        search.walk(snapshot.target, PortRef());

    UserCount users(snapshot, schedule.needed);
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
