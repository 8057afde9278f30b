// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef ORV_TESTS_ODDSNAPSHOT_H
#define ORV_TESTS_ODDSNAPSHOT_H

#include <Kestrin/Orv/Inspect/Snapshot.h>

#include "Inspect/support/Random.h"

#include <QtCore/QString>
#include <QtCore/QVector>

/// A snapshot filled with refs and indices that lie anywhere, most of them just in or just beside
/// the tables.
inline Kestrin::Orv::Inspect::Snapshot oddSnapshot(unsigned seed)
{
    using namespace Kestrin::Orv::Inspect;
    Random random(seed);
    const auto below = [&random](int count) { return ::below(random, count); };
    const int numNodes = below(8);
    const int numEdges = below(12);
    const auto ref = [&](int count) {
        return below(40) == 0 ? static_cast<int>(random()) : below(count + 2) - 1;
    };
    const auto ports = [&] {
        QVector<PortRecord> list(below(4));
        for (PortRecord& port : list) {
            port.name = QString::number(below(3));
            port.group = ref(2);
            port.source = ref(numEdges);
            port.destinations.resize(below(4));
            for (int& destination : port.destinations)
                destination = ref(numEdges);
            port.defaultValue = below(9);
        }
        return list;
    };

    Snapshot snapshot;
    snapshot.nodes.resize(numNodes);
    for (NodeRecord& node : snapshot.nodes) {
        node.name = QString::number(below(4));
        node.parent = ref(numNodes);
        node.value = ref(4);
        node.removed = below(5) == 0;
        node.pass = below(3) != 0;
        node.enabled = below(4) != 0;
        node.inputs = ports();
        node.outputs = ports();
        node.children.resize(below(4));
        for (int& child : node.children)
            child = ref(numNodes);
    }
    snapshot.edges.resize(numEdges);
    for (EdgeRecord& edge : snapshot.edges)
        edge = {ref(numNodes), ref(3), ref(numNodes), ref(3), below(6) == 0};
    snapshot.parameters.resize(below(3));
    snapshot.numOutputs = ref(3);
    snapshot.target = ref(numNodes);
    return snapshot;
}

/// An odd snapshot with more to follow: most edges connect nodes that an edge can connect, at the
/// ports that the edges name. Parents may still form cycles.
inline Kestrin::Orv::Inspect::Snapshot oddWiredSnapshot(unsigned seed)
{
    using namespace Kestrin::Orv::Inspect;
    Snapshot snapshot = oddSnapshot(seed);
    Random random(~seed);
    const auto node = [&] { return below(random, snapshot.nodes.size() + 1) - 1; };
    if (snapshot.nodes.isEmpty())
        return Snapshot();
    for (NodeRecord& record : snapshot.nodes) {
        record.parent = below(random, 2) == 0 ? node() : 0;
        for (QVector<PortRecord>* ports : {&record.inputs, &record.outputs}) {
            ports->fill(PortRecord());
            ports->resize(1 + below(random, 3));
        }
    }
    snapshot.nodes[0].parent = -1;
    snapshot.edges.resize(below(random, 24));
    for (int ref = 0; ref < snapshot.edges.size(); ++ref) {
        EdgeRecord& edge = snapshot.edges[ref];
        edge = {node(), below(random, 3), node(), below(random, 3), below(random, 12) == 0};
        for (int tries = 6; tries > 0 && snapshot.kindOf(ref) == EdgeKind::None; --tries)
            edge.srcNode = node();
        const PortRef from = snapshot.sourceOf(ref);
        PortRef to = snapshot.destinationOf(ref);
        to.isOutput = to.isOutput != (below(random, 10) == 0);
        const auto port = [&snapshot](const PortRef& at) -> PortRecord& {
            NodeRecord& record = snapshot.nodes[at.node];
            return (at.isOutput ? record.outputs : record.inputs)[at.index];
        };
        if (snapshot.hasPort(from))
            port(from).destinations.append(ref);
        if (snapshot.hasPort(to))
            port(to).source = ref;
    }
    return snapshot;
}

#endif
