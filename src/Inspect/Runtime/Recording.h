// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_INSPECT_RECORDING_H
#define KESTRIN_ORV_INSPECT_RECORDING_H

#include <Kestrin/Orv/Inspect/Trace.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstddef>
#include <utility>
#include <vector>

namespace Kestrin {
namespace Orv {
namespace Inspect {

/// What a trace has recorded. It lives as long as its trace or one of the passes.
class Recording
{
public:
    /// The number of an event among all that were ever recorded; kNone for one that was not
    /// recorded.
    using Id = qint64;
    static constexpr Id kNone = -1;
    /// The end of an event that has not ended.
    static constexpr qint64 kOpen = -1;

    static constexpr std::size_t kNumKinds = TraceEvent::SetErrorCode + 1;

    struct Pass
    {
        QString name;
        std::array<qint64, kNumKinds> calls{}; // by kind
    };

    Recording(int numEvents, Trace::Clock hostClock)
        : clock(std::move(hostClock))
        , capacity(static_cast<std::size_t>(std::max(numEvents, 0)))
        , origin(clock ? clock() : steadyTime())
    {
        events.reserve(capacity);
    }

    /// For the end of the trace: the clock of the host must not be called any more, and nothing
    /// can read what would be recorded.
    void close()
    {
        clear();
        capacity = 0;
        clock = nullptr;
        std::vector<TraceEvent>().swap(events);
    }

    void clear()
    {
        // One more, so that not even the end of the old events is found again.
        firstId += static_cast<qint64>(events.size()) + 1;
        events.clear();
        for (Pass& pass : passes)
            pass.calls.fill(0);
        numDropped = 0;
        frame = -1;
        frameEvent = kNone;
        numFrames = 0;
        numWholeFrames = 0;
    }

    Id beginCall(int pass, TraceEvent::Kind kind)
    {
        ++numBegun;
        ++depth;
        ++passes[static_cast<std::size_t>(pass)].calls[kind];
        if (kind >= TraceEvent::IsFinished && detail == Trace::LifeCycle)
            return kNone;
        return begin(kind, pass);
    }

    void endCall(Id id)
    {
        --depth;
        end(id);
    }

    void beginFrame()
    {
        if (depth > 0)
            return;
        ++numBegun;
        closeFrame(lastTime);
        frame = numFrames;
        frameEvent = begin(TraceEvent::Frame, -1);
        if (frameEvent != kNone)
            ++numFrames;
    }

    void endFrame()
    {
        if (depth > 0)
            return;
        ++numBegun;
        if (find(frameEvent) != nullptr)
            closeFrame(now());
    }

    /// Where the next event will be, if it fits.
    Id nextId() const { return firstId + static_cast<qint64>(events.size()); }

    /// Adds an event that ends now before the one at \p id, which began later.
    void insert(Id id, TraceEvent::Kind kind, int pass, qint64 beginNs)
    {
        if (id >= firstId && id <= nextId() && fits()) {
            events.insert(events.begin() + static_cast<std::ptrdiff_t>(id - firstId),
                          TraceEvent{kind, pass, frame, 0, beginNs, now()});
        }
    }

    /// Sets the error code that a pass has reported after its EndFrame at \p id.
    void setErrorCode(Id id, int pass, unsigned int code)
    {
        // A wait that was inserted before the EndFrame has moved it.
        TraceEvent* event = find(id);
        if (event != nullptr && event->kind == TraceEvent::EndFrame && event->pass == pass)
            event->errorCode = code;
    }

    TraceEvent* find(Id id)
    {
        return id >= firstId && id < nextId() ? &events[static_cast<std::size_t>(id - firstId)]
                                              : nullptr;
    }

    qint64 lastTime = 0;  // no event has begun or ended later
    quint64 numBegun = 0; // counts calls and the beginnings and ends of frames
    std::vector<Pass> passes;
    std::vector<TraceEvent> events; // in order of their beginnings
    Trace::Detail detail = Trace::LifeCycle;
    qint64 numDropped = 0;
    int numWholeFrames = 0; // frames from this number on are open or lack something

private:
    static qint64 steadyTime()
    {
        using namespace std::chrono;
        return duration_cast<nanoseconds>(steady_clock::now().time_since_epoch()).count();
    }

    qint64 now()
    {
        const qint64 time = clock ? clock() : steadyTime();
        // The clock of a host may return any number; their difference may overflow.
        if (time > origin) {
            lastTime = std::max(
                lastTime,
                static_cast<qint64>(static_cast<quint64>(time) - static_cast<quint64>(origin)));
        }
        return lastTime;
    }

    bool fits()
    {
        if (events.size() >= capacity)
            ++numDropped;
        return numDropped == 0;
    }

    Id begin(TraceEvent::Kind kind, int pass)
    {
        if (!fits())
            return kNone;
        events.push_back({kind, pass, frame, 0, now(), kOpen});
        return nextId() - 1;
    }

    void end(Id id)
    {
        if (TraceEvent* event = find(id))
            event->endNs = now();
    }

    void closeFrame(qint64 time)
    {
        if (TraceEvent* event = find(frameEvent)) {
            event->endNs = time;
            if (numDropped == 0)
                numWholeFrames = numFrames;
        }
        frameEvent = kNone;
        frame = -1;
    }

    Trace::Clock clock; // null for the steady one
    std::size_t capacity;
    qint64 origin;
    Id firstId = 0;
    int depth = 0;  // of calls under way
    int frame = -1; // the one that is open
    Id frameEvent = kNone;
    int numFrames = 0;
};

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin

#endif
