// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef ORV_TESTS_INSPECT_RANDOMSNAPSHOT_H
#define ORV_TESTS_INSPECT_RANDOMSNAPSHOT_H

#include <Kestrin/Orv/Inspect/Snapshot.h>

#include <random>

/// A snapshot whose fields hold anything: parents that form cycles, edges that name what does not
/// exist. Small enough that its fields often fit.
class RandomSnapshot
{
public:
    explicit RandomSnapshot(unsigned seed)
        : random(seed)
    {
        using namespace Kestrin::Orv::Inspect;
        snapshot.nodes.resize(1 + below(8));
        snapshot.edges.resize(below(24));
        for (NodeRecord& node : snapshot.nodes) {
            node.parent = below(3) == 0 ? anyNode() : 0;
            node.removed = below(6) == 0;
            node.pass = below(2) == 0;
            node.enabled = below(5) != 0;
            node.children.resize(below(3));
            for (int& child : node.children)
                child = anyNode();
            for (QVector<PortRecord>* ports : {&node.inputs, &node.outputs})
                ports->resize(1 + below(3));
        }
        snapshot.nodes[0].parent = -1;
        for (EdgeRecord& edge : snapshot.edges) {
            edge = {anyNode(), below(4), anyNode(), below(4), below(12) == 0};
            for (int tries = 6; tries > 0 && !isRelated(edge); --tries)
                edge.srcNode = anyNode();
        }
        for (int ref = 0; ref < snapshot.edges.size(); ++ref)
            connect(ref);
        snapshot.numOutputs = below(3);
        snapshot.target = anyNode();
    }

    Kestrin::Orv::Inspect::Snapshot snapshot;

private:
    int below(int limit) { return static_cast<int>(random() % static_cast<unsigned>(limit)); }
    int anyNode() { return below(snapshot.nodes.size() + 1) - 1; }

    bool isRelated(const Kestrin::Orv::Inspect::EdgeRecord& edge) const
    {
        return snapshot.kindBetween(edge.srcNode, edge.dstNode)
            != Kestrin::Orv::Inspect::EdgeKind::None;
    }

    /// Most edges are connected where they say, and with what the kind asks for.
    void connect(int ref)
    {
        using namespace Kestrin::Orv::Inspect;
        PortRef from = snapshot.sourceOf(ref);
        PortRef to = snapshot.destinationOf(ref);
        if (below(10) == 0)
            to.isOutput = !to.isOutput;
        const auto record = [this](const PortRef& port) -> PortRecord& {
            NodeRecord& node = snapshot.nodes[port.node];
            return (port.isOutput ? node.outputs : node.inputs)[port.index];
        };
        if (snapshot.hasPort(from))
            record(from).destinations.append(ref);
        if (snapshot.hasPort(to))
            record(to).source = ref;
    }

    std::mt19937 random;
};

#endif
