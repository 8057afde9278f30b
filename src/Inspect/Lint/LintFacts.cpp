// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Lint/LintFacts.h"

#include "Rules/PredictSchedule.h"

namespace Kestrin {
namespace Orv {
namespace Inspect {

LintFacts::LintFacts(const Snapshot& shown)
    : snapshot(shown)
    , paths(shown)
    , flow(shown)
    , schedule(predictSchedule(shown, flow))
    , hierarchy(shown)
    , holdsPass(tableOf(shown.nodes.size(), char(0)))
    , read(tableOf(flow.ports().size(), char(0)))
{
    findPasses();
    findRead();
}

void LintFacts::findPasses()
{
    const Table<int>& order = hierarchy.parentsFirst();
    for (auto ref = order.rbegin(); ref != order.rend(); ++ref) {
        const int parent = node(*ref).parent;
        if (exists(parent) && isLive(*ref) && (node(*ref).pass || at(holdsPass, *ref)))
            at(holdsPass, parent) = 1;
    }
}

/// From the inputs of passes and the outputs of the renderer back along the edges.
void LintFacts::findRead()
{
    Table<PortRef> pending;
    const auto visit = [&](const PortRef& port) {
        const int number = flow.ports().of(port);
        if (number < 0 || at(read, number))
            return;
        at(read, number) = 1;
        pending.push_back(port);
    };
    for (int i = 0; i < node(0).outputs.size(); ++i)
        visit({0, i, true});
    for (int ref = 1; ref < snapshot.nodes.size(); ++ref) {
        if (!node(ref).pass || node(ref).removed)
            continue;
        for (int i = 0; i < node(ref).inputs.size(); ++i)
            visit({ref, i, false});
    }
    while (!pending.empty()) {
        const PortRef port = pending.back();
        pending.pop_back();
        visit(snapshot.feeder(port));
    }
}

bool LintFacts::isRead(const PortRef& port) const
{
    const int number = flow.ports().of(port);
    return number >= 0 && at(read, number);
}

QString LintFacts::nameOf(int ref) const
{
    if (!exists(ref))
        return QLatin1String("node ") + QString::number(ref)
            + QLatin1String(", which does not exist");
    return ref == 0 ? QLatin1String("the root") : paths.node(ref);
}

QString counted(int number, const char* things)
{
    return QString::number(number) + QLatin1Char(' ') + QLatin1String(things)
        + QLatin1String(number == 1 ? "" : "s");
}

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin
