// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "RendererImpl.h"

#include <Kestrin/Orv/RenderPass.h>

#include <QtCore/QThread>
#include <QtCore/QVarLengthArray>

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

    // Depth first, with the path on a list of its own: a chain may be longer than the C stack is
    // deep.
    struct Step
    {
        int node;
        int nextInput;
    };
    const GraphView view = tablesOf(graph).view();
    QVarLengthArray<Step, 64> path;
    path.append({node, 0});
    while (!path.isEmpty()) {
        Step& top = path.last();
        const Node* record = view.node(top.node);
        if (record && top.nextInput < record->inputs.size()) {
            const Port& input = firstOf(record->inputs)[top.nextInput++];
            const int source = view.feedingNode(*record, input, true);
            if (visit(source)) {
                view.fetchPorts(view.nodes[source].parent);
                path.append({source, 0});
            }
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
            // Out of a group: its readers, of whom as many are looked at as this output has edges.
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
        const GraphView view = tables.view();
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

/// Has memory fetched that the passes after the one at `position` will need.
void Renderer::Impl::fetchAhead(int position) const
{
    if (executionOrder.size() - position <= 8)
        return;
    const GraphView view = tablesOf(graph).view();
    const int* next = executionOrder.constData() + position;
    fetch(view.node(next[8]));
    fetch(passOf(next[6]));
    view.fetchPorts(next[6]);
    view.fetchEdges(next[3]);
}

/// Runs the scheduled passes until one fails. They may change the execution order as they run.
bool Renderer::Impl::renderAll(RenderCallbacks* callbacks)
{
    for (int i = 0; i < executionOrder.size(); ++i) {
        if (executionOrder.size() >= 256) // fewer stay in the caches anyway
            fetchAhead(i);
        if (!render(executionOrder.at(i), callbacks))
            return false;
    }
    return true;
}

} // namespace Orv
} // namespace Kestrin
