// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Rules/UpstreamSearch.h"

namespace Kestrin {
namespace Orv {
namespace Inspect {

UpstreamSearch::UpstreamSearch(const Snapshot& searched)
    : snapshot(searched)
    , lastSearch(tableOf(searched.nodes.size(), 0))
{
}

bool UpstreamSearch::find(int upstream, int downstream)
{
    ++searches;
    reached.assign(1, {downstream, -1, -1});
    at(lastSearch, downstream) = searches;
    if (upstream == downstream)
        return true;
    for (int next = 0; next < static_cast<int>(reached.size()); ++next) {
        const int node = at(reached, next).node;
        const int numInputs = snapshot.nodes.at(node).inputs.size();
        for (int input = 0; input < numInputs; ++input) {
            int source = node;
            int port = input;
            if (!snapshot.walkToSourceNode(source, port) || source < 0
                || source >= snapshot.nodes.size() || at(lastSearch, source) == searches)
                continue;
            at(lastSearch, source) = searches;
            reached.push_back({source, next, input});
            if (source == upstream)
                return true;
        }
    }
    return false;
}

QVector<PortRef> UpstreamSearch::inputs() const
{
    QVector<PortRef> list;
    for (int step = static_cast<int>(reached.size()) - 1; step > 0;) {
        const Step& last = at(reached, step);
        step = last.from;
        list.append({at(reached, step).node, last.input, false});
    }
    return list;
}

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin
