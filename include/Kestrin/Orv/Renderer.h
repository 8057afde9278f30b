// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_RENDERER_H
#define KESTRIN_ORV_RENDERER_H

#include <Kestrin/Orv/Export.h>

#include <QtCore/QString>
#include <QtCore/QVariant>

namespace Kestrin {
namespace Orv {

class Graph;
class RenderCallbacks;
class RenderPass;

/// Owns a graph of render passes and runs it frame by frame.
///
/// The graph's root node stands for the renderer: the root's inputs are the renderer's parameters,
/// its outputs the renderer's outputs. Each registered pass is a node whose value is the pass's
/// index (0, 1, ... in order of registration) and whose ports carry the pass's port names; a node
/// that is no pass is a group. The host registers passes, groups, parameters and outputs, wires
/// them through getGraph(), calls setup() once, render() once per frame and teardown() when it is
/// done.
///
/// The parameter "Orv_bool_staggeredFirstFrame" has a meaning of its own: while it is true, a frame
/// starts at most one pass that was not started under it before, and skips all passes after it. So
/// N passes come up in N frames. Passes once started count as started for the renderer's life, by
/// node.
///
/// Every operation accepts every int. An index or a node that names nothing answers -1, 0, false,
/// null or an invalid value, and setting it does nothing. A pass may call back into its renderer in
/// any of its operations, but must not destroy it. The renderer is used from one thread at a time
/// and calls its passes on that thread. It throws nothing of its own but std::bad_alloc; what a
/// pass throws reaches the caller, and the next frame starts afresh.
class ORV_EXPORT Renderer
{
public:
    /// A renderer whose graph holds the root alone.
    Renderer();
    /// Deletes every registered pass, in order of registration, without calling teardown().
    virtual ~Renderer();
    Renderer(const Renderer&) = delete;
    Renderer& operator=(const Renderer&) = delete;

    /// Works out which passes the renderer's outputs and the target need, and in which order; hands
    /// each of them its numbers of consumers and its inputs, and sets it up. If passes were
    /// scheduled before, tears all passes down first. Linear in the nodes and edges upstream of the
    /// outputs, times the depth of the groups crossed.
    virtual void setup(RenderCallbacks* callbacks);
    /// Runs one frame: beginFrame(), the scheduled passes in their order until one fails, then the
    /// renderer's outputs are taken from the passes that produce them, then endFrame().
    /// \return true when every scheduled pass ended with error code 0, and when there was none.
    virtual bool render(RenderCallbacks* callbacks);
    /// Tears every registered pass down and forgets the execution order. Passes are not deleted.
    virtual void teardown(RenderCallbacks* callbacks);
    /// 0 when no pass is registered; 1 while the staggered first frame is bringing passes up, that
    /// is, while the number of enabled passes differs from the number of passes ever started under
    /// it; otherwise 2. As a pass once started counts for ever, disabling it later keeps the mode
    /// at
    /// 1. Linear in the number of registered passes.
    virtual int getGraphProcessingMode() const;
    /// Reruns setup() when setEnabled() was called since. First call of each frame.
    virtual void beginFrame(RenderCallbacks* callbacks);
    /// Last call of each frame; does nothing here.
    virtual void endFrame(RenderCallbacks* callbacks);

    /// Registers a pass under \p parent, the root or a group, and takes ownership of it, whatever
    /// the answer. Null makes a node without ports that is never called. Constant time.
    /// \return the pass's node ref, or -1 when \p parent is not a valid node. Also -1, and nothing
    /// changes, when this renderer owns the pass already: it stays with its first node. A pass that
    /// another renderer owns must not be registered: both would delete it.
    int addPass(const QString& name, RenderPass* pass, int parent);
    /// Adds a group under \p parent, as Graph::addNode().
    /// \return the group's node ref, or -1 when \p parent is not a valid node.
    int addGroup(const QString& name, int numInputs, int numOutputs, int parent);
    /// Adds a parameter, which is an input of the root; nothing else may add inputs there.
    /// \return the parameter's index, or -1 when the graph's root has been removed.
    int addParameter(const QString& name, const QVariant& value);
    /// Adds an output of the renderer, invalid until a frame fills it.
    /// \return the output's index, or -1 when the graph's root has been removed.
    int addOutput(const QString& name);

    /// The first direct child of the root of this name, pass or group; -1 if none. Linear.
    int findPass(const QString& name) const;
    /// The first parameter of this name; -1 if none. Linear.
    int findParameter(const QString& name) const;
    /// The first output of this name; -1 if none. Linear.
    int findOutput(const QString& name) const;

    /// Number of parameters.
    int numParameters() const;
    /// The type of a parameter's current value; QVariant::Invalid for none.
    QVariant::Type parameterType(int index) const;
    /// A parameter's current value.
    QVariant parameterValue(int index);
    /// Sets a parameter; passes see it at their next frame.
    void setParameter(int index, const QVariant& value);
    /// Number of outputs of the renderer.
    int numOutputs() const;
    /// The type of an output's value; QVariant::Invalid before a frame has filled it.
    QVariant::Type outputType(int index) const;
    /// An output's value as the last frame left it.
    QVariant output(int index) const;

    /// Number of passes started or skipped by the current or last render(), not of those
    /// registered.
    int getNumPasses() const;
    /// The pass of a node, which the renderer keeps owning; null when the node is no pass.
    RenderPass* renderPass(int node) const;
    /// Whether the pass of \p node is enabled; passes are until setEnabled() says otherwise.
    bool enabled(int node) const;
    /// Enables or disables the pass of \p node and makes the next frame rerun setup(). A disabled
    /// pass is not run, and its consumers take their defaults; what it needs upstream still runs.
    void setEnabled(int node, bool enabled);
    /// Makes the next setup() schedule \p node and all that feeds its inputs, even when no output
    /// needs it; -1 for none. For a group that is what feeds the group, not what lies inside it.
    void setTarget(int node);
    /// The node that setTarget() was given; -1 at first.
    int getTarget() const;
    /// The renderer's own graph, for wiring and inspection, valid as long as the renderer. Edits
    /// take effect at the next setup() as far as the execution order and the numbers of consumers
    /// go; inputs are traced anew in every frame. After Graph::purge(), set the target anew and
    /// call setup().
    Graph* getGraph();

private:
    struct ORV_NO_EXPORT Impl;
    Impl* impl;
};

} // namespace Orv
} // namespace Kestrin

#endif
