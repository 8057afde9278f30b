// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "RendererOracle.h"

#include <algorithm>

namespace Oracle {

namespace {

template<typename List>
bool has(const List& list, int index)
{
    return index >= 0 && static_cast<std::size_t>(index) < list.size();
}

template<typename List>
auto at(const List& list, int index)
{
    return list[static_cast<std::size_t>(index)];
}

const int kRoot = 0;
const QString kStaggered = QStringLiteral("Orv_bool_staggeredFirstFrame");

} // namespace

Renderer::~Renderer()
{
    for (RenderPass* pass : passes)
        delete pass;
}

// --- Registration
// ---------------------------------------------------------------------------------

int Renderer::addPass(const QString& name, RenderPass* pass, int parent)
{
    passes.push_back(pass);
    passEnabled.push_back(true);
    const int index = static_cast<int>(passes.size()) - 1;
    const int outputCount = pass ? pass->numOutputs() : 0;
    const int inputCount = pass ? pass->numInputs() : 0;
    const int node = graph.addNode(name, inputCount, outputCount, parent);
    for (int i = 0, n = pass ? pass->numInputs() : 0; i < n; ++i)
        graph.setInputName(node, i, pass->inputName(i));
    for (int i = 0, n = pass ? pass->numOutputs() : 0; i < n; ++i)
        graph.setOutputName(node, i, pass->outputName(i));
    graph.setNodeValue(node, index);
    return node;
}

int Renderer::addGroup(const QString& name, int numInputs, int numOutputs, int parent)
{
    return graph.addNode(name, numInputs, numOutputs, parent);
}

int Renderer::addParameter(const QString& name, const QVariant& value)
{
    const int index = graph.addInput(kRoot, name, -1);
    if (index == -1)
        return -1;
    parameters.push_back(value);
    if (name == kStaggered)
        staggeredFirstFrame = value.toBool();
    return index;
}

int Renderer::addOutput(const QString& name)
{
    const int index = graph.addOutput(kRoot, name, -1);
    if (index != -1)
        outputs.push_back(QVariant());
    return index;
}

int Renderer::findPass(const QString& name) const
{
    return graph.findNode(name, kRoot);
}
int Renderer::findParameter(const QString& name) const
{
    return graph.findInput(kRoot, name);
}
int Renderer::findOutput(const QString& name) const
{
    return graph.findOutput(kRoot, name);
}
int Renderer::numParameters() const
{
    return static_cast<int>(parameters.size());
}

QVariant::Type Renderer::parameterType(int index) const
{
    return has(parameters, index) ? at(parameters, index).type() : QVariant::Invalid;
}

QVariant Renderer::parameterValue(int index)
{
    return has(parameters, index) ? at(parameters, index) : QVariant();
}

void Renderer::setParameter(int index, const QVariant& value)
{
    if (!has(parameters, index))
        return;
    if (index == graph.findInput(kRoot, kStaggered))
        staggeredFirstFrame = value.toBool();
    parameters[static_cast<std::size_t>(index)] = value;
}

int Renderer::numOutputs() const
{
    return static_cast<int>(outputs.size());
}

QVariant::Type Renderer::outputType(int index) const
{
    return has(outputs, index) ? at(outputs, index).type() : QVariant::Invalid;
}

QVariant Renderer::output(int index) const
{
    return has(outputs, index) ? at(outputs, index) : QVariant();
}

int Renderer::getNumPasses() const
{
    return passesRendered;
}

bool Renderer::isPass(int index) const
{
    return has(passes, index);
}

RenderPass* Renderer::renderPass(int node) const
{
    const int p = graph.nodeValue(node);
    return isPass(p) ? at(passes, p) : nullptr;
}

bool Renderer::enabled(int node) const
{
    const int p = graph.nodeValue(node);
    return isPass(p) && passEnabled[static_cast<std::size_t>(p)];
}

void Renderer::setEnabled(int node, bool enabled)
{
    const int p = graph.nodeValue(node);
    if (!isPass(p))
        return;
    passEnabled[static_cast<std::size_t>(p)] = enabled;
    needsSetup = true;
}

void Renderer::setTarget(int node)
{
    target = node;
}
int Renderer::getTarget() const
{
    return target;
}
Graph* Renderer::getGraph()
{
    return &graph;
}

// --- Execution
// ------------------------------------------------------------------------------------

void Renderer::setup(RenderCallbacks* callbacks)
{
    if (!executionOrder.empty())
        teardown(callbacks);
    std::vector<bool> visited(static_cast<std::size_t>(graph.numNodesGlobal()));
    for (int i = 0; i < numOutputs(); ++i) {
        int n = kRoot, k = i;
        if (graph.walkDown(n, k))
            walk(n, visited);
    }
    if (target != kRoot && graph.isValidNode(target))
        walk(target, visited);
    const std::vector<int> order = executionOrder;
    for (const int node : order) {
        RenderPass* pass = renderPass(node);
        if (!pass)
            continue;
        pass->resetNumOutputUsers();
        for (int j = 0; j < graph.numOutputs(node); ++j)
            pass->setNumOutputUsers(j, activeOutputUsers(node, j, visited));
        setInputs(node);
        pass->setup(callbacks);
    }
}

void Renderer::walk(int node, std::vector<bool>& visited)
{
    if (!has(visited, node) || visited[static_cast<std::size_t>(node)])
        return;
    visited[static_cast<std::size_t>(node)] = true;
    for (int i = 0; i < graph.numInputs(node); ++i) {
        int n = node, k = i;
        if (graph.walkToSourceNode(n, k))
            walk(n, visited);
    }
    if (renderPass(node) && enabled(node)) // a null pass is never called
        executionOrder.push_back(node);
}

int Renderer::activeOutputUsers(int node, int output, const std::vector<bool>& visited) const
{
    const auto isVisited = [&visited](int n) { return has(visited, n) && at(visited, n); };
    const int d = graph.numOutputDestinations(node, output);
    const int parent = graph.parentNode(node);
    int count = 0;
    for (int e = 0; e < d; ++e) {
        const int edge = graph.outputDestination(node, output, e);
        const int dest = graph.edgeDestNode(edge);
        const int port = graph.edgeDestIndex(edge);
        if (graph.numNodes(dest) > 0 && !graph.contains(dest, node)) {
            for (int l = 0; l < graph.numInputDestinations(dest, port); ++l)
                count += isVisited(graph.edgeDestNode(graph.inputDestination(dest, port, l)));
        }
        if (dest != parent) {
            count += isVisited(dest) || dest == kRoot;
        } else if (parent == kRoot) {
            count += 1;
        } else {
            for (int j = 0; j < d; ++j) { // the pass's own count, not the group's
                const int user = graph.edgeDestNode(graph.outputDestination(parent, port, j));
                count += isVisited(user) || user == kRoot;
            }
            count += isVisited(parent);
        }
    }
    return count;
}

void Renderer::setInputs(int node)
{
    RenderPass* pass = renderPass(node);
    const int m = pass->numInputs();
    for (int i = 0; i < m; ++i) {
        int n = node, k = i;
        if (graph.walkUp(n, k) && n == kRoot) {
            pass->setInput(i, has(parameters, k) ? at(parameters, k) : QVariant());
            continue;
        }
        if (!graph.walkAcross(n, k)) {
            pass->setInput(i, pass->defaultValue(i));
            continue;
        }
        graph.walkDown(n, k);
        if (renderPass(n) && enabled(n))
            pass->setInput(i, renderPass(n)->output(k));
        else
            pass->setInput(i, pass->defaultValue(i));
    }
}

bool Renderer::render(int node, RenderCallbacks* callbacks)
{
    RenderPass* pass = renderPass(node);
    if (!pass)
        return true;
    setInputs(node);
    pass->clearErrorCode();
    pass->beginFrame(callbacks);
    if (!newPassStartedThisFrame) {
        pass->start(callbacks);
        if (staggeredFirstFrame
            && std::count(startedPasses.begin(), startedPasses.end(), node) == 0) {
            startedPasses.push_back(node);
            newPassStartedThisFrame = true;
        }
    } else {
        pass->skip(callbacks);
    }
    ++passesRendered;
    while (!pass->isFinished()) { }
    pass->endFrame(callbacks);
    return pass->errorCode() == 0;
}

bool Renderer::render(RenderCallbacks* callbacks)
{
    passesRendered = 0;
    beginFrame(callbacks);
    bool result = true;
    if (executionOrder.empty())
        return result;
    newPassStartedThisFrame = false;
    for (std::size_t i = 0; i < executionOrder.size() && result; ++i)
        result = render(executionOrder[i], callbacks);
    for (int i = 0; i < numOutputs(); ++i) {
        int n = kRoot, k = i;
        if (graph.walkDown(n, k) && renderPass(n))
            outputs[static_cast<std::size_t>(i)] = renderPass(n)->output(k);
    }
    return result;
}

void Renderer::beginFrame(RenderCallbacks* callbacks)
{
    if (!needsSetup)
        return;
    setup(callbacks);
    needsSetup = false;
}

void Renderer::teardown(RenderCallbacks* callbacks)
{
    for (RenderPass* pass : passes) {
        if (pass)
            pass->teardown(callbacks);
    }
    executionOrder.clear();
}

int Renderer::getGraphProcessingMode() const
{
    if (passes.empty())
        return 0;
    if (!staggeredFirstFrame)
        return 2;
    const auto enabledPasses = std::count(passEnabled.begin(), passEnabled.end(), true);
    return static_cast<std::size_t>(enabledPasses) == startedPasses.size() ? 2 : 1;
}

} // namespace Oracle
