// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "support/Frames.h"
#include "support/Rows.h"
#include "support/Shape.h"

#include <Kestrin/Orv/Inspect/Trace.h>
#include <Kestrin/Orv/Inspect/TracedPass.h>
#include <Kestrin/Orv/RenderPassHelper.h>
#include <Kestrin/Orv/Renderer.h>

#include <chrono>
#include <memory>
#include <vector>

// The cost of a TracedPass, in a frame and for one call.

using namespace OrvBench;
using Kestrin::Orv::RenderCallbacks;
using Kestrin::Orv::Renderer;
using Kestrin::Orv::RenderPass;
using Kestrin::Orv::RenderPassHelper;
using Kestrin::Orv::Inspect::Trace;
using Kestrin::Orv::Inspect::TracedPass;
using Kestrin::Orv::Inspect::TraceEvent;

namespace {

/// The limit: for each call that takes time, read the clock twice and append one record.
class HandTimes
{
public:
    struct Span
    {
        int pass;
        qint64 begin;
        qint64 end;
    };

    HandTimes() { spans.reserve(Trace::kDefaultCapacity); }

    static qint64 now() { return std::chrono::steady_clock::now().time_since_epoch().count(); }
    void add(int pass, qint64 begin)
    {
        if (spans.size() == Trace::kDefaultCapacity)
            spans.clear();
        spans.push_back({pass, begin, now()});
    }
    std::size_t count() const { return spans.size(); }

private:
    std::vector<Span> spans;
};

/// A pass that times itself.
template<typename Pass>
class HandTimedPass : public Pass
{
public:
    template<typename... Args>
    HandTimedPass(HandTimes& timesToKeep, int ownIndex, Args... args)
        : Pass(args...)
        , times(timesToKeep)
        , index(ownIndex)
    {
    }
    void beginFrame(RenderCallbacks* callbacks) override
    {
        const qint64 begin = HandTimes::now();
        Pass::beginFrame(callbacks);
        times.add(index, begin);
    }
    void start(RenderCallbacks* callbacks) override
    {
        const qint64 begin = HandTimes::now();
        Pass::start(callbacks);
        times.add(index, begin);
    }
    void endFrame(RenderCallbacks* callbacks) override
    {
        const qint64 begin = HandTimes::now();
        Pass::endFrame(callbacks);
        times.add(index, begin);
    }

private:
    HandTimes& times;
    int index;
};

/// The same renderer: without timing, traced, traced with every call, and timed by hand.
struct Subjects
{
    explicit Subjects(const Shape& shape)
    {
        everyCall.setDetail(Trace::EveryCall);
        const auto trace = [](Trace& into) {
            return [&into](int ref, int numInputs, int numOutputs) -> RenderPass* {
                return new TracedPass(into, QString(), new MixPass(ref, numInputs, numOutputs));
            };
        };
        build(shape, plain, [](int ref, int numInputs, int numOutputs) {
            return new MixPass(ref, numInputs, numOutputs);
        });
        build(shape, traced, trace(lifeCycle));
        build(shape, tracedAll, trace(everyCall));
        build(shape, timed, [this](int ref, int numInputs, int numOutputs) {
            return new HandTimedPass<MixPass>(times, ref, ref, numInputs, numOutputs);
        });

        for (Renderer* renderer : {&plain, &traced, &tracedAll, &timed})
            renderer->setup(nullptr);
        lifeCycle.clear();
        const uint parameter = 5;
        for (Renderer* renderer : {&plain, &traced, &tracedAll, &timed}) {
            renderer->setParameter(0, parameter);
            requireSame(renderer->render(nullptr), "success");
            requireEqual(renderer->output(0), plain.output(0), "a frame's output");
        }
        requireEqual(lifeCycle.numEvents(), 3 * plain.getNumPasses(), "recorded calls");
        requireEqual(times.count(), static_cast<std::size_t>(lifeCycle.numEvents()),
                     "calls timed by hand");
        requireEqual(lifeCycle.numCalls(0, TraceEvent::SetInput), qint64(1), "counted calls");
        requireSame(everyCall.numEvents() > 2 * lifeCycle.numEvents(), "every call is recorded");
    }

    static bool frame(Renderer& renderer, Trace& trace)
    {
        if (trace.numEvents() > Trace::kDefaultCapacity / 2)
            trace.clear();
        trace.beginFrame();
        const bool succeeded = renderer.render(nullptr);
        trace.endFrame();
        return succeeded && trace.numDropped() == 0;
    }

    Trace lifeCycle;
    Trace everyCall;
    HandTimes times;
    Renderer plain;
    Renderer traced;
    Renderer tracedAll;
    Renderer timed;
};

template<typename Run>
void addFrames(const char* work, const char* subject, int size, Run run)
{
    addRow("trace", work, subject, size, [=](benchmark::State& state) {
        static Cache<Subjects> cache;
        Subjects& s = cache.get(std::to_string(size), [size] {
            return std::make_unique<Subjects>(chain(size, Order::SinkFirst));
        });
        for (auto _ : state)
            requireSame(run(s), "success");
        state.SetItemsProcessed(state.iterations() * size);
    });
}

void addFrameRows(int size)
{
    for (const char* work : {"frame", "frame, every call"}) {
        addFrames(work, "plain", size, [](Subjects& s) { return s.plain.render(nullptr); });
        addFrames(work, "byHand", size, [](Subjects& s) { return s.timed.render(nullptr); });
    }
    addFrames("frame", "orv", size, [](Subjects& s) { return s.frame(s.traced, s.lifeCycle); });
    addFrames("frame, every call", "orv", size,
              [](Subjects& s) { return s.frame(s.tracedAll, s.everyCall); });
}

template<typename Call>
void addCall(const char* work, const char* subject, Call call)
{
    addRow("trace", work, subject, 1, [=](benchmark::State& state) {
        Trace trace;
        TracedPass traced(trace, QString(), new RenderPassHelper);
        HandTimes times;
        HandTimedPass<RenderPassHelper> timed(times, 0);
        RenderPassHelper plain;
        RenderPass* pass = subject == std::string("orv") ? static_cast<RenderPass*>(&traced)
            : subject == std::string("byHand")           ? static_cast<RenderPass*>(&timed)
                                                         : &plain;
        benchmark::DoNotOptimize(pass);
        for (auto _ : state) {
            call(*pass);
            if (trace.numEvents() == Trace::kDefaultCapacity)
                trace.clear();
        }
        requireEqual(trace.numDropped(), qint64(0), "events that fit");
    });
}

void addCallRows()
{
    for (const char* subject : {"orv", "byHand", "direct"})
        addCall("recorded call", subject, [](RenderPass& pass) { pass.start(nullptr); });
    for (const char* subject : {"orv", "direct"}) {
        addCall("counted call", subject,
                [](RenderPass& pass) { benchmark::DoNotOptimize(pass.numInputs()); });
    }
}

const bool registered = [] {
    for (const int size : {10, 100, 1000, 10000})
        addFrameRows(size);
    addCallRows();
    return true;
}();

} // namespace
