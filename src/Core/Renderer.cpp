// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include <Kestrin/Orv/RenderPass.h>
#include <Kestrin/Orv/Renderer.h>

#include "RendererImpl.h"

namespace Kestrin {
namespace Orv {

namespace {

QString staggeredFirstFrameName()
{
    return QStringLiteral("Orv_bool_staggeredFirstFrame");
}

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
    const int passIndex = impl->addPass(pass);
    Graph& graph = impl->graph;

    // Two statements: the pass sees its outputs counted first.
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
    if (name == staggeredFirstFrameName())
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
    // Looked up anew: of several parameters of this name, the first alone counts here.
    if (index == findParameter(staggeredFirstFrameName()))
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

} // namespace Orv
} // namespace Kestrin
