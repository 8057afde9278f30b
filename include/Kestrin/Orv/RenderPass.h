// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_RENDERPASS_H
#define KESTRIN_ORV_RENDERPASS_H

#include <Kestrin/Orv/Export.h>

#include <QtCore/QString>
#include <QtCore/QVariant>

namespace Kestrin {
namespace Orv {

/// The host's own interface for its passes. A Renderer passes the pointer on to every pass and
/// never uses it. So the host may define this class in any way, and the pointer may be null.
class RenderCallbacks;

/// One unit of work that a Renderer schedules: a node of its graph.
///
/// RenderPassHelper implements all operations. They are called on the thread that calls the
/// renderer. The order of the virtual operations is part of the binary interface.
///
/// The renderer calls a pass in this order:
/// - Renderer::addPass: numOutputs(), numInputs(); numInputs() and the name of each input;
///   numOutputs() and the name of each output.
/// - Renderer::setup, if the pass is scheduled: resetNumOutputUsers(), setNumOutputUsers() for each
///   output, its inputs (below), setup().
/// - Renderer::render, if the pass is scheduled: its inputs, clearErrorCode(), beginFrame(), then
///   start() or skip(), isFinished() until it is true, endFrame(), errorCode(). After the last pass
///   of the frame, output() of every pass that feeds an output of the renderer.
/// - Renderer::teardown: teardown(), for every registered pass.
/// - The renderer's destructor: this class's destructor.
///
/// "Its inputs" is numInputs() and then, for each input in ascending order, one setInput(),
/// preceded by defaultValue() where no live source feeds the input.
class ORV_EXPORT RenderPass
{
public:
    RenderPass();
    /// Called by the destructor of the renderer that owns the pass.
    virtual ~RenderPass();

    /// Prepares the pass. The user counts and inputs have been set.
    virtual void setup(RenderCallbacks* callbacks) = 0;
    /// Opens a frame.
    virtual void beginFrame(RenderCallbacks* callbacks) = 0;
    /// Does the work of this frame, or begins it; see isFinished().
    virtual void start(RenderCallbacks* callbacks) = 0;
    /// Called instead of start() while the staggered first frame holds the pass back.
    virtual void skip(RenderCallbacks* callbacks) = 0;
    /// Closes a frame, once isFinished() has returned true.
    virtual void endFrame(RenderCallbacks* callbacks) = 0;
    /// Whether the work of start() or skip() is done. While it is not, the renderer sleeps for 100
    /// microseconds and calls this again, without a time limit. Returns true here.
    virtual bool isFinished() const;
    /// Releases what setup() made. Also called on passes that were never set up.
    virtual void teardown(RenderCallbacks* callbacks) = 0;
    /// For the host's own use; the library never calls it.
    virtual void teardownContextData(RenderCallbacks* callbacks) = 0;

    /// Number of inputs, fixed once the pass is registered.
    virtual int numInputs() const = 0;
    /// Number of outputs, fixed once the pass is registered.
    virtual int numOutputs() const = 0;
    /// Name of an input, copied into the graph when the pass is registered.
    virtual QString inputName(int index) const = 0;
    /// Name of an output, copied into the graph when the pass is registered.
    virtual QString outputName(int index) const = 0;
    /// Stores the current value of an input.
    virtual void setInput(int index, const QVariant& value) = 0;
    /// The value that an input takes when nothing live feeds it.
    virtual QVariant defaultValue(int index) const = 0;
    /// Replaces an input's default value. The library never calls it.
    virtual void setDefaultValue(int index, const QVariant& value) = 0;
    /// The current value of an output.
    virtual QVariant output(int index) const = 0;
    /// Stores the number of scheduled consumers of an output. Consumers are counted across one
    /// group boundary only: for a consumer behind two boundaries, the number may be 0 although the
    /// value is used. Disabled passes on the way to an output of the renderer count as consumers.
    virtual void setNumOutputUsers(int index, int users) = 0;
    /// Sets every output's number of consumers to 0.
    virtual void resetNumOutputUsers() = 0;
    /// 0 for success; any other value ends the frame after this pass.
    virtual unsigned int errorCode() const = 0;
    /// Sets the error code to 0.
    virtual void clearErrorCode() = 0;
    /// Sets the error code. The library never calls it.
    virtual void setErrorCode(unsigned int code) = 0;
};

} // namespace Orv
} // namespace Kestrin

#endif
