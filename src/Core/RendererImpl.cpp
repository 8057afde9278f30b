// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "RendererImpl.h"

#include <Kestrin/Orv/RenderPass.h>

#include <QtCore/QThread>

#include <algorithm>

namespace Kestrin {
namespace Orv {

Renderer::Impl::~Impl()
{
    for (int i = 0; i < passes.size(); ++i)
        delete passes.at(i);
}

/// Takes over a pass and returns its index. A pass that cannot be kept is deleted.
int Renderer::Impl::addPass(RenderPass* pass)
{
    try {
        passEnabled.append(true);
        try {
            passes.append(pass);
        } catch (...) {
            passEnabled.removeLast();
            throw;
        }
    } catch (...) {
        delete pass;
        throw;
    }
    return passes.size() - 1;
}

RenderPass* Renderer::Impl::passOf(int node) const
{
    const int index = graph.nodeValue(node);
    return hasPass(index) ? passes.at(index) : nullptr;
}

RenderPass* Renderer::Impl::enabledPassOf(int node) const
{
    const int index = graph.nodeValue(node);
    return hasPass(index) && passEnabled.at(index) ? passes.at(index) : nullptr;
}

void Renderer::Impl::walk(int node, RenderCallbacks*, QVector<bool>& visited)
{
    const auto visit = [&visited](int ref) {
        if (ref < 0 || ref >= visited.size() || visited.at(ref))
            return false;
        visited[ref] = true;
        return true;
    };
    if (!visit(node))
        return;

    // Depth first, with the path on a list of its own: a chain may be longer than the C stack is deep.
    struct Step
    {
        int node;
        int nextInput;
    };
    std::vector<Step> path { { node, 0 } };
    while (!path.empty()) {
        Step& top = path.back();
        if (top.nextInput < graph.numInputs(top.node)) {
            int source = top.node;
            int port = top.nextInput++;
            if (graph.walkToSourceNode(source, port) && visit(source))
                path.push_back({ source, 0 });
        } else {
            if (enabledPassOf(top.node))
                executionOrder.append(top.node);
            path.pop_back();
        }
    }
}

int Renderer::Impl::getActiveOutputUsers(int node, int output, const QVector<bool>& visited)
{
    const auto isVisited = [&visited](int ref) { return visited.value(ref, false); };
    const auto isVisitedOrRoot
        = [&](int ref) { return isVisited(ref) || ref == Graph::kRootNodeRef; };

    const int numDestinations = graph.numOutputDestinations(node, output);
    const int parent = graph.parentNode(node);
    int count = 0;
    for (int e = 0; e < numDestinations; ++e) {
        const int edge = graph.outputDestination(node, output, e);
        const int dest = graph.edgeDestNode(edge);
        const int destPort = graph.edgeDestIndex(edge);

        if (graph.numNodes(dest) > 0 && !graph.contains(dest, node)) {
            // Into a group from outside: its children read through the group's input.
            const int numInner = graph.numInputDestinations(dest, destPort);
            for (int i = 0; i < numInner; ++i)
                count += isVisited(graph.edgeDestNode(graph.inputDestination(dest, destPort, i)));
        }

        if (dest != parent) {
            count += isVisitedOrRoot(dest);
        } else if (parent == Graph::kRootNodeRef) {
            ++count;
        } else {
            // Out of a group: its readers, of whom as many are looked at as this output has edges.
            for (int i = 0; i < numDestinations; ++i) {
                const int outer = graph.outputDestination(parent, destPort, i);
                count += isVisitedOrRoot(graph.edgeDestNode(outer));
            }
            count += isVisited(parent);
        }
    }
    return count;
}

void Renderer::Impl::setRenderPassInputs(int node)
{
    RenderPass* pass = passOf(node);
    if (!pass)
        return;
    const int numInputs = pass->numInputs();
    for (int i = 0; i < numInputs; ++i) {
        int source = node;
        int port = i;
        if (graph.walkUp(source, port) && source == Graph::kRootNodeRef) {
            const QVariant value = parameters.value(port);
            pass->setInput(i, value);
            continue;
        }
        const RenderPass* producer = nullptr;
        if (graph.walkAcross(source, port)) {
            graph.walkDown(source, port);
            producer = enabledPassOf(source);
        }
        pass->setInput(i, producer ? producer->output(port) : pass->defaultValue(i));
    }
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
    setRenderPassInputs(node);
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

} // namespace Orv
} // namespace Kestrin
