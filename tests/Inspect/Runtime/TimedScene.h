// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef ORV_TESTS_TIMEDSCENE_H
#define ORV_TESTS_TIMEDSCENE_H

#include <Kestrin/Orv/Inspect/Trace.h>
#include <Kestrin/Orv/Inspect/TracedPass.h>
#include <Kestrin/Orv/RenderPassHelper.h>

#include "support/RecordingPass.h"

#include <functional>
#include <memory>
#include <set>
#include <string>

/// A trace whose clock a test moves by hand.
struct Timed
{
    qint64 time = 1000; // the trace is made at 1000
    Kestrin::Orv::Inspect::Trace trace;

    explicit Timed(int capacity = 1000)
        : trace(capacity, [this] { return time; })
    {
    }

    /// "A.start@0 10-20": the pass, the operation, the frame if there is one, and the times.
    std::string events() const
    {
        std::string text;
        for (const Kestrin::Orv::Inspect::TraceEvent& event : trace.events()) {
            if (!text.empty())
                text += ' ';
            if (event.pass >= 0)
                text += trace.passName(event.pass).toStdString() + ".";
            text += Kestrin::Orv::Inspect::Trace::kindName(event.kind).toStdString();
            if (event.frame >= 0)
                text += "@" + std::to_string(event.frame);
            text += " " + std::to_string(event.beginNs) + "-" + std::to_string(event.endNs);
            if (event.errorCode != 0)
                text += " failed " + std::to_string(event.errorCode);
        }
        return text;
    }
};

/// A timed scene: each life-cycle call of a pass takes 10, asking whether it has finished takes 1.
struct TimedScene : Timed
{
    explicit TimedScene(int capacity = 1000)
        : Timed(capacity)
    {
    }

    int pass(const std::string& name, int inputs = 1, int outputs = 1)
    {
        auto* inner = new RecordingPass(scene.log, name, inputs, outputs);
        inner->onCall = [this](const std::string& operation) {
            static const std::set<std::string> slow{
                "setup",    "beginFrame",         "start", "skip", "endFrame",
                "teardown", "teardownContextData"};
            if (timing)
                time += slow.count(operation) != 0 ? 10 : operation == "isFinished" ? 1 : 0;
        };
        return scene.renderer.addPass(
            QString::fromStdString(name),
            new Kestrin::Orv::Inspect::TracedPass(trace, QString::fromStdString(name), inner),
            Scene::kRoot);
    }
    RecordingPass& at(int node)
    {
        return static_cast<RecordingPass&>(
            *Kestrin::Orv::Inspect::TracedPass::innermost(scene.renderer.renderPass(node)));
    }
    /// Does this as well in each such call of a pass, before or after the time that it takes.
    void beforeCall(int node, const std::string& operation, const std::function<void()>& action)
    {
        const auto plain = at(node).onCall;
        at(node).onCall = [=](const std::string& called) {
            if (called == operation)
                action();
            plain(called);
        };
    }
    void afterCall(int node, const std::string& operation, const std::function<void()>& action)
    {
        const auto plain = at(node).onCall;
        at(node).onCall = [=](const std::string& called) {
            plain(called);
            if (called == operation)
                action();
        };
    }
    bool frame()
    {
        trace.beginFrame();
        const bool succeeded = scene.render();
        trace.endFrame();
        return succeeded;
    }
    /// One pass that feeds an output, set up, with nothing recorded.
    int onePass()
    {
        const int node = pass("A");
        scene.up(node, 0, scene.output());
        setUp();
        return node;
    }
    /// Sets the renderer up in no time and forgets it.
    void setUp()
    {
        timing = false;
        scene.setup();
        timing = true;
        trace.clear();
    }

    bool timing = true;

    Scene scene;
};

inline std::unique_ptr<Kestrin::Orv::Inspect::TracedPass>
makePass(Kestrin::Orv::Inspect::Trace& trace, const char* name)
{
    return std::make_unique<Kestrin::Orv::Inspect::TracedPass>(trace, QLatin1String(name),
                                                               new Kestrin::Orv::RenderPassHelper);
}

#endif
