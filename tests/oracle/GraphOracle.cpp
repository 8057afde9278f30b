// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "GraphOracle.h"

#include <algorithm>
#include <deque>
#include <functional>
#include <new>
#include <set>

namespace Oracle {

namespace {

template<typename List>
bool has(const List& list, int index)
{
    return index >= 0 && static_cast<std::size_t>(index) < list.size();
}

template<typename List>
int count(const List& list)
{
    return static_cast<int>(list.size());
}

/// Takes out the first entry of this value.
void erase(std::vector<int>& list, int value)
{
    const auto found = std::find(list.begin(), list.end(), value);
    if (found != list.end())
        list.erase(found);
}

template<typename List>
void eraseAt(List& list, int index)
{
    list.erase(list.begin() + index);
}

} // namespace

// --- The tables
// -----------------------------------------------------------------------------------

Graph::Graph()
{
    nodes.push_back(Node());
    nodes.back().parent = -1;
}

const Graph::Node* Graph::node(int ref) const
{
    return has(nodes, ref) ? &nodes[static_cast<std::size_t>(ref)] : nullptr;
}

Graph::Node* Graph::liveNode(int ref)
{
    return isValidNode(ref) ? &nodes[static_cast<std::size_t>(ref)] : nullptr;
}

const Graph::Port* Graph::input(int ref, int index) const
{
    const Node* n = node(ref);
    return n && has(n->inputs, index) ? &n->inputs[static_cast<std::size_t>(index)] : nullptr;
}

const Graph::Port* Graph::output(int ref, int index) const
{
    const Node* n = node(ref);
    return n && has(n->outputs, index) ? &n->outputs[static_cast<std::size_t>(index)] : nullptr;
}

Graph::Port* Graph::input(int ref, int index)
{
    return const_cast<Port*>(static_cast<const Graph*>(this)->input(ref, index));
}

Graph::Port* Graph::output(int ref, int index)
{
    return const_cast<Port*>(static_cast<const Graph*>(this)->output(ref, index));
}

int Graph::numNodesGlobal() const
{
    return count(nodes);
}
int Graph::getNodeGlobal(int index) const
{
    return index;
}
int Graph::numEdgesGlobal() const
{
    return count(edges);
}
int Graph::getEdgeGlobal(int index) const
{
    return index;
}

bool Graph::isValidNode(int ref) const
{
    return node(ref) && !node(ref)->removed;
}

bool Graph::isValidInput(int ref, int index) const
{
    return isValidNode(ref) && input(ref, index);
}

bool Graph::isValidOutput(int ref, int index) const
{
    return isValidNode(ref) && output(ref, index);
}

bool Graph::isValidInputGroup(int ref, int group) const
{
    return isValidNode(ref) && has(node(ref)->groups, group);
}

bool Graph::isValidOutputGroup(int, int) const
{
    return false;
}

bool Graph::isValidEdge(int edge) const
{
    return has(edges, edge) && !edges[static_cast<std::size_t>(edge)].removed;
}

bool Graph::isRegularEdge(int edge) const
{
    return isValidEdge(edge) && parentNode(edgeSourceNode(edge)) == parentNode(edgeDestNode(edge));
}

bool Graph::isDownEdge(int edge) const
{
    return isValidEdge(edge) && edgeSourceNode(edge) == parentNode(edgeDestNode(edge));
}

bool Graph::isUpEdge(int edge) const
{
    return isValidEdge(edge) && parentNode(edgeSourceNode(edge)) == edgeDestNode(edge);
}

std::string Graph::tables() const
{
    std::string text;
    const auto number = [&text](int value) { text.append(std::to_string(value)).append(1, ' '); };
    const auto name = [&text](const QString& string) {
        text.append(string.toStdString()).append(1, '\n');
    };
    const auto numbers = [&number](const std::vector<int>& list) {
        number(count(list));
        for (const int value : list)
            number(value);
    };
    const auto ports = [&](const std::vector<Port>& list) {
        number(count(list));
        for (const Port& port : list) {
            name(port.name);
            number(port.source);
            number(port.group);
            numbers(port.destinations);
        }
    };
    number(count(nodes));
    for (const Node& n : nodes) {
        name(n.name);
        number(n.parent);
        number(n.value);
        number(n.removed);
        ports(n.inputs);
        ports(n.outputs);
        number(count(n.groups));
        for (const QString& group : n.groups)
            name(group);
        numbers(n.children);
    }
    for (const Edge& e : edges) {
        for (const int value : {e.srcNode, e.srcIndex, e.dstNode, e.dstIndex, int(e.removed)})
            number(value);
    }
    return text;
}

// --- Nodes
// ----------------------------------------------------------------------------------------

int Graph::addNode(const QString& name, int numInputs, int numOutputs, int parent)
{
    if (!isValidNode(parent))
        return -1;
    // No machine holds so many ports; Qt's containers give up on their size alone.
    const int tooMany = 1 << 27;
    if (numInputs >= tooMany || numOutputs >= tooMany)
        throw std::bad_alloc();
    Node added;
    added.name = name;
    added.parent = parent;
    added.inputs.resize(static_cast<std::size_t>(std::max(numInputs, 0)));
    added.outputs.resize(static_cast<std::size_t>(std::max(numOutputs, 0)));
    nodes.push_back(added);
    const int ref = count(nodes) - 1;
    liveNode(parent)->children.push_back(ref);
    return ref;
}

void Graph::removeNode(int ref)
{
    const int parent = parentNode(ref);
    removeChildNode(ref);
    if (node(ref) && node(parent))
        erase(nodes[static_cast<std::size_t>(parent)].children, ref);
}

void Graph::removeChildNode(int ref)
{
    std::vector<bool> reached(nodes.size());
    remove(ref, reached);
}

void Graph::remove(int ref, std::vector<bool>& reached)
{
    if (!node(ref) || reached[static_cast<std::size_t>(ref)])
        return;
    reached[static_cast<std::size_t>(ref)] = true;
    const auto cut = [this](const Port* port) {
        if (port->source != -1)
            removeEdge(port->source);
        for (int i = count(port->destinations) - 1; i >= 0; --i) {
            if (has(port->destinations, i))
                removeEdge(port->destinations[static_cast<std::size_t>(i)]);
        }
    };
    for (int i = 0; i < numInputs(ref); ++i)
        cut(input(ref, i));
    for (int i = 0; i < numOutputs(ref); ++i)
        cut(output(ref, i));
    for (int k = 0, n = numNodes(ref); k < n; ++k)
        remove(getNode(k, ref), reached);
    nodes[static_cast<std::size_t>(ref)].children.clear();
    nodes[static_cast<std::size_t>(ref)].removed = true;
}

int Graph::parentNode(int ref) const
{
    return node(ref) ? node(ref)->parent : -1;
}

bool Graph::contains(int ancestor, int ref) const
{
    std::set<int> passed;
    for (int p = parentNode(ref); p != -1 && passed.insert(p).second; p = parentNode(p)) {
        if (p == ancestor)
            return true;
    }
    return false;
}

int Graph::numNodes(int parent) const
{
    return node(parent) ? count(node(parent)->children) : 0;
}

int Graph::getNode(int index, int parent) const
{
    return node(parent) && has(node(parent)->children, index)
        ? node(parent)->children[static_cast<std::size_t>(index)]
        : -1;
}

int Graph::indexOfNode(int ref) const
{
    for (int i = 0; i < numNodes(parentNode(ref)); ++i) {
        if (getNode(i, parentNode(ref)) == ref)
            return i;
    }
    return -1;
}

int Graph::findNode(const QString& name, int parent) const
{
    for (int i = 0; i < numNodes(parent); ++i) {
        if (node(getNode(i, parent)) && nodeName(getNode(i, parent)) == name)
            return getNode(i, parent);
    }
    return -1;
}

int Graph::findNodeFromValue(int value, int parent) const
{
    for (int i = 0; i < numNodes(parent); ++i) {
        if (node(getNode(i, parent)) && nodeValue(getNode(i, parent)) == value)
            return getNode(i, parent);
    }
    return -1;
}

QString Graph::nodeName(int ref) const
{
    return node(ref) ? node(ref)->name : QString();
}

void Graph::setNodeName(int ref, const QString& name)
{
    if (liveNode(ref))
        liveNode(ref)->name = name;
}

int Graph::nodeValue(int ref) const
{
    return node(ref) ? node(ref)->value : -1;
}

void Graph::setNodeValue(int ref, int value)
{
    if (liveNode(ref))
        liveNode(ref)->value = value;
}

// --- Ports and groups
// -----------------------------------------------------------------------------

int Graph::addInput(int ref, const QString& name, int group)
{
    if (!isValidNode(ref))
        return -1;
    Port port;
    port.name = name;
    port.group = group;
    liveNode(ref)->inputs.push_back(port);
    return numInputs(ref) - 1;
}

int Graph::addOutput(int ref, const QString& name, int group)
{
    if (!isValidNode(ref))
        return -1;
    Port port;
    port.name = name;
    port.group = group;
    liveNode(ref)->outputs.push_back(port);
    return numOutputs(ref) - 1;
}

void Graph::removeInput(int ref, int index)
{
    if (isValidInput(ref, index))
        eraseAt(liveNode(ref)->inputs, index);
}

void Graph::removeOutput(int ref, int index)
{
    if (isValidOutput(ref, index))
        eraseAt(liveNode(ref)->outputs, index);
}

int Graph::numInputs(int ref) const
{
    return node(ref) ? count(node(ref)->inputs) : 0;
}
int Graph::numOutputs(int ref) const
{
    return node(ref) ? count(node(ref)->outputs) : 0;
}

int Graph::findInput(int ref, const QString& name) const
{
    for (int i = 0; i < numInputs(ref); ++i) {
        if (inputName(ref, i) == name)
            return i;
    }
    return -1;
}

int Graph::findOutput(int ref, const QString& name) const
{
    for (int i = 0; i < numOutputs(ref); ++i) {
        if (outputName(ref, i) == name)
            return i;
    }
    return -1;
}

QString Graph::inputName(int ref, int index) const
{
    return input(ref, index) ? input(ref, index)->name : QString();
}

QString Graph::outputName(int ref, int index) const
{
    return output(ref, index) ? output(ref, index)->name : QString();
}

void Graph::setInputName(int ref, int index, const QString& name)
{
    if (isValidInput(ref, index))
        input(ref, index)->name = name;
}

void Graph::setOutputName(int ref, int index, const QString& name)
{
    if (isValidOutput(ref, index))
        output(ref, index)->name = name;
}

int Graph::inputGroup(int ref, int index) const
{
    return input(ref, index) ? input(ref, index)->group : -1;
}

int Graph::outputGroup(int ref, int index) const
{
    return output(ref, index) ? output(ref, index)->group : -1;
}

int Graph::addInputGroup(int ref, const QString& name)
{
    if (!isValidNode(ref))
        return -1;
    liveNode(ref)->groups.push_back(name);
    return numInputGroups(ref) - 1;
}

int Graph::addOutputGroup(int ref, const QString& name)
{
    return addInputGroup(ref, name);
}

void Graph::removeInputGroup(int ref, int group)
{
    if (!isValidNode(ref))
        return;
    for (Port& port : liveNode(ref)->inputs) {
        if (port.group == group)
            port.group = -1;
    }
    if (has(liveNode(ref)->groups, group))
        eraseAt(liveNode(ref)->groups, group);
}

void Graph::removeOutputGroup(int ref, int group)
{
    if (!isValidNode(ref))
        return;
    for (Port& port : liveNode(ref)->outputs) {
        if (port.group == group)
            port.group = -1;
    }
}

int Graph::numInputGroups(int ref) const
{
    return node(ref) ? count(node(ref)->groups) : 0;
}
int Graph::numOutputGroups(int) const
{
    return 0;
}

int Graph::findInputGroup(int ref, const QString& name) const
{
    for (int i = 0; i < numInputGroups(ref); ++i) {
        if (inputGroupName(ref, i) == name)
            return i;
    }
    return -1;
}

int Graph::findOutputGroup(int, const QString&) const
{
    return -1;
}

QString Graph::inputGroupName(int ref, int group) const
{
    return node(ref) && has(node(ref)->groups, group)
        ? node(ref)->groups[static_cast<std::size_t>(group)]
        : QString();
}

QString Graph::outputGroupName(int, int) const
{
    return QString();
}

void Graph::setInputGroupName(int ref, int group, const QString& name)
{
    if (isValidInputGroup(ref, group))
        liveNode(ref)->groups[static_cast<std::size_t>(group)] = name;
}

void Graph::setOutputGroupName(int, int, const QString&) { }

// --- Edges
// ----------------------------------------------------------------------------------------

int Graph::makeEdge(int srcNode, int srcIndex, Port* from, int dstNode, int dstIndex, Port* to)
{
    const int edge = count(edges);
    edges.push_back({srcNode, srcIndex, dstNode, dstIndex});
    from->destinations.push_back(edge);
    to->source = edge;
    return edge;
}

int Graph::addEdge(int srcNode, int srcOutput, int dstNode, int dstInput)
{
    if (!isValidOutput(srcNode, srcOutput) || !isValidInput(dstNode, dstInput))
        return -1;
    if (inputSource(dstNode, dstInput) != -1)
        return -1;
    if (numOutputDestinations(srcNode, srcOutput) > 0
        && !isRegularEdge(outputDestination(srcNode, srcOutput, 0)))
        return -1;
    if (precedes(dstNode, srcNode, true))
        return -1;
    return makeEdge(srcNode, srcOutput, output(srcNode, srcOutput), dstNode, dstInput,
                    input(dstNode, dstInput));
}

int Graph::addUpEdge(int parentOutput, int childNode, int childOutput)
{
    const int parent = parentNode(childNode);
    if (!isValidOutput(childNode, childOutput) || !isValidOutput(parent, parentOutput))
        return -1;
    if (outputSource(parent, parentOutput) != -1)
        return -1;
    return makeEdge(childNode, childOutput, output(childNode, childOutput), parent, parentOutput,
                    output(parent, parentOutput));
}

int Graph::addDownEdge(int parentInput, int childNode, int childInput)
{
    const int parent = parentNode(childNode);
    if (!isValidInput(childNode, childInput) || !isValidInput(parent, parentInput))
        return -1;
    if (inputSource(childNode, childInput) != -1)
        return -1;
    return makeEdge(parent, parentInput, input(parent, parentInput), childNode, childInput,
                    input(childNode, childInput));
}

void Graph::removeEdge(int ref)
{
    if (!isValidEdge(ref))
        return;
    Edge& edge = edges[static_cast<std::size_t>(ref)];
    Port* left = output(edge.srcNode, edge.srcIndex);
    Port* entered = input(edge.dstNode, edge.dstIndex);
    if (!isRegularEdge(ref)) {
        if (isDownEdge(ref))
            left = input(edge.srcNode, edge.srcIndex);
        else
            entered = output(edge.dstNode, edge.dstIndex);
    }
    if (left)
        erase(left->destinations, ref);
    if (entered)
        entered->source = -1;
    edge.removed = true;
}

void Graph::disconnectInput(int ref, int index)
{
    if (!isValidInput(ref, index))
        return;
    if (inputSource(ref, index) != -1)
        removeEdge(inputSource(ref, index));
    for (int i = numInputDestinations(ref, index) - 1; i >= 0; --i)
        removeEdge(inputDestination(ref, index, i));
}

void Graph::disconnectInputGroup(int ref, int group)
{
    for (int i = 0; i < numInputs(ref); ++i) {
        if (inputGroup(ref, i) == group)
            disconnectInput(ref, i);
    }
}

// --- Connecting by name
// ---------------------------------------------------------------------------

void Graph::assertion(bool holds, const char* condition, const QString& message) const
{
    if (holds)
        return;
    const QString text = QString::asprintf("[ !! ] Assertion '%s' failed: %s", condition,
                                           message.toLocal8Bit().constData());
    messages.push_back(QLatin1String("critical [Graph.cpp] ")
                       + QString::asprintf("%s", text.toLocal8Bit().constData()));
}

int Graph::addEdgeByName(int srcNode, const QString& srcOutputName, int dstNode,
                         const QString& dstInputName)
{
    assertion(isValidOutput(srcNode, findOutput(srcNode, srcOutputName)),
              "isValidOutput(srcNode, findOutput(srcNode, srcOutputName))",
              QString::asprintf("Source output '%s' is not valid",
                                srcOutputName.toLocal8Bit().constData()));
    assertion(
        isValidInput(dstNode, findInput(dstNode, dstInputName)),
        "isValidInput(dstNode, findInput(dstNode, dstInputName))",
        QString::asprintf("Dest input '%s' is not valid", dstInputName.toLocal8Bit().constData()));
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
    const QString message =
        QString::asprintf("Parent '%s' Child '%s'", parentInputName.toLocal8Bit().constData(),
                          childInputName.toLocal8Bit().constData());
    assertion(isValidNode(childNode), "isValidNode(childNode)", message);
    assertion(isValidInput(childNode, findInput(childNode, childInputName)),
              "isValidInput(childNode, findInput(childNode, childInputName))", message);
    assertion(
        isValidInput(parentNode(childNode), findInput(parentNode(childNode), parentInputName)),
        "isValidInput(parentNode(childNode), findInput(parentNode(childNode), "
        "parentInputName))",
        message);
    return addDownEdge(findInput(parentNode(childNode), parentInputName), childNode,
                       findInput(childNode, childInputName));
}

void Graph::connectByName(int srcNode, int dstNode)
{
    for (int i = 0; i < numInputs(dstNode); ++i) {
        if (inputSource(dstNode, i) != -1)
            continue;
        for (int j = 0; j < numOutputs(srcNode); ++j) {
            if (numOutputDestinations(srcNode, j) > 0
                && !isRegularEdge(outputDestination(srcNode, j, 0)))
                continue;
            if (outputName(srcNode, j) == inputName(dstNode, i)) {
                addEdge(srcNode, j, dstNode, i);
                break;
            }
        }
    }
}

void Graph::connectUpByName(int childNode)
{
    const int parent = parentNode(childNode);
    for (int j = 0; j < numOutputs(childNode); ++j) {
        if (outputSource(childNode, j) != -1)
            continue;
        for (int k = 0; k < numOutputs(parent); ++k) {
            if (numOutputDestinations(parent, k) > 0 && !isUpEdge(outputDestination(parent, k, 0)))
                continue;
            if (outputName(parent, k) == outputName(childNode, j)) {
                addUpEdge(k, childNode, j);
                break;
            }
        }
    }
}

void Graph::connectDownByName(int childNode)
{
    const int parent = parentNode(childNode);
    for (int i = 0; i < numInputs(childNode); ++i) {
        if (inputSource(childNode, i) != -1)
            continue;
        for (int k = 0; k < numInputs(parent); ++k) {
            if (numInputDestinations(parent, k) > 0 && !isDownEdge(inputDestination(parent, k, 0)))
                continue;
            if (inputName(parent, k) == inputName(childNode, i)) {
                addDownEdge(k, childNode, i);
                break;
            }
        }
    }
}

void Graph::connectGroups(int srcNode, int srcGroup, int dstNode, int dstGroup)
{
    for (int i = 0; i < numInputs(dstNode); ++i) {
        if (inputGroup(dstNode, i) != dstGroup || inputSource(dstNode, i) != -1)
            continue;
        for (int j = 0; j < numOutputs(srcNode); ++j) {
            if (outputGroup(srcNode, j) != srcGroup)
                continue;
            if (numOutputDestinations(srcNode, j) > 0
                && !isRegularEdge(outputDestination(srcNode, j, 0)))
                continue;
            if (outputName(srcNode, j) == inputName(dstNode, i)) {
                addEdge(srcNode, j, dstNode, i);
                break;
            }
        }
    }
}

void Graph::connectNamedGroups(int srcNode, const QString& outputGroupName, int dstNode,
                               const QString& inputGroupName)
{
    connectGroups(srcNode, findOutputGroup(srcNode, outputGroupName), dstNode,
                  findInputGroup(dstNode, inputGroupName));
}

// --- Edges of a port
// ------------------------------------------------------------------------------

int Graph::edgeSourceNode(int edge) const
{
    return has(edges, edge) ? edges[static_cast<std::size_t>(edge)].srcNode : -1;
}

int Graph::edgeSourceIndex(int edge) const
{
    return has(edges, edge) ? edges[static_cast<std::size_t>(edge)].srcIndex : -1;
}

int Graph::edgeDestNode(int edge) const
{
    return has(edges, edge) ? edges[static_cast<std::size_t>(edge)].dstNode : -1;
}

int Graph::edgeDestIndex(int edge) const
{
    return has(edges, edge) ? edges[static_cast<std::size_t>(edge)].dstIndex : -1;
}

int Graph::inputSource(int ref, int index) const
{
    return input(ref, index) ? input(ref, index)->source : -1;
}

int Graph::outputSource(int ref, int index) const
{
    return output(ref, index) ? output(ref, index)->source : -1;
}

int Graph::numInputDestinations(int ref, int index) const
{
    return input(ref, index) ? count(input(ref, index)->destinations) : 0;
}

int Graph::inputDestination(int ref, int index, int position) const
{
    return input(ref, index) && has(input(ref, index)->destinations, position)
        ? input(ref, index)->destinations[static_cast<std::size_t>(position)]
        : -1;
}

bool Graph::isValidInputDestination(int ref, int index, int position) const
{
    return isValidInput(ref, index) && has(input(ref, index)->destinations, position);
}

int Graph::numOutputDestinations(int ref, int index) const
{
    return output(ref, index) ? count(output(ref, index)->destinations) : 0;
}

int Graph::outputDestination(int ref, int index, int position) const
{
    return output(ref, index) && has(output(ref, index)->destinations, position)
        ? output(ref, index)->destinations[static_cast<std::size_t>(position)]
        : -1;
}

bool Graph::isValidOutputDestination(int ref, int index, int position) const
{
    return isValidOutput(ref, index) && has(output(ref, index)->destinations, position);
}

// --- Walks
// ----------------------------------------------------------------------------------------

bool Graph::walkUp(int& ref, int& port) const
{
    std::set<int> followed;
    for (int e = inputSource(ref, port); isDownEdge(e); e = inputSource(ref, port)) {
        if (!followed.insert(e).second) {
            open = true;
            break;
        }
        ref = edgeSourceNode(e);
        port = edgeSourceIndex(e);
    }
    return !followed.empty();
}

bool Graph::walkDown(int& ref, int& port) const
{
    std::set<int> followed;
    for (int e = outputSource(ref, port); isUpEdge(e); e = outputSource(ref, port)) {
        if (!followed.insert(e).second) {
            open = true;
            break;
        }
        ref = edgeSourceNode(e);
        port = edgeSourceIndex(e);
    }
    return !followed.empty();
}

bool Graph::walkAcross(int& ref, int& port) const
{
    const int e = inputSource(ref, port);
    if (!isRegularEdge(e))
        return false;
    ref = edgeSourceNode(e);
    port = edgeSourceIndex(e);
    return true;
}

bool Graph::walkToSourceNode(int& ref, int& port) const
{
    walkUp(ref, port);
    if (!walkAcross(ref, port))
        return false;
    walkDown(ref, port);
    return true;
}

bool Graph::trace(int& ref, int& port, bool followHierarchy) const
{
    return followHierarchy ? walkToSourceNode(ref, port) : walkAcross(ref, port);
}

bool Graph::precedes(int upstreamNode, int downstreamNode, bool followHierarchy) const
{
    if (!node(upstreamNode) || !node(downstreamNode))
        return false;
    std::vector<bool> visited(nodes.size());
    std::deque<int> queue{downstreamNode};
    while (!queue.empty()) {
        const int n = queue.front();
        queue.pop_front();
        if (n == upstreamNode)
            return true;
        if (!node(n) || visited[static_cast<std::size_t>(n)])
            continue;
        visited[static_cast<std::size_t>(n)] = true;
        for (int i = 0; i < numInputs(n); ++i) {
            int source = n, port = i;
            if (trace(source, port, followHierarchy))
                queue.push_back(source);
        }
    }
    return false;
}

void Graph::purge()
{
    const auto number = [](const auto& table) {
        std::vector<int> map;
        int live = 0;
        for (const auto& record : table)
            map.push_back(record.removed ? -1 : live++);
        return map;
    };
    const std::vector<int> nodeMap = number(nodes);
    const std::vector<int> edgeMap = number(edges);
    const auto map = [](const std::vector<int>& numbers, int ref) {
        return has(numbers, ref) ? numbers[static_cast<std::size_t>(ref)] : -1;
    };

    std::vector<Node> keptNodes;
    for (Node& n : nodes) {
        if (n.removed)
            continue;
        for (std::vector<Port>* ports : {&n.inputs, &n.outputs}) {
            for (Port& port : *ports) {
                port.source = map(edgeMap, port.source);
                for (int& destination : port.destinations)
                    destination = map(edgeMap, destination);
            }
        }
        for (int c = 0; c < count(n.children); ++c)
            n.children[static_cast<std::size_t>(c)] = map(nodeMap, c); // by position, not by value
        keptNodes.push_back(n);
    }
    std::vector<Edge> keptEdges;
    for (Edge& e : edges) {
        if (e.removed)
            continue;
        e.srcNode = map(nodeMap, e.srcNode);
        e.dstNode = map(nodeMap, e.dstNode);
        keptEdges.push_back(e);
    }
    nodes = keptNodes;
    edges = keptEdges;
}

// --- Walkers
// --------------------------------------------------------------------------------------

std::vector<int> bottomUpInputs(const Graph& graph, int start, bool followHierarchy)
{
    std::vector<int> order;
    if (start == -1)
        return order;
    std::set<int> visited; // the start is not in it
    const std::function<void(int)> visit = [&](int node) {
        for (int i = 0; i < graph.numInputs(node); ++i) {
            int source = node, port = i;
            if ((followHierarchy ? graph.walkToSourceNode(source, port)
                                 : graph.walkAcross(source, port))
                && source >= 0 && source < graph.numNodesGlobal() && visited.insert(source).second)
                visit(source);
        }
        order.push_back(node);
    };
    visit(start);
    return order;
}

std::vector<int> breadthFirstInputs(const Graph& graph, int start, bool followHierarchy)
{
    std::vector<int> order;
    if (start == -1)
        return order;
    std::set<int> visited{start};
    order.push_back(start);
    for (std::size_t head = 0; head < order.size(); ++head) {
        for (int i = 0; i < graph.numInputs(order[head]); ++i) {
            int source = order[head], port = i;
            if ((followHierarchy ? graph.walkToSourceNode(source, port)
                                 : graph.walkAcross(source, port))
                && source >= 0 && source < graph.numNodesGlobal() && visited.insert(source).second)
                order.push_back(source);
        }
    }
    return order;
}

std::vector<int> bottomUpSubgraph(const Graph& graph, int start)
{
    std::vector<int> order;
    if (!graph.isValidNode(start))
        return order;
    std::set<int> reached;
    const std::function<void(int)> visit = [&](int node) {
        if (node < 0 || node >= graph.numNodesGlobal() || !reached.insert(node).second)
            return;
        for (int k = 0; k < graph.numNodes(node); ++k)
            visit(graph.getNode(k, node));
        order.push_back(node);
    };
    visit(start);
    return order;
}

// --- The dump
// -------------------------------------------------------------------------------------

void dumpAsGraphviz(const Graph* graph)
{
    const auto line = [graph](const QString& text) {
        graph->messages.push_back(QLatin1String("debug [Graph.cpp] ")
                                  + QString::asprintf("%s", text.toLocal8Bit().constData()));
    };
    const auto name = [graph](int node) { return graph->nodeName(node).toLocal8Bit(); };

    line(QStringLiteral("digraph \"Orv\" {"));
    line(QStringLiteral("  rankdir=LR;"));
    line(QStringLiteral(" "));
    line(QStringLiteral("  // Nodes"));
    for (int i = 0; i < graph->numNodes(0); ++i)
        line(QString::asprintf("  \"%s\";", name(graph->getNode(i, 0)).constData()));
    line(QStringLiteral(" "));
    line(QStringLiteral("  // Edges"));
    for (int i = 0; i < graph->numNodes(0); ++i) {
        const int from = graph->getNode(i, 0);
        std::set<int> seen;
        for (int output = 0; output < graph->numOutputs(from); ++output) {
            for (int d = 0; d < graph->numOutputDestinations(from, output); ++d) {
                const int to = graph->edgeDestNode(graph->outputDestination(from, output, d));
                if (seen.insert(to).second)
                    line(QString::asprintf("  \"%s\" -> \"%s\";", name(from).constData(),
                                           name(to).constData()));
            }
        }
    }
    line(QStringLiteral("}"));
}

} // namespace Oracle
