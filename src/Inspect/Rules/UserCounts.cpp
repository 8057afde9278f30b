// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include <Kestrin/Orv/Inspect/UserCounts.h>

#include "Rules/Hierarchy.h"
#include "Rules/Route.h"
#include "Rules/ValueFlow.h"

#include <utility>

namespace Kestrin {
namespace Orv {
namespace Inspect {

struct Q_DECL_HIDDEN UserCounts::Impl
{
    Impl(const Snapshot& shown, Schedule predicted);

    void findPlaces();
    void findReaders();
    void addReader(const PortRef& reader, const PortRef& output, const ValueFlow::Source& source);
    bool isCounted(const PortRef& output, const ValueFlow::Source& source) const;
    bool runs(int node) const { return schedule.positions.value(node, -1) >= 0; }

    const Snapshot& snapshot;
    const Schedule schedule;
    const ValueFlow flow;
    const Hierarchy hierarchy;
    Table<int> places;                      // by edge: its place among those of the port it leaves
    QVector<QVector<OutputReader>> readers; // by port number
};

UserCounts::Impl::Impl(const Snapshot& shown, Schedule predicted)
    : snapshot(shown)
    , schedule(std::move(predicted))
    , flow(shown)
    , hierarchy(shown)
    , places(tableOf(shown.edges.size(), 0))
    , readers(flow.ports().size())
{
    findPlaces();
    findReaders();
}

void UserCounts::Impl::findPlaces()
{
    for (const NodeRecord& node : snapshot.nodes) {
        for (const PortRecord& output : node.outputs) {
            for (int i = output.destinations.size() - 1; i >= 0; --i) {
                const int edge = output.destinations.at(i);
                if (edge >= 0 && edge < snapshot.edges.size())
                    at(places, edge) = i;
            }
        }
    }
}

void UserCounts::Impl::findReaders()
{
    for (int node = 1; node < snapshot.nodes.size(); ++node) {
        if (!runs(node))
            continue;
        for (int i = 0; i < snapshot.nodes.at(node).inputs.size(); ++i) {
            const PortRef input{node, i, false};
            const ValueFlow::Source source = flow.source(input);
            if (source.found)
                addReader(input, source.at, source);
        }
    }
    const int numOutputs = qMin(snapshot.numOutputs, snapshot.node(0).outputs.size());
    for (int i = 0; i < numOutputs; ++i) {
        const PortRef output{0, i, true};
        const ValueFlow::End end = flow.end(output);
        if (end.steps == 0)
            continue;
        ValueFlow::Source source; // as if the renderer's output were a sibling's input
        source.edge = snapshot.port(output).source;
        source.downs = end.steps - 1;
        addReader(output, end.at, source);
    }
}

void UserCounts::Impl::addReader(const PortRef& reader, const PortRef& output,
                                 const ValueFlow::Source& source)
{
    const int number = flow.ports().of(output);
    if (number < 0 || !runs(output.node))
        return;
    readers[number].append({reader, isCounted(output, source)});
}

/// Whether CountedUsers looks at the node of a reader: beside the output, one level into a group,
/// or beside the group that the output lies in; of these as many as edges leave the output.
bool UserCounts::Impl::isCounted(const PortRef& output, const ValueFlow::Source& source) const
{
    if (source.downs == 1)
        return source.ups == 0
            && at(places, source.edge) < snapshot.port(output).destinations.size();
    const int beside = snapshot.edge(source.edge).dstNode;
    const bool isGroupBeside = !snapshot.node(beside).children.isEmpty()
        && !hierarchy.isSameOrAbove(beside, snapshot.node(output.node).parent);
    return source.downs == 0 && (source.ups == 0 || (source.ups == 1 && isGroupBeside));
}

UserCounts::UserCounts(const Snapshot& snapshot)
    : UserCounts(snapshot, predictSchedule(snapshot))
{
}

UserCounts::UserCounts(const Snapshot& snapshot, const Schedule& schedule)
    : impl(new Impl(snapshot, schedule))
{
}

UserCounts::~UserCounts() = default;

int UserCounts::count(int node, int output) const
{
    return impl->schedule.users.value(node).value(output);
}

QVector<OutputReader> UserCounts::readers(int node, int output) const
{
    return impl->readers.value(impl->flow.ports().of({node, output, true}));
}

QVector<PortRef> UserCounts::path(const PortRef& reader) const
{
    QVector<PortRef> ports;
    if (reader.isOutput)
        appendDown(impl->snapshot, reader, ports);
    else
        appendToSource(impl->snapshot, reader, ports);
    return ports;
}

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin
