// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include <Kestrin/Orv/Graph.h>
#include <Kestrin/Orv/Graphviz.h>

#include "AppendToBoth.h"
#include "Diagnostics.h"
#include "FindByName.h"
#include "GraphTables.h"
#include "GraphView.h"
#include "UpstreamSearch.h"

#include <QtCore/QSet>

#include <algorithm>
#include <utility>

namespace Kestrin {
namespace Orv {

const int Graph::kRootNodeRef;
const int Graph::kInvalidNodeRef;
const int Graph::kInvalidEdgeRef;
const int Graph::kInvalidGroupRef;

namespace {

/// Removes `value` from a list that holds it at most once. Most removals take the last entry first,
/// so the search begins at the end.
void removeOne(QVector<int>& list, int value)
{
    const int position = list.lastIndexOf(value);
    if (position >= 0)
        list.remove(position);
}

} // namespace

Graph::Graph()
    : impl(new Impl)
{
    try {
        Node root;
        root.removed = false;
        impl->nodes.append(std::move(root));
    } catch (...) {
        delete impl;
        throw;
    }
}

Graph::~Graph()
{
    delete impl;
}

// Tables and validity

Node* Graph::Impl::liveNode(int ref)
{
    Node* node = find(nodes, ref);
    return node && !node->removed ? node : nullptr;
}

int Graph::numNodesGlobal() const
{
    return impl->nodes.size();
}

int Graph::getNodeGlobal(int index) const
{
    return index;
}

int Graph::numEdgesGlobal() const
{
    return impl->edges.size();
}

int Graph::getEdgeGlobal(int index) const
{
    return index;
}

bool Graph::isValidNode(int node) const
{
    return !impl->node(node).removed;
}

bool Graph::isValidInput(int node, int input) const
{
    const Node& record = impl->node(node);
    return !record.removed && hasIndex(record.inputs, input);
}

bool Graph::isValidOutput(int node, int output) const
{
    const Node& record = impl->node(node);
    return !record.removed && hasIndex(record.outputs, output);
}

bool Graph::isValidInputGroup(int node, int group) const
{
    const Node& record = impl->node(node);
    return !record.removed && hasIndex(record.inputGroups, group);
}

bool Graph::isValidOutputGroup(int node, int group) const
{
    const Node& record = impl->node(node);
    return !record.removed && hasIndex(record.outputGroups, group);
}

bool Graph::isValidEdge(int edge) const
{
    return !impl->edge(edge).removed;
}

bool Graph::isRegularEdge(int edge) const
{
    return impl->isRegular(impl->edge(edge));
}

bool Graph::isDownEdge(int edge) const
{
    return impl->isDown(impl->edge(edge));
}

bool Graph::isUpEdge(int edge) const
{
    return impl->isUp(impl->edge(edge));
}

// Nodes

int Graph::addNode(const QString& name, int numInputs, int numOutputs, int parent)
{
    Node* parentRecord = impl->liveNode(parent);
    if (!parentRecord)
        return kInvalidNodeRef;

    Node node;
    node.name = name;
    node.parent = parent;
    node.inputs.resize(std::max(numInputs, 0));
    node.outputs.resize(std::max(numOutputs, 0));
    node.removed = false;

    const int ref = impl->nodes.size();
    appendToBoth(parentRecord->children, ref, impl->nodes, std::move(node));
    return ref;
}

/// Marks a node and everything below it as removed and lists them, parents before their children
/// and siblings in their order. The mark keeps a node from being listed twice if the lists of
/// children do not form a tree. When memory runs out, no mark is left.
QVector<int> Graph::Impl::markSubtreeRemoved(int ref)
{
    QVector<int> subtree;
    try {
        QVector<int> pending{ref};
        while (!pending.isEmpty()) {
            const int next = pending.takeLast();
            Node* record = liveNode(next);
            if (!record)
                continue;
            subtree.append(next);
            record->removed = true;
            for (int position = record->children.size() - 1; position >= 0; --position)
                pending.append(record->children.at(position));
        }
    } catch (...) {
        for (const int marked : qAsConst(subtree))
            nodes[marked].removed = false;
        throw;
    }
    return subtree;
}

void Graph::removeChildNode(int node)
{
    const QVector<int> subtree = impl->markSubtreeRemoved(node);
    for (const int ref : subtree) {
        const Node& record = impl->node(ref);
        for (const Port& port : record.inputs)
            impl->disconnect(port);
        for (const Port& port : record.outputs)
            impl->disconnect(port);
        impl->nodes[ref].children = QVector<int>();
    }
}

void Graph::removeNode(int node)
{
    removeChildNode(node);
    if (Node* parent = find(impl->nodes, parentNode(node)))
        removeOne(parent->children, node);
}

int Graph::parentNode(int node) const
{
    return impl->node(node).parent;
}

bool Graph::contains(int ancestor, int node) const
{
    // After a purge, parents may form a cycle. So no chain of ancestors is longer than the table.
    int steps = impl->nodes.size();
    for (int p = parentNode(node); p != kInvalidNodeRef && steps > 0; p = parentNode(p), --steps) {
        if (p == ancestor)
            return true;
    }
    return false;
}

int Graph::numNodes(int parent) const
{
    return impl->node(parent).children.size();
}

int Graph::getNode(int index, int parent) const
{
    return lookUp(impl->node(parent).children, index);
}

int Graph::indexOfNode(int node) const
{
    return impl->node(parentNode(node)).children.indexOf(node);
}

int Graph::findNode(const QString& name, int parent) const
{
    for (const int child : impl->node(parent).children) {
        if (hasIndex(impl->nodes, child) && impl->nodes.at(child).name == name)
            return child;
    }
    return kInvalidNodeRef;
}

int Graph::findNodeFromValue(int value, int parent) const
{
    for (const int child : impl->node(parent).children) {
        if (hasIndex(impl->nodes, child) && impl->nodes.at(child).value == value)
            return child;
    }
    return kInvalidNodeRef;
}

QString Graph::nodeName(int node) const
{
    return impl->node(node).name;
}

void Graph::setNodeName(int node, const QString& name)
{
    if (Node* record = impl->liveNode(node))
        record->name = name;
}

int Graph::nodeValue(int node) const
{
    return impl->node(node).value;
}

void Graph::setNodeValue(int node, int value)
{
    if (Node* record = impl->liveNode(node))
        record->value = value;
}

// Inputs and outputs. The shared code works on a list of ports, chosen by a pointer to member.

namespace {

using Ports = QVector<Port> Node::*;
using GroupNames = QVector<QString> Node::*;

int addPort(Node* node, Ports ports, const QString& name, int group)
{
    if (!node)
        return -1;
    Port port;
    port.name = name;
    port.group = group;
    (node->*ports).append(std::move(port));
    return (node->*ports).size() - 1;
}

void removePort(Node* node, Ports ports, int index)
{
    if (node && hasIndex(node->*ports, index))
        (node->*ports).remove(index);
}

void setPortName(Node* node, Ports ports, int index, const QString& name)
{
    Port* port = node ? find(node->*ports, index) : nullptr;
    if (port)
        port->name = name;
}

int addGroup(Node* node, const QString& name)
{
    if (!node)
        return Graph::kInvalidGroupRef;
    node->inputGroups.append(name);
    return node->inputGroups.size() - 1;
}

void removeGroup(Node* node, Ports ports, GroupNames names, int group)
{
    if (!node)
        return;
    for (Port& port : node->*ports) {
        if (port.group == group)
            port.group = Graph::kInvalidGroupRef;
    }
    if (hasIndex(node->*names, group))
        (node->*names).remove(group);
}

void setGroupName(Node* node, GroupNames names, int group, const QString& name)
{
    QString* current = node ? find(node->*names, group) : nullptr;
    if (current)
        *current = name;
}

} // namespace

int Graph::addInput(int node, const QString& name, int group)
{
    return addPort(impl->liveNode(node), &Node::inputs, name, group);
}

void Graph::removeInput(int node, int input)
{
    removePort(impl->liveNode(node), &Node::inputs, input);
}

int Graph::numInputs(int node) const
{
    return impl->node(node).inputs.size();
}

int Graph::findInput(int node, const QString& name) const
{
    return findByName(impl->node(node).inputs, name);
}

QString Graph::inputName(int node, int input) const
{
    return impl->input(node, input).name;
}

void Graph::setInputName(int node, int input, const QString& name)
{
    setPortName(impl->liveNode(node), &Node::inputs, input, name);
}

int Graph::inputGroup(int node, int input) const
{
    return impl->input(node, input).group;
}

int Graph::addInputGroup(int node, const QString& name)
{
    return addGroup(impl->liveNode(node), name);
}

void Graph::removeInputGroup(int node, int group)
{
    removeGroup(impl->liveNode(node), &Node::inputs, &Node::inputGroups, group);
}

int Graph::numInputGroups(int node) const
{
    return impl->node(node).inputGroups.size();
}

int Graph::findInputGroup(int node, const QString& name) const
{
    return impl->node(node).inputGroups.indexOf(name);
}

QString Graph::inputGroupName(int node, int group) const
{
    return lookUp(impl->node(node).inputGroups, group);
}

void Graph::setInputGroupName(int node, int group, const QString& name)
{
    setGroupName(impl->liveNode(node), &Node::inputGroups, group, name);
}

int Graph::addOutput(int node, const QString& name, int group)
{
    return addPort(impl->liveNode(node), &Node::outputs, name, group);
}

void Graph::removeOutput(int node, int output)
{
    removePort(impl->liveNode(node), &Node::outputs, output);
}

int Graph::numOutputs(int node) const
{
    return impl->node(node).outputs.size();
}

int Graph::findOutput(int node, const QString& name) const
{
    return findByName(impl->node(node).outputs, name);
}

QString Graph::outputName(int node, int output) const
{
    return impl->output(node, output).name;
}

void Graph::setOutputName(int node, int output, const QString& name)
{
    setPortName(impl->liveNode(node), &Node::outputs, output, name);
}

int Graph::outputGroup(int node, int output) const
{
    return impl->output(node, output).group;
}

int Graph::addOutputGroup(int node, const QString& name)
{
    return addGroup(impl->liveNode(node), name);
}

void Graph::removeOutputGroup(int node, int group)
{
    removeGroup(impl->liveNode(node), &Node::outputs, &Node::outputGroups, group);
}

int Graph::numOutputGroups(int node) const
{
    return impl->node(node).outputGroups.size();
}

int Graph::findOutputGroup(int node, const QString& name) const
{
    return impl->node(node).outputGroups.indexOf(name);
}

QString Graph::outputGroupName(int node, int group) const
{
    return lookUp(impl->node(node).outputGroups, group);
}

void Graph::setOutputGroupName(int node, int group, const QString& name)
{
    setGroupName(impl->liveNode(node), &Node::outputGroups, group, name);
}

// Making and removing edges

/// Adds an edge and connects it to the ports at its ends.
int Graph::Impl::connect(Port& left, Port& entered, const Edge& edge)
{
    const int ref = edges.size();
    appendToBoth(left.destinations, ref, edges, edge);
    entered.source = ref;
    nodes[edge.srcNode].numSourceEdges += isSourceEdge(edge);
    return ref;
}

int Graph::addEdge(int srcNode, int srcOutput, int dstNode, int dstInput)
{
    if (!isValidOutput(srcNode, srcOutput) || !isValidInput(dstNode, dstInput))
        return kInvalidEdgeRef;

    const Port& output = impl->output(srcNode, srcOutput);
    if (impl->input(dstNode, dstInput).source != kInvalidEdgeRef)
        return kInvalidEdgeRef;
    if (!output.destinations.isEmpty() && !isRegularEdge(output.destinations.first()))
        return kInvalidEdgeRef;
    if (precedes(dstNode, srcNode, true))
        return kInvalidEdgeRef;

    return impl->connect(impl->nodes[srcNode].outputs[srcOutput],
                         impl->nodes[dstNode].inputs[dstInput],
                         {srcNode, srcOutput, dstNode, dstInput, false});
}

int Graph::addUpEdge(int parentOutput, int childNode, int childOutput)
{
    const int parent = parentNode(childNode);
    if (!isValidOutput(parent, parentOutput) || !isValidOutput(childNode, childOutput))
        return kInvalidEdgeRef;
    if (outputSource(parent, parentOutput) != kInvalidEdgeRef)
        return kInvalidEdgeRef;

    return impl->connect(impl->nodes[childNode].outputs[childOutput],
                         impl->nodes[parent].outputs[parentOutput],
                         {childNode, childOutput, parent, parentOutput, false});
}

int Graph::addDownEdge(int parentInput, int childNode, int childInput)
{
    const int parent = parentNode(childNode);
    if (!isValidInput(parent, parentInput) || !isValidInput(childNode, childInput))
        return kInvalidEdgeRef;
    if (inputSource(childNode, childInput) != kInvalidEdgeRef)
        return kInvalidEdgeRef;

    return impl->connect(impl->nodes[parent].inputs[parentInput],
                         impl->nodes[childNode].inputs[childInput],
                         {parent, parentInput, childNode, childInput, false});
}

void Graph::Impl::removeEdge(int ref)
{
    Edge* edge = find(edges, ref);
    if (!edge || edge->removed)
        return;

    const bool regular = isRegular(*edge);
    const bool down = !regular && isDown(*edge);
    const auto left = down ? &Node::inputs : &Node::outputs;
    const auto entered = regular || down ? &Node::inputs : &Node::outputs;

    // A port that the edge names may have been deleted since.
    if (Node* node = find(nodes, edge->srcNode)) {
        if (Port* port = find(node->*left, edge->srcIndex))
            removeOne(port->destinations, ref);
        node->numSourceEdges -= isSourceEdge(*edge);
    }
    if (Node* node = find(nodes, edge->dstNode)) {
        if (Port* port = find(node->*entered, edge->dstIndex))
            port->source = kInvalidEdgeRef;
    }
    edge->removed = true;
}

/// Removes the edge that feeds a port and then, youngest first, the edges that leave it.
void Graph::Impl::disconnect(const Port& port)
{
    removeEdge(port.source);
    // Count down: after ports have been deleted, not every removal shortens this list.
    for (int position = port.destinations.size() - 1; position >= 0; --position)
        removeEdge(lookUp(port.destinations, position));
}

void Graph::removeEdge(int edge)
{
    impl->removeEdge(edge);
}

void Graph::disconnectInput(int node, int input)
{
    impl->disconnect(impl->input(node, input));
}

void Graph::disconnectInputGroup(int node, int group)
{
    const int count = numInputs(node);
    for (int input = 0; input < count; ++input) {
        if (inputGroup(node, input) == group)
            disconnectInput(node, input);
    }
}

// Connecting by name

int Graph::addEdgeByName(int srcNode, const QString& srcOutputName, int dstNode,
                         const QString& dstInputName)
{
    const auto noOutput = [&] {
        return QString::asprintf("Source output '%s' is not valid", qPrintable(srcOutputName));
    };
    const auto noInput = [&] {
        return QString::asprintf("Dest input '%s' is not valid", qPrintable(dstInputName));
    };
    ORV_ASSERT_MESSAGE(isValidOutput(srcNode, findOutput(srcNode, srcOutputName)), noOutput());
    ORV_ASSERT_MESSAGE(isValidInput(dstNode, findInput(dstNode, dstInputName)), noInput());
    return addEdge(srcNode, findOutput(srcNode, srcOutputName), dstNode,
                   findInput(dstNode, dstInputName));
}

int Graph::addUpEdgeByName(const QString& parentOutputName, int childNode,
                           const QString& childOutputName)
{
    return addUpEdge(findOutput(parentNode(childNode), parentOutputName), childNode,
                     findOutput(childNode, childOutputName));
}

int Graph::addDownEdgeByName(const QString& parentInputName, int childNode,
                             const QString& childInputName)
{
    const auto names = [&] {
        return QString::asprintf("Parent '%s' Child '%s'", qPrintable(parentInputName),
                                 qPrintable(childInputName));
    };
    ORV_ASSERT_MESSAGE(isValidNode(childNode), names());
    ORV_ASSERT_MESSAGE(isValidInput(childNode, findInput(childNode, childInputName)), names());
    // In a macro call, this condition would be too long for one line.
    const char* const isValidParentInput =
        "isValidInput(parentNode(childNode), findInput(parentNode(childNode), parentInputName))";
    const int parent = parentNode(childNode);
    const bool holds = isValidInput(parent, findInput(parent, parentInputName));
    ORV_ASSERT_TEXT(holds, isValidParentInput, names());
    return addDownEdge(findInput(parentNode(childNode), parentInputName), childNode,
                       findInput(childNode, childInputName));
}

namespace {

/// Connects inputs to the outputs of the same name. Leaves out ports that are not accepted.
template<typename AcceptOutput, typename AcceptInput>
void connectSiblings(Graph& graph, int srcNode, AcceptOutput acceptOutput, int dstNode,
                     AcceptInput acceptInput)
{
    const auto feedsParent = [&](int output) {
        return graph.numOutputDestinations(srcNode, output) > 0
            && !graph.isRegularEdge(graph.outputDestination(srcNode, output, 0));
    };
    const int numInputs = graph.numInputs(dstNode);
    const int numOutputs = graph.numOutputs(srcNode);
    for (int input = 0; input < numInputs; ++input) {
        if (!acceptInput(input) || graph.inputSource(dstNode, input) != Graph::kInvalidEdgeRef)
            continue;
        const QString name = graph.inputName(dstNode, input);
        for (int output = 0; output < numOutputs; ++output) {
            if (acceptOutput(output) && !feedsParent(output)
                && graph.outputName(srcNode, output) == name) {
                graph.addEdge(srcNode, output, dstNode, input);
                break;
            }
        }
    }
}

} // namespace

void Graph::connectByName(int srcNode, int dstNode)
{
    const auto any = [](int) { return true; };
    connectSiblings(*this, srcNode, any, dstNode, any);
}

void Graph::connectGroups(int srcNode, int srcGroup, int dstNode, int dstGroup)
{
    connectSiblings(
        *this, srcNode, [&](int output) { return outputGroup(srcNode, output) == srcGroup; },
        dstNode, [&](int input) { return inputGroup(dstNode, input) == dstGroup; });
}

void Graph::connectNamedGroups(int srcNode, const QString& outputGroupName, int dstNode,
                               const QString& inputGroupName)
{
    connectGroups(srcNode, findOutputGroup(srcNode, outputGroupName), dstNode,
                  findInputGroup(dstNode, inputGroupName));
}

void Graph::connectUpByName(int childNode)
{
    const int parent = parentNode(childNode);
    const auto feedsSiblings = [&](int output) {
        return numOutputDestinations(parent, output) > 0
            && !isUpEdge(outputDestination(parent, output, 0));
    };
    const int numChildOutputs = numOutputs(childNode);
    const int numParentOutputs = numOutputs(parent);
    for (int childOutput = 0; childOutput < numChildOutputs; ++childOutput) {
        if (outputSource(childNode, childOutput) != kInvalidEdgeRef)
            continue;
        const QString name = outputName(childNode, childOutput);
        for (int output = 0; output < numParentOutputs; ++output) {
            if (!feedsSiblings(output) && outputName(parent, output) == name) {
                addUpEdge(output, childNode, childOutput);
                break;
            }
        }
    }
}

void Graph::connectDownByName(int childNode)
{
    const int parent = parentNode(childNode);
    const auto feedsElsewhere = [&](int input) {
        return numInputDestinations(parent, input) > 0
            && !isDownEdge(inputDestination(parent, input, 0));
    };
    const int numChildInputs = numInputs(childNode);
    const int numParentInputs = numInputs(parent);
    for (int childInput = 0; childInput < numChildInputs; ++childInput) {
        if (inputSource(childNode, childInput) != kInvalidEdgeRef)
            continue;
        const QString name = inputName(childNode, childInput);
        for (int input = 0; input < numParentInputs; ++input) {
            if (!feedsElsewhere(input) && inputName(parent, input) == name) {
                addDownEdge(input, childNode, childInput);
                break;
            }
        }
    }
}

// Edges of a port

int Graph::edgeSourceNode(int edge) const
{
    return impl->edge(edge).srcNode;
}

int Graph::edgeSourceIndex(int edge) const
{
    return impl->edge(edge).srcIndex;
}

int Graph::edgeDestNode(int edge) const
{
    return impl->edge(edge).dstNode;
}

int Graph::edgeDestIndex(int edge) const
{
    return impl->edge(edge).dstIndex;
}

int Graph::inputSource(int node, int input) const
{
    return impl->input(node, input).source;
}

int Graph::outputSource(int node, int output) const
{
    return impl->output(node, output).source;
}

int Graph::numInputDestinations(int node, int input) const
{
    return impl->input(node, input).destinations.size();
}

int Graph::inputDestination(int node, int input, int index) const
{
    return lookUp(impl->input(node, input).destinations, index);
}

bool Graph::isValidInputDestination(int node, int input, int index) const
{
    return isValidInput(node, input) && hasIndex(impl->input(node, input).destinations, index);
}

int Graph::numOutputDestinations(int node, int output) const
{
    return impl->output(node, output).destinations.size();
}

int Graph::outputDestination(int node, int output, int index) const
{
    return lookUp(impl->output(node, output).destinations, index);
}

bool Graph::isValidOutputDestination(int node, int output, int index) const
{
    return isValidOutput(node, output) && hasIndex(impl->output(node, output).destinations, index);
}

// Walking against the flow of data

bool Graph::walkUp(int& node, int& port) const
{
    return GraphView(*impl).walkUp(node, port);
}

bool Graph::walkAcross(int& node, int& port) const
{
    return GraphView(*impl).walkAcross(node, port);
}

bool Graph::walkDown(int& node, int& port) const
{
    return GraphView(*impl).walkDown(node, port);
}

bool Graph::walkToSourceNode(int& node, int& port) const
{
    return GraphView(*impl).walkToSourceNode(node, port);
}

// The whole graph

bool Graph::precedes(int upstreamNode, int downstreamNode, bool followHierarchy) const
{
    const GraphView view(*impl);
    if (!view.hasNode(upstreamNode) || !view.hasNode(downstreamNode))
        return false;
    if (upstreamNode == downstreamNode)
        return true;
    // Most calls need no search: if a graph is wired from the sources down, the node feeds nothing
    // yet.
    if (view.nodes[upstreamNode].numSourceEdges == 0)
        return false;
    return followHierarchy ? UpstreamSearch<true>(view, upstreamNode).run(downstreamNode)
                           : UpstreamSearch<false>(view, upstreamNode).run(downstreamNode);
}

namespace {

/// The new ref of each slot: live slots are counted from 0, removed ones get -1.
template<typename Record>
QVector<int> numberLiveSlots(const QVector<Record>& table)
{
    QVector<int> map(table.size(), -1);
    int next = 0;
    for (int slot = 0; slot < table.size(); ++slot) {
        if (!table.at(slot).removed)
            map[slot] = next++;
    }
    return map;
}

template<typename Record>
int countLiveSlots(const QVector<Record>& table)
{
    return static_cast<int>(std::count_if(table.cbegin(), table.cend(),
                                          [](const Record& record) { return !record.removed; }));
}

void renumberEdges(QVector<Port>& ports, const QVector<int>& edgeMap)
{
    for (Port& port : ports) {
        port.source = lookUp(edgeMap, port.source);
        for (int& edge : port.destinations)
            edge = lookUp(edgeMap, edge);
    }
}

} // namespace

void Graph::purge()
{
    // Allocate all memory before the first record moves.
    const QVector<int> nodeMap = numberLiveSlots(impl->nodes);
    const QVector<int> edgeMap = numberLiveSlots(impl->edges);
    QVector<Node> nodes;
    nodes.reserve(countLiveSlots(impl->nodes));
    QVector<Edge> edges;
    edges.reserve(countLiveSlots(impl->edges));

    for (Node& node : impl->nodes) {
        if (node.removed)
            continue;
        renumberEdges(node.inputs, edgeMap);
        renumberEdges(node.outputs, edgeMap);
        // By position and not by value; the parent is not changed. See the header.
        for (int position = 0; position < node.children.size(); ++position)
            node.children[position] = lookUp(nodeMap, position);
        node.numSourceEdges = 0;
        nodes.append(std::move(node));
    }
    impl->nodes.swap(nodes);
    for (Edge edge : qAsConst(impl->edges)) {
        if (edge.removed)
            continue;
        edge.srcNode = lookUp(nodeMap, edge.srcNode);
        edge.dstNode = lookUp(nodeMap, edge.dstNode);
        edges.append(edge);
        // Count again: with new refs and old parents, an edge may be of another kind.
        if (Node* source = find(impl->nodes, edge.srcNode))
            source->numSourceEdges += impl->isSourceEdge(edge);
    }
    impl->edges.swap(edges);
}

void dumpAsGraphviz(const Graph* graph)
{
    if (!graph)
        return;
    const int numNodes = graph->numNodes(Graph::kRootNodeRef);

    ORV_DEBUG("digraph \"Orv\" {");
    ORV_DEBUG("  rankdir=LR;");
    ORV_DEBUG(" ");
    ORV_DEBUG("  // Nodes");
    for (int i = 0; i < numNodes; ++i) {
        const int node = graph->getNode(i, Graph::kRootNodeRef);
        ORV_DEBUG("  \"%s\";", qPrintable(graph->nodeName(node)));
    }
    ORV_DEBUG(" ");
    ORV_DEBUG("  // Edges");
    for (int i = 0; i < numNodes; ++i) {
        const int node = graph->getNode(i, Graph::kRootNodeRef);
        const QString name = graph->nodeName(node);
        const int numOutputs = graph->numOutputs(node);
        QSet<int> written;
        for (int output = 0; output < numOutputs; ++output) {
            const int numDestinations = graph->numOutputDestinations(node, output);
            for (int d = 0; d < numDestinations; ++d) {
                const int destination =
                    graph->edgeDestNode(graph->outputDestination(node, output, d));
                if (written.contains(destination))
                    continue;
                written.insert(destination);
                const QString destinationName = graph->nodeName(destination);
                ORV_DEBUG("  \"%s\" -> \"%s\";", qPrintable(name), qPrintable(destinationName));
            }
        }
    }
    ORV_DEBUG("}");
}

} // namespace Orv
} // namespace Kestrin
