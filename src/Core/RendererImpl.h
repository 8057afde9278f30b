// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_RENDERERIMPL_H
#define KESTRIN_ORV_RENDERERIMPL_H

#include <Kestrin/Orv/Renderer.h>

#include "GraphTables.h"

#include <QtCore/QList>
#include <QtCore/QSet>
#include <QtCore/QVector>

#include <vector>

namespace Kestrin {
namespace Orv {

/// The data of a renderer, and the steps of its setup and of its frames.
///
/// Passes may call the renderer from any of their operations. So nothing here keeps a reference or
/// an iterator into a list across a call of a pass. Loops count, and read the size again in each
/// step.
struct Renderer::Impl
{
    QList<QVariant> parameters; // by index of the root's input
    QList<QVariant> outputs;    // by index of the root's output
    QList<RenderPass*> passes;  // by pass index, which is the value of the pass's node; owned
    Graph graph;
    QList<bool> passEnabled; // by pass index
    bool needsSetup = false;
    int target = Graph::kInvalidNodeRef;
    QVector<int> executionOrder; // node refs
    int passesRendered = 0;
    QVector<int> startedPasses; // node refs, in the order of their first start
    bool newPassStartedThisFrame = false;
    bool staggeredFirstFrame = false;
    std::vector<bool> startedFlags;     // the content of startedPasses, by node ref
    QSet<const RenderPass*> registered; // the content of passes

    ~Impl();

    int addPass(RenderPass* pass);
    bool hasPass(int index) const { return index >= 0 && index < passes.size(); }
    RenderPass* passOf(int node) const
    {
        const int index = tablesOf(graph).node(node).value;
        return hasPass(index) ? passes.at(index) : nullptr;
    }
    RenderPass* enabledPassOf(int node) const
    {
        const int index = tablesOf(graph).node(node).value;
        return hasPass(index) && passEnabled.at(index) ? passes.at(index) : nullptr;
    }

    /// Appends the passes that `node` needs, and then its own pass, to the execution order.
    /// `visited` has a flag per node. Flagged nodes are done.
    ORV_EXPORT void walk(int node, RenderCallbacks* callbacks, QVector<bool>& visited);
    /// Number of consumers of an output among the visited nodes.
    ORV_EXPORT int getActiveOutputUsers(int node, int output, const QVector<bool>& visited);
    /// Sets every input of the pass of `node` to a parameter, an upstream output or its default.
    ORV_EXPORT void setRenderPassInputs(int node);
    /// Runs the pass of `node` in this frame; false when it failed.
    ORV_EXPORT bool render(int node, RenderCallbacks* callbacks);

    void prefetchPasses(int position) const;
    bool renderAll(RenderCallbacks* callbacks);
    void setInputs(RenderPass* pass, int node);
    bool wasStarted(int node) const;
    void rememberStarted(int node);
};

} // namespace Orv
} // namespace Kestrin

#endif
