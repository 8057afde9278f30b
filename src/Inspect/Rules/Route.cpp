// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Rules/Route.h"

#include "Model/Step.h"

namespace Kestrin {
namespace Orv {
namespace Inspect {

namespace {

/// Steps from port to port as long as a port of the same side feeds it.
void appendSameSide(const Snapshot& snapshot, PortRef port, QVector<PortRef>& route)
{
    route.append(port);
    for (int steps = snapshot.nodes.size(); steps > 0 && stepOnSameSide(snapshot, port); --steps)
        route.append(port);
}

} // namespace

void appendUp(const Snapshot& snapshot, const PortRef& input, QVector<PortRef>& route)
{
    appendSameSide(snapshot, {input.node, input.index, false}, route);
}

void appendDown(const Snapshot& snapshot, const PortRef& output, QVector<PortRef>& route)
{
    appendSameSide(snapshot, {output.node, output.index, true}, route);
}

bool appendAcross(const Snapshot& snapshot, const PortRef& input, QVector<PortRef>& route)
{
    PortRef source{input.node, input.index, true};
    if (!snapshot.walkAcross(source.node, source.index))
        return false;
    appendDown(snapshot, source, route);
    return true;
}

bool appendToSource(const Snapshot& snapshot, const PortRef& input, QVector<PortRef>& route)
{
    appendUp(snapshot, input, route);
    const PortRef outermost = route.last(); // a copy: the list grows
    return appendAcross(snapshot, outermost, route);
}

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin
