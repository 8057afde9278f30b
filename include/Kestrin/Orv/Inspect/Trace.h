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

/// A span of time: a frame, a call that a pass received, or the wait for it.
struct TraceEvent
{
    /// What the time went into. Setup and all that follows are the operations of RenderPass.
    enum Kind {
        Frame,
        Wait, ///< from the end of start() or skip() until isFinished() is true, if asked repeatedly
        Setup,
        BeginFrame,
        Start,
        Skip,
        EndFrame,
        Teardown,
        TeardownContextData,
        Destructor,
        IsFinished, ///< this and the following under Trace::EveryCall only
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

    Kind kind;              ///< what was called
    int pass;               ///< index of the pass in the trace; -1 for a frame
    int frame;              ///< number of the frame, from 0; -1 outside frames
    unsigned int errorCode; ///< of an EndFrame: what errorCode() answered after it; 0 for success
    qint64 beginNs;         ///< since the trace was made
    qint64 endNs;           ///< since the trace was made; not before beginNs
};

/// Times of one pass or of the frames, in nanoseconds. Percentiles are values that occurred: the
/// smallest one that so many percent of all do not exceed.
struct TraceSummary
{
    QString name;            ///< what the trace calls the pass; empty for frames
    int count = 0;           ///< in how many frames it was called; all times are 0 if in none
    qint64 total = 0;        ///< of all these frames
    qint64 minimum = 0;      ///< of one frame
    qint64 median = 0;       ///< half of the frames took no longer
    qint64 percentile90 = 0; ///< nine tenths of the frames took no longer
    qint64 percentile99 = 0; ///< 99 of 100 frames took no longer
    qint64 maximum = 0;      ///< of one frame
};

/// Records when the passes are called that stand behind a TracedPass.
///
/// Takes room for all its events when it is made, 32 bytes each, of which the system provides what
/// is used: recording allocates nothing. When the room is full, recording stops until clear(), and
/// what no longer fits is counted. The table of passes grows with each TracedPass that is made.
///
/// Used on the thread of the passes. Times are those of a steady clock.
class ORV_INSPECT_EXPORT Trace
{
public:
    /// What is recorded; calls are counted in any case.
    enum Detail {
        LifeCycle, ///< setup, beginFrame, start, skip, endFrame, both teardowns, destructors, waits
        EveryCall  ///< all operations of RenderPass
    };
    /// Tells the time in nanoseconds since whenever; must not throw. Times that run backwards count
    /// as standing still.
    using Clock = std::function<qint64()>;

    static const int kDefaultCapacity = 1000000; ///< how many events fit unless told otherwise

    /// A trace of kDefaultCapacity and LifeCycle.
    Trace();
    /// A trace that holds up to \p capacity events, by a clock of the host's own if there is one.
    explicit Trace(int capacity, const Clock& clock = Clock());
    /// Passes may outlive the trace: they go on without being recorded.
    ~Trace();
    Trace(const Trace&) = delete;
    Trace& operator=(const Trace&) = delete;

    /// Sets what is recorded of the calls that begin from now on.
    void setDetail(Detail detail);
    Detail detail() const; ///< what is recorded

    /// Opens a frame; before Renderer::render(). A frame that is still open, because something was
    /// thrown, ends with the last thing recorded in it. Does nothing during a call of a traced
    /// pass.
    void beginFrame();
    /// Closes the frame; after Renderer::render(). Does nothing when none is open, and during a
    /// call of a traced pass.
    void endFrame();
    /// Forgets all events and counts, an open frame included; the next frame is number 0. Passes
    /// and the time from which events count stay.
    void clear();

    /// Number of passes ever made with this trace.
    int numPasses() const;
    /// What a pass is called; empty for one that there is not.
    QString passName(int pass) const;
    /// Names all traced passes of a renderer by the paths of their nodes, in their traces. Linear
    /// in what the renderer holds.
    static void namePasses(Renderer& renderer);
    /// How often an operation of a pass was called, whatever was recorded; 0 for all that is none.
    qint64 numCalls(int pass, TraceEvent::Kind operation) const;

    /// What files call a kind of event: the operation's name, "frame", "wait" or "destructor".
    /// Empty for what is no kind.
    static QString kindName(TraceEvent::Kind kind);

    /// Number of events recorded, those included that have not ended yet.
    int numEvents() const;
    /// How many events did not fit.
    qint64 numDropped() const;
    /// The events that have ended, in the order in which they began; what lies within another comes
    /// after it. Events never overlap in part. Linear.
    QVector<TraceEvent> events() const;

    /// One line for each pass in the order in which they were made: the time of its life-cycle
    /// calls and of the wait for it, frame by frame. Calls within calls of the same pass count
    /// once. Only frames that have ended and that were recorded to their end count, here and in
    /// frames(). Takes the time of sorting the values.
    QVector<TraceSummary> passes() const;
    /// What whole frames took.
    TraceSummary frames() const;

    /// The events as a file in the Trace Event format, which Perfetto and chrome://tracing open.
    /// Throws std::bad_alloc when it exceeds a GiB, some eight million events.
    QByteArray toTraceEvents() const;
    /// Writes that file piece by piece, of whatever size. Linear.
    /// \return whether the device took all of it.
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
