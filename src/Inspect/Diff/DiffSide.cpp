// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Diff/DiffSide.h"

namespace Kestrin {
namespace Orv {
namespace Inspect {

DiffSide::DiffSide(const Snapshot& compared)
    : shown(compared)
    , names(compared)
    , numbers(compared)
    , listedFlags(tableOf(compared.nodes.size(), char(0)))
    , nodeMatches(tableOf(compared.nodes.size(), -1))
    , portMatches(tableOf(numbers.size(), -1))
{
    const auto add = [this](int ref) {
        at(listedFlags, ref) = 1;
        listed.push_back(ref);
    };
    if (!shown.nodes.isEmpty())
        add(0);
    for (std::size_t next = 0; next < listed.size(); ++next) {
        const int parent = listed[next];
        for (const int child : node(parent).children) {
            if (child > 0 && child < shown.nodes.size() && !isListed(child) && !node(child).removed
                && node(child).parent == parent)
                add(child);
        }
    }
}

Table<int> DiffSide::children(int ref) const
{
    Table<int> found;
    for (const int child : node(ref).children) {
        if (child != 0 && isListed(child) && node(child).parent == ref)
            found.push_back(child);
    }
    return found;
}

PortRef DiffSide::feeder(const PortRef& port) const
{
    const PortRef source = shown.feeder(port);
    return isListed(source.node) ? source : PortRef();
}

QVector<PortRef> DiffSide::readers(const PortRef& port) const
{
    QVector<PortRef> found;
    for (const int edge : shown.port(port).destinations) {
        // The list may name edges that have been removed, or that feed other ports.
        const EdgeRecord& record = shown.edge(edge);
        for (const bool isOutput : {true, false}) {
            const PortRef reader{record.dstNode, record.dstIndex, isOutput};
            if (!record.removed && isListed(reader.node) && feeder(reader) == port
                && shown.port(reader).source == edge)
                found.append(reader);
        }
    }
    return found;
}

PortRef DiffSide::match(const PortRef& port) const
{
    if (!shown.hasPort(port) || !isMatched(port.node))
        return PortRef();
    const int index = at(portMatches, numbers.of(port));
    return index < 0 ? PortRef() : PortRef{match(port.node), index, port.isOutput};
}

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin
