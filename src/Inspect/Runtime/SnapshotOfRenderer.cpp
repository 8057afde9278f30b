// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include <Kestrin/Orv/Inspect/Snapshot.h>

#include "Runtime/PassCast.h"

#include <Kestrin/Orv/Graph.h>
#include <Kestrin/Orv/Inspect/StandInPass.h>
#include <Kestrin/Orv/Inspect/TracedPass.h>
#include <Kestrin/Orv/RenderPass.h>
#include <Kestrin/Orv/Renderer.h>

namespace Kestrin {
namespace Orv {
namespace Inspect {

namespace {

/// What a graph can be asked about the ports on one side of a node.
struct Side
{
    decltype(&Graph::numInputs) numPorts;
    decltype(&Graph::inputName) name;
    decltype(&Graph::inputGroup) group;
    decltype(&Graph::inputSource) source;
    decltype(&Graph::numInputDestinations) numDestinations;
    decltype(&Graph::inputDestination) destination;
};

const Side kInputs = {&Graph::numInputs,
                      &Graph::inputName,
                      &Graph::inputGroup,
                      &Graph::inputSource,
                      &Graph::numInputDestinations,
                      &Graph::inputDestination};
const Side kOutputs = {&Graph::numOutputs,
                       &Graph::outputName,
                       &Graph::outputGroup,
                       &Graph::outputSource,
                       &Graph::numOutputDestinations,
                       &Graph::outputDestination};

QVector<PortRecord> portsOf(const Graph& graph, int node, const Side& side)
{
    QVector<PortRecord> ports((graph.*side.numPorts)(node));
    for (int i = 0; i < ports.size(); ++i) {
        PortRecord& port = ports[i];
        port.name = (graph.*side.name)(node, i);
        port.group = (graph.*side.group)(node, i);
        port.source = (graph.*side.source)(node, i);
        port.destinations.resize((graph.*side.numDestinations)(node, i));
        for (int k = 0; k < port.destinations.size(); ++k)
            port.destinations[k] = (graph.*side.destination)(node, i, k);
    }
    return ports;
}

void readPass(const RenderPass& pass, const Snapshot::TypeOf& typeOf, NodeRecord& record)
{
    record.pass = true;
    const RenderPass* innermost = TracedPass::innermost(&pass);
    if (const auto* standIn = passCast<StandInPass>(innermost))
        record.type = standIn->type();
    else if (innermost && typeOf)
        record.type = typeOf(*innermost);
    const int numInputs = pass.numInputs();
    int index = 0;
    for (PortRecord& input : record.inputs) {
        if (index >= numInputs)
            break;
        input.defaultValue = pass.defaultValue(index++);
    }
}

} // namespace

Snapshot Snapshot::of(Renderer& renderer, const TypeOf& typeOf)
{
    Snapshot snapshot;
    const Graph& graph = *renderer.getGraph();

    snapshot.nodes.resize(graph.numNodesGlobal());
    for (int ref = 0; ref < snapshot.nodes.size(); ++ref) {
        NodeRecord& node = snapshot.nodes[ref];
        node.name = graph.nodeName(ref);
        node.parent = graph.parentNode(ref);
        node.value = graph.nodeValue(ref);
        node.removed = !graph.isValidNode(ref);
        node.enabled = renderer.enabled(ref);
        node.groups.resize(graph.numInputGroups(ref));
        for (int i = 0; i < node.groups.size(); ++i)
            node.groups[i] = graph.inputGroupName(ref, i);
        node.inputs = portsOf(graph, ref, kInputs);
        node.outputs = portsOf(graph, ref, kOutputs);
        node.children.resize(graph.numNodes(ref));
        for (int i = 0; i < node.children.size(); ++i)
            node.children[i] = graph.getNode(i, ref);
        if (const RenderPass* pass = renderer.renderPass(ref))
            readPass(*pass, typeOf, node);
    }

    snapshot.edges.resize(graph.numEdgesGlobal());
    for (int ref = 0; ref < snapshot.edges.size(); ++ref) {
        EdgeRecord& edge = snapshot.edges[ref];
        edge.srcNode = graph.edgeSourceNode(ref);
        edge.srcIndex = graph.edgeSourceIndex(ref);
        edge.dstNode = graph.edgeDestNode(ref);
        edge.dstIndex = graph.edgeDestIndex(ref);
        edge.removed = !graph.isValidEdge(ref);
    }

    snapshot.parameters.resize(renderer.numParameters());
    for (int i = 0; i < snapshot.parameters.size(); ++i)
        snapshot.parameters[i] = renderer.parameterValue(i);
    snapshot.numOutputs = renderer.numOutputs();
    snapshot.target = renderer.getTarget();
    return snapshot;
}

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin
