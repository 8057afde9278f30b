// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Explain/Downstream.h"

#include "Rules/Route.h"

#include <QtCore/QHash>
#include <QtCore/QSet>

namespace Kestrin {
namespace Orv {
namespace Inspect {

/// QSet finds it here, in the namespace of PortRef, and nowhere else.
static uint qHash(const PortRef& port, uint seed = 0)
{
    return ::qHash(qMakePair(qMakePair(port.node, port.index), port.isOutput), seed);
}

namespace {

class Search
{
public:
    explicit Search(const Snapshot& searched)
        : snapshot(searched)
    {
    }

    DownstreamEnd run(int start);

private:
    bool findEnd(int& end);
    bool follow(const PortRef& output);
    void step(const PortRef& from, QVector<PortRef>& ports);

    const Snapshot& snapshot;
    QVector<int> nodes; // reached, in the order of the search
    QHash<int, PortRef> reachedBy;
    QSet<PortRef> passed;
    QSet<int> leadsInside; // groups that hand on what they receive
};

/// Appends the ports that one edge takes a value to from `from`, each port once in a search.
void Search::step(const PortRef& from, QVector<PortRef>& ports)
{
    for (const int ref : snapshot.port(from).destinations) {
        const EdgeRecord& edge = snapshot.edge(ref);
        for (const bool isOutput : {true, false}) {
            const PortRef to{edge.dstNode, edge.dstIndex, isOutput};
            if (snapshot.feeder(to) == from && !passed.contains(to)) {
                passed.insert(to);
                ports.append(to);
            }
        }
    }
}

/// Adds the nodes that read an output; false if nothing does.
bool Search::follow(const PortRef& output)
{
    bool isRead = false;
    QVector<PortRef> ports{output};
    for (int next = 0; next < ports.size(); ++next) {
        const PortRef port = ports.at(next);
        const int before = ports.size();
        step(port, ports);
        if (port.isOutput)
            continue;
        isRead = true;
        if (ports.size() > before)
            leadsInside.insert(port.node);
        if (port.node != 0 && !reachedBy.contains(port.node)) {
            reachedBy.insert(port.node, port);
            nodes.append(port.node);
        }
    }
    return isRead;
}

/// Goes on from the nodes reached until nothing reads one of them.
bool Search::findEnd(int& end)
{
    for (int next = 0; next < nodes.size(); ++next) {
        end = nodes.at(next);
        bool leadsOn = leadsInside.contains(end);
        const int numOutputs = snapshot.node(end).outputs.size();
        for (int i = 0; i < numOutputs; ++i) {
            const PortRef output{end, i, true};
            if (snapshot.feeder(output).node < 0) // else its value comes from inside the group
                leadsOn |= follow(output);
        }
        if (!leadsOn && !snapshot.node(end).removed)
            return true;
    }
    return false;
}

DownstreamEnd Search::run(int start)
{
    nodes = {start};
    reachedBy.insert(start, PortRef());
    DownstreamEnd end;
    if (!findEnd(end.node))
        return DownstreamEnd();
    int node = end.node;
    for (int steps = nodes.size(); node != start && steps > 0; --steps) {
        if (!appendToSource(snapshot, reachedBy.value(node), end.route))
            break;
        node = end.route.last().node;
    }
    return end;
}

} // namespace

DownstreamEnd nearestEnd(const Snapshot& snapshot, int start)
{
    return Search(snapshot).run(start);
}

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin
