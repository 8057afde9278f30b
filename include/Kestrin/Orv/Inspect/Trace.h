// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_INSPECT_TRACE_H
#define KESTRIN_ORV_INSPECT_TRACE_H

#include <Kestrin/Orv/Inspect/Export.h>

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QVector>

#include <functional>
#include <memory>

class QIODevice;

namespace Kestrin {
namespace Orv {

class Renderer;

namespace Inspect {

class Recording;

/// A span of time: a frame, a call of a pass, or the wait for a pass.
struct TraceEvent
{
    /// What the time was spent on. Setup and all later values are the operations of RenderPass.
    enum Kind {
        Frame,
        Wait, ///< from the end of start() or skip() until isFinished() is true, if called
              ///< repeatedly
        Setup,
        BeginFrame,
        Start,
        Skip,
        EndFrame,
        Teardown,
        TeardownContextData,
        Destructor,
        IsFinished, ///< this and the following only under Trace::EveryCall
        NumInputs,
        NumOutputs,
        InputName,
        OutputName,
        SetInput,
        DefaultValue,
        SetDefaultValue,
        Output,
        SetNumOutputUsers,
        ResetNumOutputUsers,
        ErrorCode,
        ClearErrorCode,
        SetErrorCode
    };

    Kind kind;              ///< what the time was spent on
    int pass;               ///< index of the pass in the trace; -1 for a frame
    int frame;              ///< number of the frame, from 0; -1 outside frames
    unsigned int errorCode; ///< of an EndFrame: the result of errorCode() after it; 0 for success
    qint64 beginNs;         ///< since the trace was made
    qint64 endNs;           ///< since the trace was made; not before beginNs
};

/// Times of one pass or of the frames, in nanoseconds. A percentile is a value that occurred: the
/// smallest value that this percentage of all values does not exceed.
struct TraceSummary
{
    QString name;       ///< the name of the pass in the trace; empty for frames
    int count = 0;      ///< the number of frames in which it was called; all times are 0 if none
    qint64 total = 0;   ///< of all these frames
    qint64 minimum = 0; ///< of one frame
    qint64 median = 0;  ///< half of the frames took no longer
    qint64 percentile90 = 0; ///< nine tenths of the frames took no longer
    qint64 percentile99 = 0; ///< 99 of 100 frames took no longer
    qint64 maximum = 0;      ///< of one frame
};

/// Records when passes are called, and for how long. Each recorded pass stands behind a TracedPass.
///
/// Reserves memory for all its events when it is made, 32 bytes each. The system provides the
/// memory as it is used, and recording allocates nothing. When the memory is full, recording stops
/// until clear(), and the trace counts the events that did not fit. The table of passes grows with
/// each new TracedPass.
///
/// Use a trace only on the thread of its passes. Times come from a steady clock.
class ORV_INSPECT_EXPORT Trace
{
public:
    /// Which calls are recorded. All calls are counted in any case.
    enum Detail {
        LifeCycle, ///< setup, beginFrame, start, skip, endFrame, both teardowns, destructors, waits
        EveryCall  ///< all operations of RenderPass
    };
    /// Returns the time in nanoseconds since any fixed moment. Must not throw. If the clock runs
    /// backwards, time counts as standing still.
    using Clock = std::function<qint64()>;

    static const int kDefaultCapacity = 1000000; ///< the number of events that fit by default

    /// A trace for kDefaultCapacity events that records LifeCycle.
    Trace();
    /// A trace for up to \p capacity events. Uses the host's own clock if one is given.
    explicit Trace(int capacity, const Clock& clock = Clock());
    /// Passes may outlive the trace. Then their calls are no longer recorded.
    ~Trace();
    Trace(const Trace&) = delete;
    Trace& operator=(const Trace&) = delete;

    /// Sets which of the calls that begin from now on are recorded.
    void setDetail(Detail detail);
    Detail detail() const; ///< which calls are recorded

    /// Opens a frame. Call it before Renderer::render(). If a frame is still open after an
    /// exception, that frame ends with the last event recorded in it. Does nothing during a call of
    /// a traced pass.
    void beginFrame();
    /// Closes the frame. Call it after Renderer::render(). Does nothing when no frame is open, and
    /// during a call of a traced pass.
    void endFrame();
    /// Removes all events and counts, and an open frame. The next frame has the number 0. Keeps the
    /// passes, and the moment from which times count.
    void clear();

    /// Number of passes ever made with this trace.
    int numPasses() const;
    /// The name of a pass; empty for a pass that does not exist.
    QString passName(int pass) const;
    /// Names all traced passes of a renderer after the paths of their nodes, in their traces.
    /// Linear in the size of the renderer's graph.
    static void namePasses(Renderer& renderer);
    /// How often an operation of a pass was called, recorded or not; 0 for a pass or an operation
    /// that does not exist.
    qint64 numCalls(int pass, TraceEvent::Kind operation) const;

    /// The name of a kind of event in files: the operation's name, "frame", "wait" or "destructor".
    /// Empty for a kind that does not exist.
    static QString kindName(TraceEvent::Kind kind);

    /// Number of recorded events, including events that have not ended yet.
    int numEvents() const;
    /// Number of events that did not fit.
    qint64 numDropped() const;
    /// The events that have ended, in the order in which they began. An event within another one
    /// comes after it. Events never overlap in part. Linear in the number of events.
    QVector<TraceEvent> events() const;

    /// The times of each pass, in the order in which the passes were made. The time of a pass in a
    /// frame is the time of its life-cycle calls and of the wait for it. Calls within calls of the
    /// same pass count once. Only frames that have ended and were recorded completely count, here
    /// and in frames(). Takes the time of sorting the values.
    QVector<TraceSummary> passes() const;
    /// The times of whole frames.
    TraceSummary frames() const;

    /// The events as a file in the Trace Event format, for Perfetto and chrome://tracing. Throws
    /// std::bad_alloc when the file exceeds 1 GiB, about eight million events.
    QByteArray toTraceEvents() const;
    /// Writes that file piece by piece, without a limit in size. Linear in the number of events.
    /// \return true when the device accepted all of it.
    bool writeTraceEvents(QIODevice& device) const;

private:
    friend class TracedPass;
    std::shared_ptr<Recording> recording; // shared with the passes
};

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin

Q_DECLARE_TYPEINFO(Kestrin::Orv::Inspect::TraceEvent, Q_PRIMITIVE_TYPE);
Q_DECLARE_TYPEINFO(Kestrin::Orv::Inspect::TraceSummary, Q_MOVABLE_TYPE);

#endif
