// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_INSPECT_TRACE_H
#define KESTRIN_ORV_INSPECT_TRACE_H

#include <Kestrin/Orv/Inspect/Export.h>
#include <Kestrin/Orv/RenderPass.h>

#include <QtCore/QByteArray>
#include <QtCore/QElapsedTimer>
#include <QtCore/QVector>

#include <memory>

namespace Kestrin {
namespace Orv {

class Renderer;

namespace Inspect {

/// A call that a pass received, or a whole frame.
struct TraceEvent
{
    /// The operations of RenderPass that are recorded, and the frame around them.
    enum Kind { Frame, Setup, BeginFrame, Start, Skip, Wait, EndFrame, Teardown };

    Kind kind;
    int pass;       ///< index of the pass in the trace; -1 for a frame
    int frame;      ///< number of the frame, from 0; -1 outside frames
    qint64 beginNs; ///< since the trace was made
    qint64 endNs;
    unsigned int errorCode; ///< of a frame's last call of a pass; 0 for success
};

/// Times of one pass or of the frames, in nanoseconds. Percentiles are values that occurred.
struct TraceSummary
{
    QString name;  ///< the pass's path; empty for frames
    int count = 0; ///< in how many frames it was called
    qint64 total = 0;
    qint64 minimum = 0;
    qint64 median = 0;
    qint64 percentile90 = 0;
    qint64 percentile99 = 0;
    qint64 maximum = 0;
};

/// Records when passes are called. Made before the passes that it records, and kept longer than they
/// are.
class ORV_INSPECT_EXPORT Trace
{
public:
    Trace();
    ~Trace();
    Trace(const Trace&) = delete;
    Trace& operator=(const Trace&) = delete;

    /// Opens and closes a frame; around Renderer::render().
    void beginFrame();
    void endFrame();
    /// Drops all events; passes stay.
    void clear();

    int numPasses() const;
    QString passName(int pass) const;
    const QVector<TraceEvent>& events() const;

    /// One line for each pass in the order in which they were made: what all its calls of a frame took.
    QVector<TraceSummary> passes() const;
    /// What whole frames took.
    TraceSummary frames() const;
    /// The events as a file in the Trace Event format, which Perfetto and chrome://tracing open.
    QByteArray toTraceEvents() const;

private:
    friend class TracedPass;
    struct Impl;
    std::unique_ptr<Impl> impl;
};

/// Stands between a renderer and a pass, hands every operation on and records when the life-cycle ones
/// were called.
class ORV_INSPECT_EXPORT TracedPass : public RenderPass
{
public:
    /// Takes ownership of \p pass, which must not be null; \p trace must outlive this.
    /// \param name what the trace calls it, best its path.
    TracedPass(Trace& trace, const QString& name, RenderPass* pass);
    ~TracedPass() override;

    /// The pass behind it.
    RenderPass* pass() const;

    void setup(RenderCallbacks* callbacks) override;
    void beginFrame(RenderCallbacks* callbacks) override;
    void start(RenderCallbacks* callbacks) override;
    void skip(RenderCallbacks* callbacks) override;
    void endFrame(RenderCallbacks* callbacks) override;
    bool isFinished() const override;
    void teardown(RenderCallbacks* callbacks) override;
    void teardownContextData(RenderCallbacks* callbacks) override;
    int numInputs() const override;
    int numOutputs() const override;
    QString inputName(int index) const override;
    QString outputName(int index) const override;
    void setInput(int index, const QVariant& value) override;
    QVariant defaultValue(int index) const override;
    void setDefaultValue(int index, const QVariant& value) override;
    QVariant output(int index) const override;
    void setNumOutputUsers(int index, int users) override;
    void resetNumOutputUsers() override;
    unsigned int errorCode() const override;
    void clearErrorCode() override;
    void setErrorCode(unsigned int code) override;

private:
    struct Impl;
    std::unique_ptr<Impl> impl;
};

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin

#endif
