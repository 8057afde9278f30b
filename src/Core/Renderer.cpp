// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include <Kestrin/Orv/RenderPass.h>
#include <Kestrin/Orv/Renderer.h>

#include "AppendToBoth.h"
#include "FindByName.h"
#include "GraphView.h"
#include "RendererImpl.h"

#include <QtCore/QThread>
#include <QtCore/QVarLengthArray>

#include <algorithm>
#include <memory>

namespace Kestrin {
namespace Orv {

namespace {

const QLatin1String staggeredFirstFrameName("Orv_bool_staggeredFirstFrame");

} // namespace

Renderer::Renderer()
    : impl(new Impl)
{
}

Renderer::~Renderer()
{
    delete impl;
}

// Running

void Renderer::setup(RenderCallbacks* callbacks)
{
    if (!impl->executionOrder.isEmpty())
        teardown(callbacks);

    const Graph& graph = impl->graph;
    QVector<bool> visited(graph.numNodesGlobal(), false);
    for (int i = 0; i < numOutputs(); ++i) {
        int node = Graph::kRootNodeRef;
        int output = i;
        if (graph.walkDown(node, output))
            impl->walk(node, callbacks, visited);
    }
    if (impl->target != Graph::kRootNodeRef && graph.isValidNode(impl->target))
        impl->walk(impl->target, callbacks, visited);

    const QVector<int> order = impl->executionOrder;
    for (const int node : order) {
        RenderPass* pass = impl->passOf(node);
        if (!pass)
            continue;
        pass->resetNumOutputUsers();
        const int numOutputs = tablesOf(graph).node(node).outputs.size();
        for (int output = 0; output < numOutputs; ++output)
            pass->setNumOutputUsers(output, impl->getActiveOutputUsers(node, output, visited));
        impl->setRenderPassInputs(node);
        pass->setup(callbacks);
    }
}

bool Renderer::render(RenderCallbacks* callbacks)
{
    impl->passesRendered = 0;
    beginFrame(callbacks);

    bool succeeded = true;
    if (!impl->executionOrder.isEmpty()) {
        impl->newPassStartedThisFrame = false;
        succeeded = impl->renderAll(callbacks);

        for (int i = 0; i < numOutputs(); ++i) {
            int node = Graph::kRootNodeRef;
            int output = i;
            if (!impl->graph.walkDown(node, output))
                continue;
            if (const RenderPass* pass = renderPass(node)) {
                const QVariant value = pass->output(output);
                impl->outputs[i] = value;
            }
        }
    }

    endFrame(callbacks);
    return succeeded;
}

void Renderer::teardown(RenderCallbacks* callbacks)
{
    for (int i = 0; i < impl->passes.size(); ++i) {
        if (RenderPass* pass = impl->passes.at(i))
            pass->teardown(callbacks);
    }
    impl->executionOrder.clear();
}

int Renderer::getGraphProcessingMode() const
{
    if (impl->passes.isEmpty())
        return 0;
    if (!impl->staggeredFirstFrame)
        return 2;
    return impl->passEnabled.count(true) == impl->startedPasses.size() ? 2 : 1;
}

void Renderer::beginFrame(RenderCallbacks* callbacks)
{
    if (impl->needsSetup) {
        setup(callbacks);
        impl->needsSetup = false;
    }
}

void Renderer::endFrame(RenderCallbacks*) { }

// Registration

int Renderer::addPass(const QString& name, RenderPass* pass, int parent)
{
    if (pass && impl->registered.contains(pass))
        return Graph::kInvalidNodeRef;
    const int passIndex = impl->addPass(pass);
    Graph& graph = impl->graph;

    // Two statements, so that the pass's outputs are counted first.
    const int numOutputs = pass ? pass->numOutputs() : 0;
    const int numInputs = pass ? pass->numInputs() : 0;
    const int node = graph.addNode(name, numInputs, numOutputs, parent);
    if (pass) {
        const int inputs = pass->numInputs();
        for (int i = 0; i < inputs; ++i)
            graph.setInputName(node, i, pass->inputName(i));
        const int outputs = pass->numOutputs();
        for (int i = 0; i < outputs; ++i)
            graph.setOutputName(node, i, pass->outputName(i));
    }
    graph.setNodeValue(node, passIndex);
    return node;
}

int Renderer::addGroup(const QString& name, int numInputs, int numOutputs, int parent)
{
    return impl->graph.addNode(name, numInputs, numOutputs, parent);
}

int Renderer::addParameter(const QString& name, const QVariant& value)
{
    const int index = impl->graph.addInput(Graph::kRootNodeRef, name, Graph::kInvalidGroupRef);
    if (index < 0)
        return index;
    impl->parameters.append(value);
    if (name == staggeredFirstFrameName)
        impl->staggeredFirstFrame = value.toBool();
    return index;
}

int Renderer::addOutput(const QString& name)
{
    const int index = impl->graph.addOutput(Graph::kRootNodeRef, name, Graph::kInvalidGroupRef);
    if (index < 0)
        return index;
    impl->outputs.append(QVariant());
    return index;
}

int Renderer::findPass(const QString& name) const
{
    return impl->graph.findNode(name, Graph::kRootNodeRef);
}

int Renderer::findParameter(const QString& name) const
{
    return impl->graph.findInput(Graph::kRootNodeRef, name);
}

int Renderer::findOutput(const QString& name) const
{
    return impl->graph.findOutput(Graph::kRootNodeRef, name);
}

int Renderer::numParameters() const
{
    return impl->parameters.size();
}

QVariant::Type Renderer::parameterType(int index) const
{
    return impl->parameters.value(index).type();
}

QVariant Renderer::parameterValue(int index)
{
    return impl->parameters.value(index);
}

void Renderer::setParameter(int index, const QVariant& value)
{
    if (index < 0 || index >= impl->parameters.size())
        return;
    const QVector<Port>& rootInputs = tablesOf(impl->graph).node(Graph::kRootNodeRef).inputs;
    // Look it up again: of several parameters with this name, only the first counts here.
    if (index == findByName(rootInputs, staggeredFirstFrameName))
        impl->staggeredFirstFrame = value.toBool();
    impl->parameters[index] = value;
}

int Renderer::numOutputs() const
{
    return impl->outputs.size();
}

QVariant::Type Renderer::outputType(int index) const
{
    return impl->outputs.value(index).type();
}

QVariant Renderer::output(int index) const
{
    return impl->outputs.value(index);
}

int Renderer::getNumPasses() const
{
    return impl->passesRendered;
}

RenderPass* Renderer::renderPass(int node) const
{
    return impl->passOf(node);
}

bool Renderer::enabled(int node) const
{
    return impl->passEnabled.value(impl->graph.nodeValue(node));
}

void Renderer::setEnabled(int node, bool enabled)
{
    const int passIndex = impl->graph.nodeValue(node);
    if (!impl->hasPass(passIndex))
        return;
    impl->passEnabled[passIndex] = enabled;
    impl->needsSetup = true;
}

void Renderer::setTarget(int node)
{
    impl->target = node;
}

int Renderer::getTarget() const
{
    return impl->target;
}

Graph* Renderer::getGraph()
{
    return &impl->graph;
}

// The steps of setup and of a frame

Renderer::Impl::~Impl()
{
    for (int i = 0; i < passes.size(); ++i)
        delete passes.at(i);
}

/// Takes ownership of a pass and returns its index. Deletes a pass that it cannot keep.
int Renderer::Impl::addPass(RenderPass* pass)
{
    std::unique_ptr<RenderPass> owned(pass);
    registered.insert(pass);
    try {
        appendToBoth(passEnabled, true, passes, pass);
    } catch (...) {
        registered.remove(pass);
        throw;
    }
    static_cast<void>(owned.release()); // the list owns it now
    return passes.size() - 1;
}

void Renderer::Impl::walk(int node, RenderCallbacks*, QVector<bool>& visited)
{
    bool* const flags = visited.data();
    const int numFlags = visited.size();
    const auto visit = [flags, numFlags](int ref) {
        if (static_cast<uint>(ref) >= static_cast<uint>(numFlags) || flags[ref])
            return false;
        flags[ref] = true;
        return true;
    };
    if (!visit(node))
        return;

    // Depth first, with the path in a list: a chain of passes may be too long for the C stack.
    struct Step
    {
        int node;
        int nextInput;
    };
    const GraphView view(tablesOf(graph));
    QVarLengthArray<Step, 64> path;
    path.append({node, 0});
    while (!path.isEmpty()) {
        Step& top = path.last();
        const Node* record = view.node(top.node);
        if (record && top.nextInput < record->inputs.size()) {
            const Port& input = firstOf(record->inputs)[top.nextInput++];
            const int source = view.feedingNode(*record, input, true);
            if (visit(source))
                path.append({source, 0});
        } else {
            if (enabledPassOf(top.node))
                executionOrder.append(top.node);
            path.removeLast();
        }
    }
}

int Renderer::Impl::getActiveOutputUsers(int node, int output, const QVector<bool>& visited)
{
    const bool* const flags = visited.constData();
    const int numFlags = visited.size();
    const auto isVisited = [flags, numFlags](int ref) {
        return static_cast<uint>(ref) < static_cast<uint>(numFlags) && flags[ref];
    };
    const auto isVisitedOrRoot = [&](int ref) {
        return isVisited(ref) || ref == Graph::kRootNodeRef;
    };

    const GraphTables& tables = tablesOf(graph);
    const QVector<int>& destinations = tables.output(node, output).destinations;
    const int parent = tables.node(node).parent;
    int count = 0;
    for (const int destination : destinations) {
        const Edge& edge = tables.edge(destination);
        const int dest = edge.dstNode;

        if (!tables.node(dest).children.isEmpty() && !graph.contains(dest, node)) {
            // Into a group from outside: its children read through the group's input.
            for (const int inner : tables.input(dest, edge.dstIndex).destinations)
                count += isVisited(tables.edge(inner).dstNode);
        }

        if (dest != parent) {
            count += isVisitedOrRoot(dest);
        } else if (parent == Graph::kRootNodeRef) {
            ++count;
        } else {
            // Out of a group: the first readers of the group's output, as many as this output has
            // edges.
            const QVector<int>& readers = tables.output(parent, edge.dstIndex).destinations;
            const int numLookedAt = std::min(readers.size(), destinations.size());
            for (int i = 0; i < numLookedAt; ++i)
                count += isVisitedOrRoot(tables.edge(readers.at(i)).dstNode);
            count += isVisited(parent);
        }
    }
    return count;
}

Q_ALWAYS_INLINE void Renderer::Impl::setInputs(RenderPass* pass, int node)
{
    const GraphTables& tables = tablesOf(graph);
    const int numInputs = pass->numInputs();
    for (int i = 0; i < numInputs; ++i) {
        const GraphView view(tables);
        const GraphView::Input start = view.input(node, i);
        const GraphView::Input top = view.climb(start);
        if (top.node == Graph::kRootNodeRef && start.isFedByParent()) {
            const QVariant value = parameters.value(top.port);
            pass->setInput(i, value);
            continue;
        }
        const RenderPass* producer = nullptr;
        int port = -1;
        if (view.crosses(top)) {
            int source = top.source->srcNode;
            port = top.source->srcIndex;
            view.walkDown(source, port);
            producer = enabledPassOf(source);
        }
        pass->setInput(i, producer ? producer->output(port) : pass->defaultValue(i));
    }
}

void Renderer::Impl::setRenderPassInputs(int node)
{
    if (RenderPass* pass = passOf(node))
        setInputs(pass, node);
}

bool Renderer::Impl::wasStarted(int node) const
{
    const auto index = static_cast<std::size_t>(node);
    return index < startedFlags.size() && startedFlags[index];
}

void Renderer::Impl::rememberStarted(int node)
{
    const auto index = static_cast<std::size_t>(node);
    if (index >= startedFlags.size())
        startedFlags.resize(std::max(index + 1, startedFlags.size() * 2));
    startedPasses.append(node);
    startedFlags[index] = true;
}

bool Renderer::Impl::render(int node, RenderCallbacks* callbacks)
{
    RenderPass* pass = passOf(node);
    if (!pass)
        return true;
    setInputs(pass, node);
    pass->clearErrorCode();
    pass->beginFrame(callbacks);
    if (newPassStartedThisFrame) {
        pass->skip(callbacks);
    } else {
        pass->start(callbacks);
        if (staggeredFirstFrame && !wasStarted(node)) {
            rememberStarted(node);
            newPassStartedThisFrame = true;
        }
    }
    ++passesRendered;
    while (!pass->isFinished())
        QThread::usleep(100);
    pass->endFrame(callbacks);
    return pass->errorCode() == 0;
}

/// Prefetches the data of the passes after the one at `position`.
void Renderer::Impl::prefetchPasses(int position) const
{
    constexpr int nodeDistance = 8;
    constexpr int portDistance = 6; // and the pass, which the node names
    constexpr int edgeDistance = 3; // which the ports name
    if (executionOrder.size() - position <= nodeDistance)
        return;
    const GraphView view(tablesOf(graph));
    const int* next = executionOrder.constData() + position;
    prefetch(view.node(next[nodeDistance]));
    prefetch(passOf(next[portDistance]));
    view.prefetchPorts(next[portDistance]);
    view.prefetchEdges(next[edgeDistance]);
}

/// Runs the scheduled passes until one fails. They may change the execution order as they run.
bool Renderer::Impl::renderAll(RenderCallbacks* callbacks)
{
    constexpr int leavingTheCaches = 256; // the data of fewer passes stays in the caches
    for (int i = 0; i < executionOrder.size(); ++i) {
        if (executionOrder.size() >= leavingTheCaches)
            prefetchPasses(i);
        if (!render(executionOrder.at(i), callbacks))
            return false;
    }
    return true;
}

} // namespace Orv
} // namespace Kestrin
