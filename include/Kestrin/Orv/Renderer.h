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
/// The host registers passes, groups, parameters and outputs, and wires them through getGraph().
/// Then it calls setup() once, render() once per frame, and teardown() at the end.
///
/// The graph's root node represents the renderer: the root's inputs are the renderer's parameters,
/// and the root's outputs are the renderer's outputs. Each registered pass is a node. The node's
/// value is the pass's index (0, 1, ... in order of registration), and its ports have the names of
/// the pass's ports. A node without a pass is a group.
///
/// The parameter "Orv_bool_staggeredFirstFrame" switches the staggered first frame on. While it is
/// true, a frame starts at most one pass that was not started under it before, and skips all passes
/// after that one. So N passes start in N frames. The renderer remembers the started passes by
/// node, as long as it exists.
///
/// Every operation accepts every int. For an index or a node that does not exist, queries return
/// -1, 0, false, null or an invalid value, and setters do nothing. A pass may call its renderer
/// from any of its operations, but must not destroy it. Only one thread at a time may use the
/// renderer, which calls its passes on that thread. The renderer itself throws only std::bad_alloc.
/// An exception from a pass reaches the caller, and the next frame starts from the first pass.
class ORV_EXPORT Renderer
{
public:
    /// A renderer whose graph holds only the root.
    Renderer();
    /// Deletes every registered pass, in order of registration, without calling teardown().
    virtual ~Renderer();
    Renderer(const Renderer&) = delete;
    Renderer& operator=(const Renderer&) = delete;

    /// Determines which passes the renderer's outputs and the target need, and in which order.
    /// Gives each of these passes its numbers of consumers and its inputs, and calls its setup().
    /// If passes were scheduled before, tears all passes down first. Linear in the nodes and edges
    /// upstream of the outputs and the target, times the depth of the groups crossed.
    virtual void setup(RenderCallbacks* callbacks);
    /// Runs one frame. Calls beginFrame(), then runs the scheduled passes in their order until one
    /// fails, then takes the renderer's outputs from the passes that produce them, then calls
    /// endFrame().
    /// \return true when every scheduled pass ended with error code 0, and when there was none.
    virtual bool render(RenderCallbacks* callbacks);
    /// Calls teardown() of every registered pass and forgets the execution order. Does not delete
    /// passes.
    virtual void teardown(RenderCallbacks* callbacks);
    /// The progress of the staggered first frame:
    /// - 0 when no pass is registered;
    /// - 1 while the staggered first frame is on and the number of enabled passes differs from the
    ///   number of passes ever started under it;
    /// - 2 otherwise.
    ///
    /// A pass that was started once counts for ever, so disabling it later keeps the result at 1.
    /// Linear in the number of registered passes.
    virtual int getGraphProcessingMode() const;
    /// Opens a frame. Calls setup() first when setEnabled() was called after the last frame began.
    virtual void beginFrame(RenderCallbacks* callbacks);
    /// Closes a frame. Does nothing here.
    virtual void endFrame(RenderCallbacks* callbacks);

    /// Registers a pass under \p parent, which is the root or a group. Takes ownership of the pass,
    /// even when it returns -1. With null, makes a node without ports that is never called.
    /// Constant time.
    /// \return the pass's node ref, or -1 when \p parent is not a valid node. Also -1, without a
    /// change, when this renderer already owns the pass: it stays with its first node. Do not
    /// register a pass that another renderer owns: both would delete it.
    int addPass(const QString& name, RenderPass* pass, int parent);
    /// Adds a group under \p parent, like Graph::addNode().
    /// \return the group's node ref, or -1 when \p parent is not a valid node.
    int addGroup(const QString& name, int numInputs, int numOutputs, int parent);
    /// Adds a parameter, which is an input of the root. No other call may add inputs to the root.
    /// \return the parameter's index, or -1 when the graph's root has been removed.
    int addParameter(const QString& name, const QVariant& value);
    /// Adds an output of the renderer. Its value is invalid until a frame fills it. No other call
    /// may add outputs to the root.
    /// \return the output's index, or -1 when the graph's root has been removed.
    int addOutput(const QString& name);

    /// The first direct child of the root with this name, pass or group; -1 if none. Linear in the
    /// number of children.
    int findPass(const QString& name) const;
    /// The first parameter with this name; -1 if none. Linear in the number of parameters.
    int findParameter(const QString& name) const;
    /// The first output with this name; -1 if none. Linear in the number of outputs.
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

    /// Number of passes that the current or last render() started or skipped; not the number of
    /// registered passes.
    int getNumPasses() const;
    /// The pass of a node; null when the node has none. The renderer keeps ownership.
    RenderPass* renderPass(int node) const;
    /// Whether the pass of \p node is enabled. Passes are enabled at first.
    bool enabled(int node) const;
    /// Enables or disables the pass of \p node and makes the next frame rerun setup(). A disabled
    /// pass does not run, and its consumers take their defaults. The passes upstream of it still
    /// run.
    void setEnabled(int node, bool enabled);
    /// Makes the next setup() schedule \p node and all passes that feed its inputs, even when no
    /// output needs them; -1 for no target. A group as a target schedules the passes that feed the
    /// group, not the passes inside it.
    void setTarget(int node);
    /// The last argument of setTarget(); -1 at first.
    int getTarget() const;
    /// The renderer's graph, for wiring and inspection. Valid as long as the renderer. Inputs are
    /// traced again in every frame, so they follow edits at once. The execution order and the
    /// numbers of consumers change only at the next setup(). After Graph::purge(), set the target
    /// again and call setup().
    Graph* getGraph();

private:
    struct ORV_NO_EXPORT Impl;
    Impl* impl;
};

} // namespace Orv
} // namespace Kestrin

#endif
