// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include <Kestrin/Orv/Inspect/Trace.h>
#include <Kestrin/Orv/Inspect/TracedPass.h>

#include <Kestrin/Orv/Inspect/Snapshot.h>
#include <Kestrin/Orv/RenderPassHelper.h>

#include "Scale/Limits.h"
#include "support/Growth.h"
#include "support/LightPass.h"
#include "support/RecordingPass.h"

#include <gtest/gtest.h>

#include <QtCore/QBuffer>
#include <QtCore/QFile>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QTemporaryDir>

#include <algorithm>
#include <chrono>
#include <limits>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <vector>

using namespace Kestrin::Orv;
using namespace Kestrin::Orv::Inspect;

#ifndef ORV_SANITIZED

namespace {

long numAllocations = 0;

} // namespace

// The sanitizers replace it themselves.
extern "C" {
void* __libc_malloc(std::size_t size);

void* malloc(std::size_t size) noexcept
{
    ++numAllocations;
    return __libc_malloc(size);
}
}

TEST(TraceRecording, AllocatesNothing)
{
    long counts[2] = {0, 0};
    for (const bool traced : {false, true}) {
        Trace trace;
        trace.setDetail(Trace::EveryCall);
        Renderer renderer;
        for (int i = 0; i < 10; ++i) {
            RenderPass* pass = new LightPass(1, 1);
            if (traced)
                pass = new TracedPass(trace, QStringLiteral("A"), pass);
            const int node = renderer.addPass(QString(), pass, 0);
            if (i > 0)
                renderer.getGraph()->addEdge(node - 1, 0, node, 0);
            renderer.setTarget(node);
        }
        renderer.setup(nullptr);
        renderer.render(nullptr);
        const long before = numAllocations;
        for (int i = 0; i < 1000; ++i) {
            trace.beginFrame();
            renderer.render(nullptr);
            trace.endFrame();
        }
        counts[traced] = numAllocations - before;
        EXPECT_EQ(renderer.getNumPasses(), 10);
        EXPECT_EQ(trace.numDropped(), 0);
    }
    EXPECT_EQ(counts[true], counts[false]);
    const long before = numAllocations;
    QString(100, QLatin1Char(' '));
    EXPECT_EQ(numAllocations, before + 1);
}

#endif

namespace {

/// A scene whose passes may stand behind a TracedPass. The trace goes before the renderer does.
struct MaybeTraced : Scene
{
    explicit MaybeTraced(bool on, Trace::Detail detail = Trace::LifeCycle)
        : traced(on)
    {
        trace.setDetail(detail);
    }

    int pass(const std::string& name, int inputs, int outputs, int parent = kRoot)
    {
        RenderPass* added = new RecordingPass(log, name, inputs, outputs);
        if (traced)
            added = new TracedPass(trace, QString::fromStdString(name), added);
        return renderer.addPass(QString::fromStdString(name), added, parent);
    }
    int chain(int count)
    {
        const int first = pass("A", 1, 1);
        for (int i = 1; i < count; ++i) {
            const int node = pass(std::string(1, static_cast<char>('A' + i)), 1, 1);
            edge(node - 1, 0, node, 0);
        }
        up(first + count - 1, 0, output());
        return first;
    }
    RecordingPass& at(int node)
    {
        return static_cast<RecordingPass&>(*TracedPass::innermost(renderer.renderPass(node)));
    }

    Trace trace{10000};
    bool traced;
};

/// Runs a scene without and with decoration, in both details, and expects the same log of all
/// calls, from registration to destruction.
template<typename Story>
void expectSameLog(Story story)
{
    const auto run = [&story](bool traced, Trace::Detail detail) {
        std::string log;
        {
            MaybeTraced scene(traced, detail);
            story(scene);
            log = scene.log.take();
        }
        return log;
    };
    const std::string plain = run(false, Trace::LifeCycle);
    EXPECT_NE(plain.find("numOutputs"), std::string::npos);
    EXPECT_EQ(run(true, Trace::LifeCycle), plain);
    EXPECT_EQ(run(true, Trace::EveryCall), plain);
}

/// A trace whose clock a test moves by hand.
struct Timed
{
    qint64 time = 1000; // the trace is made at 1000
    Trace trace;

    explicit Timed(int capacity = 1000)
        : trace(capacity, [this] { return time; })
    {
    }

    /// "A.start@0 10-20": the pass, the operation, the frame if there is one, and the times.
    std::string events() const
    {
        std::string text;
        for (const TraceEvent& event : trace.events()) {
            if (!text.empty())
                text += ' ';
            if (event.pass >= 0)
                text += trace.passName(event.pass).toStdString() + ".";
            text += Trace::kindName(event.kind).toStdString();
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
        return scene.renderer.addPass(QString::fromStdString(name),
                                      new TracedPass(trace, QString::fromStdString(name), inner),
                                      Scene::kRoot);
    }
    RecordingPass& at(int node)
    {
        return static_cast<RecordingPass&>(*TracedPass::innermost(scene.renderer.renderPass(node)));
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

std::unique_ptr<TracedPass> makePass(Trace& trace, const char* name)
{
    return std::make_unique<TracedPass>(trace, QLatin1String(name), new RenderPassHelper);
}

QJsonObject parsed(const QByteArray& json)
{
    QJsonParseError error{};
    const QJsonDocument document = QJsonDocument::fromJson(json, &error);
    EXPECT_EQ(error.error, QJsonParseError::NoError) << error.errorString().toStdString();
    EXPECT_TRUE(document.isObject());
    return document.object();
}

/// The complete events of a file.
std::vector<QJsonObject> completeEvents(const QByteArray& json)
{
    std::vector<QJsonObject> events;
    for (const QJsonValue& value : parsed(json)[QLatin1String("traceEvents")].toArray()) {
        const QJsonObject event = value.toObject();
        if (event[QLatin1String("ph")].toString() == QLatin1String("X"))
            events.push_back(event);
    }
    return events;
}

std::string textOf(const QJsonObject& object, const char* key)
{
    return object[QLatin1String(key)].toString().toStdString();
}

double numberOf(const QJsonObject& object, const char* key)
{
    return object[QLatin1String(key)].toDouble(-1);
}

} // namespace

TEST(TraceDocument, ExampleTracesItsFrames)
{
    using Blur = RenderPassHelper;
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("frames.json"));
    std::ostringstream out;
    //! [record]
    Trace trace;
    Renderer renderer;
    const int blur = renderer.addPass(QStringLiteral("Blur"),
                                      new TracedPass(trace, QStringLiteral("Blur"), new Blur), 0);
    renderer.setTarget(blur);
    renderer.setup(nullptr);

    for (int i = 0; i < 100; ++i) {
        trace.beginFrame();
        renderer.render(nullptr);
        trace.endFrame();
    }

    for (const TraceSummary& pass : trace.passes())
        out << pass.name.toStdString() << ": half of its frames took up to " << pass.median
            << " ns\n";

    QFile file(path);
    if (file.open(QIODevice::WriteOnly))
        trace.writeTraceEvents(file);
    //! [record]
    file.close();
    EXPECT_EQ(out.str().find("Blur: half of its frames took up to "), 0u);
    EXPECT_EQ(trace.passes().first().count, 100);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(completeEvents(file.readAll()).size(), 1u + 4 * 100u);
}

TEST(TracedPassForwarding, ChainRunsAsWithoutIt)
{
    expectSameLog([](MaybeTraced& s) {
        s.chain(3);
        s.setup(1);
        s.render(2);
        s.render(3);
        s.teardown(4);
    });
}

TEST(TracedPassForwarding, StaggeredFirstFrameIsTheSame)
{
    expectSameLog([](MaybeTraced& s) {
        s.staggered();
        s.chain(3);
        s.setup();
        for (int i = 0; i < 4; ++i) {
            s.log.note(s.render() ? "true" : "false");
            s.log.note(std::to_string(s.renderer.getGraphProcessingMode()));
        }
    });
}

TEST(TracedPassForwarding, FailingPassEndsTheFrameAsWithoutIt)
{
    expectSameLog([](MaybeTraced& s) {
        const int first = s.chain(3);
        s.at(first + 1).failStart = 7;
        s.setup();
        s.log.note(s.render() ? "true" : "false");
        s.at(first + 1).failStart = 0;
        s.log.note(s.render() ? "true" : "false");
    });
}

TEST(TracedPassForwarding, UnfinishedPassIsAskedAsOften)
{
    expectSameLog([](MaybeTraced& s) {
        const int first = s.chain(2);
        s.at(first).unfinishedPolls = 5;
        s.setup();
        s.render();
        s.render();
    });
}

TEST(TracedPassForwarding, GroupsParametersAndDefaultsAreTheSame)
{
    expectSameLog([](MaybeTraced& s) {
        const int parameter = s.parameter(5);
        const int group = s.group("G", 1, 1);
        const int inner = s.pass("A", 3, 2, group);
        const int outer = s.pass("B", 2, 1);
        s.down(parameter, group, 0);
        s.down(0, inner, 1);
        s.up(inner, 1, 0);
        s.edge(group, 0, outer, 1);
        s.up(outer, 0, s.output());
        s.setup();
        s.render();
        s.renderer.setParameter(parameter, 6);
        s.renderer.setEnabled(inner, false);
        s.render();
        s.log.note(show(s.renderer.output(0)));
    });
}

TEST(TracedPassForwarding, ExceptionsReachTheCaller)
{
    expectSameLog([](MaybeTraced& s) {
        const int first = s.chain(2);
        s.at(first).onCall = [](const std::string& operation) {
            if (operation == "start")
                throw std::runtime_error("broken");
        };
        s.setup();
        try {
            s.render();
            s.log.note("no exception");
        } catch (const std::runtime_error& error) {
            s.log.note(error.what());
        }
        s.at(first).onCall = nullptr;
        s.render();
    });
}

TEST(TracedPassForwarding, EveryOperationIsHandedOnWithArgumentsAndResults)
{
    CallLog log;
    Trace trace(100);
    auto* inner = new RecordingPass(log, "A", 2, 3);
    TracedPass pass(trace, QStringLiteral("A"), inner);
    inner->results[1] = 11;
    inner->error = 12;

    pass.setup(callbacksNo(1));
    pass.beginFrame(callbacksNo(2));
    pass.endFrame(callbacksNo(5));
    pass.teardown(callbacksNo(6));
    pass.teardownContextData(callbacksNo(7));
    EXPECT_EQ(log.take(),
              "A.setup(1) A.beginFrame(2) A.endFrame(5) A.teardown(6) A.teardownContextData(7)");

    EXPECT_EQ(pass.numInputs(), 2);
    EXPECT_EQ(pass.numOutputs(), 3);
    EXPECT_EQ(pass.inputName(1), QStringLiteral("in1"));
    EXPECT_EQ(pass.outputName(2), QStringLiteral("out2"));
    EXPECT_EQ(pass.defaultValue(1), QVariant(QStringLiteral("A1?")));
    EXPECT_EQ(pass.output(1), QVariant(11));
    EXPECT_EQ(pass.errorCode(), 12u);
    EXPECT_EQ(log.take(),
              "A.numInputs A.numOutputs A.inputName(1) A.outputName(2) "
              "A.defaultValue(1) A.output(1) A.errorCode");

    pass.setInput(1, 21);
    pass.setDefaultValue(2, 22);
    pass.setNumOutputUsers(3, 23);
    pass.resetNumOutputUsers();
    pass.setErrorCode(24);
    pass.clearErrorCode();
    EXPECT_EQ(log.take(),
              "A.setInput(1,21) A.setDefaultValue(2,22) A.setNumOutputUsers(3,23) "
              "A.resetNumOutputUsers A.setErrorCode(24) A.clearErrorCode");

    inner->unfinishedPolls = 1;
    pass.start(callbacksNo(3));
    EXPECT_FALSE(pass.isFinished());
    EXPECT_TRUE(pass.isFinished());
    pass.skip(callbacksNo(4));
    EXPECT_FALSE(pass.isFinished());
    EXPECT_TRUE(pass.isFinished());
    EXPECT_EQ(log.take(),
              "A.start(3) A.isFinished A.isFinished A.skip(4) A.isFinished "
              "A.isFinished");
}

TEST(TracedPassForwarding, PassIsDeletedOnceWithItsDecorator)
{
    CallLog log;
    Trace trace(100);
    {
        const TracedPass pass(trace, QStringLiteral("A"), new RecordingPass(log, "A", 0, 0));
        EXPECT_EQ(log.take(), "");
    }
    EXPECT_EQ(log.take(), "A.delete");
}

TEST(TracedPassForwarding, NullStandsForAPassThatDoesNothing)
{
    Trace trace(100);
    TracedPass pass(trace, QStringLiteral("A"), nullptr);
    pass.start(nullptr);
    pass.setInput(3, 1);
    EXPECT_EQ(pass.numInputs(), 0);
    EXPECT_TRUE(pass.isFinished());
    EXPECT_NE(pass.pass(), nullptr);
}

TEST(TracedPassForwarding, InnermostSeesThroughAllDecorators)
{
    Trace trace(100);
    auto* worker = new RenderPassHelper;
    auto* inner = new TracedPass(trace, QStringLiteral("inner"), worker);
    TracedPass outer(trace, QStringLiteral("outer"), inner);
    EXPECT_EQ(outer.pass(), inner);
    EXPECT_EQ(TracedPass::innermost(&outer), worker);
    EXPECT_EQ(TracedPass::innermost(worker), worker);
    EXPECT_EQ(TracedPass::innermost(static_cast<RenderPass*>(nullptr)), nullptr);
}

TEST(TracedPassForwarding, SnapshotAsksForTheTypeOfThePassThatWorks)
{
    Trace trace(100);
    Renderer renderer;
    auto* worker = new RenderPassHelper;
    worker->addInput(QStringLiteral("in"), 5);
    const int node =
        renderer.addPass(QStringLiteral("A"),
                         new TracedPass(trace, QStringLiteral("outer"),
                                        new TracedPass(trace, QStringLiteral("inner"), worker)),
                         0);
    const Snapshot snapshot = Snapshot::of(renderer, [worker](const RenderPass& pass) {
        return &pass == worker ? QStringLiteral("Worker") : QStringLiteral("something else");
    });
    EXPECT_EQ(snapshot.node(node).type, QStringLiteral("Worker"));
    EXPECT_EQ(snapshot.input(node, 0).defaultValue, QVariant(5));
}

TEST(TraceRecording, LifeCycleOfAPassInAFrame)
{
    TimedScene s;
    s.onePass();
    EXPECT_TRUE(s.frame());
    EXPECT_EQ(s.events(), "frame@0 0-31 A.beginFrame@0 0-10 A.start@0 10-20 A.endFrame@0 21-31");
}

TEST(TraceRecording, CallsOutsideFramesHaveNone)
{
    TimedScene s;
    const int node = s.pass("A");
    s.scene.up(node, 0, s.scene.output());
    s.scene.setup();
    s.scene.render();
    s.scene.teardown();
    EXPECT_EQ(s.events(),
              "A.setup 0-10 A.beginFrame 10-20 A.start 20-30 A.endFrame 31-41 "
              "A.teardown 41-51");
}

TEST(TraceRecording, FramesAreNumbered)
{
    TimedScene s;
    s.onePass();
    s.frame();
    s.frame();
    const QVector<TraceEvent> events = s.trace.events();
    ASSERT_EQ(events.size(), 8);
    EXPECT_EQ(events[3].frame, 0);
    EXPECT_EQ(events[4].kind, TraceEvent::Frame);
    EXPECT_EQ(events[4].frame, 1);
    EXPECT_EQ(events[4].pass, -1);
    EXPECT_EQ(events[7].frame, 1);
}

TEST(TraceRecording, SkippedPassIsToldFromAStartedOne)
{
    TimedScene s;
    const int a = s.pass("A");
    const int b = s.pass("B");
    s.scene.edge(a, 0, b, 0);
    s.scene.up(b, 0, s.scene.output());
    s.scene.staggered();
    s.setUp();
    s.frame();
    EXPECT_EQ(s.events(),
              "frame@0 0-62 A.beginFrame@0 0-10 A.start@0 10-20 A.endFrame@0 21-31 "
              "B.beginFrame@0 31-41 B.skip@0 41-51 B.endFrame@0 52-62");
}

TEST(TraceRecording, WaitLastsFromTheEndOfStartToTheYes)
{
    TimedScene s;
    const int node = s.onePass();
    s.at(node).unfinishedPolls = 3;
    s.frame();
    EXPECT_EQ(s.events(),
              "frame@0 0-34 A.beginFrame@0 0-10 A.start@0 10-20 A.wait@0 20-24 "
              "A.endFrame@0 24-34");
}

TEST(TraceRecording, WaitFollowsASkipToo)
{
    TimedScene s;
    const int node = s.onePass();
    s.at(node).unfinishedPolls = 1;
    TracedPass& pass = static_cast<TracedPass&>(*s.scene.renderer.renderPass(node));
    pass.skip(nullptr);
    while (!pass.isFinished()) { }
    EXPECT_EQ(s.events(), "A.skip 0-10 A.wait 10-12");
}

TEST(TraceRecording, WaitEndsWithAnException)
{
    TimedScene s;
    const int node = s.onePass();
    s.at(node).unfinishedPolls = 5;
    int questions = 0;
    const auto plain = s.at(node).onCall;
    s.at(node).onCall = [&](const std::string& operation) {
        plain(operation);
        if (operation == "isFinished" && ++questions == 3)
            throw std::runtime_error("lost");
    };
    EXPECT_THROW(s.scene.render(), std::runtime_error);
    EXPECT_EQ(s.events(), "A.beginFrame 0-10 A.start 10-20 A.wait 20-23");
}

TEST(TraceRecording, WaitsThatOverlapAreNotRecorded)
{
    Timed t;
    CallLog log;
    TracedPass a(t.trace, QStringLiteral("A"), new RecordingPass(log, "A", 0, 0));
    TracedPass b(t.trace, QStringLiteral("B"), new RecordingPass(log, "B", 0, 0));
    static_cast<RecordingPass*>(a.pass())->unfinishedPolls = 2;
    static_cast<RecordingPass*>(b.pass())->unfinishedPolls = 2;
    a.start(nullptr);
    b.start(nullptr);
    for (int i = 0; i < 3; ++i) {
        a.isFinished();
        b.isFinished();
    }
    EXPECT_EQ(t.events(), "A.start 0-0 B.start 0-0");
}

TEST(TraceRecording, WaitAcrossFramesIsNotRecorded)
{
    Timed t;
    CallLog log;
    TracedPass a(t.trace, QStringLiteral("A"), new RecordingPass(log, "A", 0, 0));
    static_cast<RecordingPass*>(a.pass())->unfinishedPolls = 2;
    t.trace.beginFrame();
    a.start(nullptr);
    a.isFinished();
    t.time += 5;
    t.trace.endFrame();
    t.time += 5;
    a.isFinished();
    a.isFinished();
    EXPECT_EQ(t.events(), "frame@0 0-5 A.start@0 0-0");
}

TEST(TraceRecording, EveryCallRecordsAllOperations)
{
    TimedScene s;
    const int node = s.onePass();
    s.trace.setDetail(Trace::EveryCall);
    EXPECT_EQ(s.trace.detail(), Trace::EveryCall);
    s.at(node).unfinishedPolls = 1;
    s.frame();
    EXPECT_EQ(s.events(),
              "frame@0 0-32 A.numInputs@0 0-0 A.defaultValue@0 0-0 A.setInput@0 0-0 "
              "A.clearErrorCode@0 0-0 A.beginFrame@0 0-10 A.start@0 10-20 A.wait@0 20-22 "
              "A.isFinished@0 20-21 A.isFinished@0 21-22 A.endFrame@0 22-32 A.errorCode@0 32-32 "
              "A.output@0 32-32");
}

TEST(TraceRecording, RegistrationIsRecordedUnderEveryCall)
{
    TimedScene s;
    s.trace.setDetail(Trace::EveryCall);
    s.pass("A", 1, 1);
    EXPECT_EQ(s.events(),
              "A.numOutputs 0-0 A.numInputs 0-0 A.numInputs 0-0 A.inputName 0-0 A.numOutputs 0-0 "
              "A.outputName 0-0");
}

TEST(TraceRecording, DestructorIsRecorded)
{
    Timed t;
    CallLog log;
    auto* inner = new RecordingPass(log, "A", 0, 0);
    inner->onDelete = [&t] { t.time += 4; };
    delete new TracedPass(t.trace, QStringLiteral("A"), inner);
    EXPECT_EQ(t.events(), "A.destructor 0-4");
}

TEST(TraceRecording, CallsAreCountedWhateverIsRecorded)
{
    TimedScene s(0);
    const int node = s.onePass();
    s.at(node).unfinishedPolls = 2;
    s.frame();
    s.frame();
    EXPECT_EQ(s.trace.numEvents(), 0);
    EXPECT_EQ(s.trace.numCalls(0, TraceEvent::Start), 2);
    EXPECT_EQ(s.trace.numCalls(0, TraceEvent::IsFinished), 6);
    EXPECT_EQ(s.trace.numCalls(0, TraceEvent::SetInput), 2);
    EXPECT_EQ(s.trace.numCalls(0, TraceEvent::Skip), 0);
    s.trace.clear();
    EXPECT_EQ(s.trace.numCalls(0, TraceEvent::Start), 0);
}

TEST(TraceRecording, EachOperationCountsAsItself)
{
    Trace trace(100);
    {
        TracedPass pass(trace, QStringLiteral("A"), new LightPass(1, 1));
        pass.setup(nullptr);
        pass.beginFrame(nullptr);
        pass.start(nullptr);
        pass.skip(nullptr);
        pass.endFrame(nullptr);
        pass.teardown(nullptr);
        pass.teardownContextData(nullptr);
        pass.isFinished();
        pass.numInputs();
        pass.numOutputs();
        pass.inputName(0);
        pass.outputName(0);
        pass.setInput(0, 1);
        pass.defaultValue(0);
        pass.setDefaultValue(0, 1);
        pass.output(0);
        pass.setNumOutputUsers(0, 1);
        pass.resetNumOutputUsers();
        pass.errorCode();
        pass.clearErrorCode();
        pass.setErrorCode(1);
    }
    for (int kind = TraceEvent::Setup; kind <= TraceEvent::SetErrorCode; ++kind) {
        EXPECT_EQ(trace.numCalls(0, static_cast<TraceEvent::Kind>(kind)), 1)
            << Trace::kindName(static_cast<TraceEvent::Kind>(kind)).toStdString();
    }
    EXPECT_EQ(trace.numCalls(0, TraceEvent::Frame), 0);
    EXPECT_EQ(trace.numCalls(0, TraceEvent::Wait), 0);
}

TEST(TraceRecording, ErrorCodeStaysWithTheEndOfTheFrameThatItEnded)
{
    TimedScene s;
    const int node = s.onePass();
    s.at(node).failStart = 7;
    EXPECT_FALSE(s.frame());
    EXPECT_EQ(s.events(),
              "frame@0 0-31 A.beginFrame@0 0-10 A.start@0 10-20 A.endFrame@0 21-31 failed 7");
    s.at(node).failStart = 0;
    EXPECT_TRUE(s.frame());
    EXPECT_EQ(s.trace.events().last().errorCode, 0u);
    EXPECT_EQ(s.trace.events()[3].errorCode, 7u);
}

TEST(TraceRecording, LaterQuestionsForTheErrorCodeChangeNothing)
{
    TimedScene s;
    const int node = s.onePass();
    s.frame();
    s.at(node).error = 9;
    s.scene.renderer.renderPass(node)->errorCode();
    EXPECT_EQ(s.trace.events().last().errorCode, 0u);
}

TEST(TraceRecording, ThrowingCallEndsWithTheException)
{
    TimedScene s;
    const int node = s.onePass();
    const auto plain = s.at(node).onCall;
    s.at(node).onCall = [&](const std::string& operation) {
        plain(operation);
        if (operation == "start")
            throw std::runtime_error("broken");
    };
    s.trace.beginFrame();
    EXPECT_THROW(s.scene.render(), std::runtime_error);
    s.time += 100;
    s.at(node).onCall = plain;
    s.frame();
    EXPECT_EQ(s.events(),
              "frame@0 0-20 A.beginFrame@0 0-10 A.start@0 10-20 "
              "frame@1 120-151 A.beginFrame@1 120-130 A.start@1 130-140 "
              "A.endFrame@1 141-151");
}

TEST(TraceRecording, CallsBackIntoTheRendererNest)
{
    TimedScene s;
    const int a = s.onePass();
    const int b = s.pass("B", 0, 0);
    const auto plain = s.at(a).onCall;
    s.at(a).onCall = [&](const std::string& operation) {
        if (operation == "start")
            static_cast<TracedPass*>(s.scene.renderer.renderPass(b))->setup(nullptr);
        plain(operation);
    };
    s.frame();
    EXPECT_EQ(s.events(),
              "frame@0 0-41 A.beginFrame@0 0-10 A.start@0 10-30 B.setup@0 10-20 "
              "A.endFrame@0 31-41");
}

TEST(TraceRecording, WaitEnclosesWhatTheQuestionsCall)
{
    TimedScene s;
    const int a = s.onePass();
    const int b = s.pass("B", 0, 0);
    s.at(a).unfinishedPolls = 1;
    const auto plain = s.at(a).onCall;
    s.at(a).onCall = [&](const std::string& operation) {
        if (operation == "isFinished")
            s.scene.renderer.renderPass(b)->setup(nullptr);
        plain(operation);
    };
    s.frame();
    EXPECT_EQ(s.events(),
              "frame@0 0-52 A.beginFrame@0 0-10 A.start@0 10-20 A.wait@0 20-42 "
              "B.setup@0 20-30 B.setup@0 31-41 A.endFrame@0 42-52");
}

TEST(TraceRecording, FrameIsNeitherOpenedNorClosedDuringACall)
{
    TimedScene s;
    const int node = s.onePass();
    const auto plain = s.at(node).onCall;
    s.at(node).onCall = [&](const std::string& operation) {
        plain(operation);
        if (operation == "start") {
            s.trace.endFrame();
            s.trace.beginFrame();
        }
    };
    s.frame();
    EXPECT_EQ(s.events(), "frame@0 0-31 A.beginFrame@0 0-10 A.start@0 10-20 A.endFrame@0 21-31");
}

TEST(TraceRecording, EndWithoutBeginningDoesNothing)
{
    Timed t;
    t.trace.endFrame();
    t.trace.beginFrame();
    t.trace.endFrame();
    t.trace.endFrame();
    EXPECT_EQ(t.events(), "frame@0 0-0");
}

TEST(TraceRecording, EventsThatHaveNotEndedAreLeftOut)
{
    TimedScene s;
    const int node = s.onePass();
    std::string during;
    const auto plain = s.at(node).onCall;
    s.at(node).onCall = [&](const std::string& operation) {
        plain(operation);
        if (operation == "start") {
            during = s.events();
            EXPECT_EQ(s.trace.numEvents(), 3);
            EXPECT_EQ(completeEvents(s.trace.toTraceEvents()).size(), 1u);
        }
    };
    s.frame();
    EXPECT_EQ(during, "A.beginFrame@0 0-10");
}

TEST(TraceRecording, ClearForgetsAllButThePasses)
{
    TimedScene s;
    s.onePass();
    s.frame();
    s.trace.beginFrame();
    s.trace.clear();
    EXPECT_EQ(s.trace.numEvents(), 0);
    EXPECT_EQ(s.trace.numPasses(), 1);
    s.trace.endFrame();
    EXPECT_EQ(s.events(), "");
    s.time = 2000;
    s.frame();
    EXPECT_EQ(s.trace.events().first().frame, 0);
    EXPECT_EQ(s.trace.events().first().beginNs, 1000);
    EXPECT_EQ(s.trace.frames().count, 1);
}

TEST(TraceRecording, ClearDuringACallForgetsTheCall)
{
    TimedScene s;
    const int node = s.onePass();
    s.at(node).unfinishedPolls = 1;
    const auto plain = s.at(node).onCall;
    s.at(node).onCall = [&](const std::string& operation) {
        plain(operation);
        if (operation == "isFinished")
            s.trace.clear();
    };
    s.frame();
    EXPECT_EQ(s.events(), "A.endFrame 22-32");
    s.at(node).onCall = [&](const std::string& operation) {
        if (operation == "endFrame")
            s.trace.clear();
    };
    s.at(node).failStart = 3;
    s.frame();
    EXPECT_EQ(s.events(), "");
}

TEST(TraceRecording, CallThatWasForgottenEndsNoOther)
{
    TimedScene s;
    const int a = s.onePass();
    const int b = s.pass("B", 0, 0);
    const auto plain = s.at(a).onCall;
    s.at(a).onCall = [&](const std::string& operation) {
        if (operation == "start") {
            s.trace.clear();
            s.scene.renderer.renderPass(b)->setup(nullptr);
        }
        plain(operation);
    };
    s.scene.renderer.renderPass(a)->start(nullptr);
    EXPECT_EQ(s.events(), "B.setup 0-10");
    s.trace.beginFrame();
    EXPECT_EQ(s.trace.frames().count, 0);
}

TEST(TraceRecording, FramesBeforeClearingDoNotCountLaterOnes)
{
    TimedScene s;
    s.onePass();
    s.frame();
    s.frame();
    s.trace.clear();
    s.trace.beginFrame();
    s.scene.render();
    EXPECT_EQ(s.trace.frames().count, 0);
    EXPECT_EQ(s.trace.passes().first().count, 0);
}

TEST(TraceRecording, SecondYesIsNoWait)
{
    TimedScene s;
    const int node = s.onePass();
    s.at(node).unfinishedPolls = 1;
    RenderPass& pass = *s.scene.renderer.renderPass(node);
    pass.start(nullptr);
    EXPECT_FALSE(pass.isFinished());
    EXPECT_TRUE(pass.isFinished());
    EXPECT_TRUE(pass.isFinished());
    EXPECT_EQ(s.events(), "A.start 0-10 A.wait 10-12");
}

TEST(TraceRecording, ErrorCodeOfTheNextFrameIsNotThatOfTheLast)
{
    TimedScene s;
    const int node = s.onePass();
    RenderPass& pass = *s.scene.renderer.renderPass(node);
    pass.endFrame(nullptr);
    pass.beginFrame(nullptr);
    s.at(node).error = 5;
    EXPECT_EQ(pass.errorCode(), 5u);
    EXPECT_EQ(s.trace.events().first().errorCode, 0u);
}

TEST(TraceRecording, RecordingStopsWhenTheRoomIsFull)
{
    TimedScene s(6);
    s.onePass();
    s.frame();
    EXPECT_EQ(s.trace.numDropped(), 0);
    s.frame();
    EXPECT_EQ(s.trace.numEvents(), 6);
    EXPECT_EQ(s.trace.numDropped(), 2);
    s.frame();
    EXPECT_EQ(s.trace.numEvents(), 6);
    EXPECT_EQ(s.trace.numDropped(), 6);
    EXPECT_EQ(s.events(),
              "frame@0 0-31 A.beginFrame@0 0-10 A.start@0 10-20 A.endFrame@0 21-31 "
              "frame@1 31-62 A.beginFrame@1 31-41");
    s.trace.clear();
    EXPECT_EQ(s.trace.numDropped(), 0);
    s.frame();
    EXPECT_EQ(s.trace.numEvents(), 4);
}

TEST(TraceRecording, WaitThatDoesNotFitIsDropped)
{
    TimedScene s(3);
    const int node = s.onePass();
    s.at(node).unfinishedPolls = 1;
    s.frame();
    EXPECT_EQ(s.events(), "frame@0 0-32 A.beginFrame@0 0-10 A.start@0 10-20");
    EXPECT_EQ(s.trace.numDropped(), 2);
    EXPECT_EQ(s.trace.frames().count, 0);
}

TEST(TraceRecording, NegativeCapacityHoldsNothing)
{
    Trace trace(-1);
    trace.beginFrame();
    makePass(trace, "A")->start(nullptr);
    trace.endFrame();
    EXPECT_EQ(trace.numEvents(), 0);
    EXPECT_EQ(trace.numDropped(), 3);
}

TEST(TraceRecording, ClockThatRunsBackwardsStandsStill)
{
    Timed t;
    const auto pass = makePass(t.trace, "A");
    t.time = 1010;
    t.trace.beginFrame();
    t.time = 1005;
    pass->start(nullptr);
    t.time = std::numeric_limits<qint64>::min();
    pass->start(nullptr);
    t.time = 1020;
    t.trace.endFrame();
    EXPECT_EQ(t.events(), "frame@0 10-20 A.start@0 10-10 A.start@0 10-10");
}

TEST(TraceRecording, ClockMayBeginAnywhere)
{
    const qint64 min = std::numeric_limits<qint64>::min();
    qint64 time = min;
    Trace trace(10, [&time] { return time; });
    time = min + 5;
    trace.beginFrame();
    time = std::numeric_limits<qint64>::max(); // more than fits
    trace.endFrame();
    ASSERT_EQ(trace.numEvents(), 1);
    EXPECT_EQ(trace.events().first().beginNs, 5);
    EXPECT_EQ(trace.events().first().endNs, 5);
}

TEST(TraceRecording, SteadyClockIsUsedUnlessToldOtherwise)
{
    const auto before = std::chrono::steady_clock::now();
    Trace trace;
    trace.beginFrame();
    trace.endFrame();
    const std::chrono::nanoseconds all = std::chrono::steady_clock::now() - before;
    ASSERT_EQ(trace.numEvents(), 1);
    const TraceEvent event = trace.events().first();
    EXPECT_GE(event.beginNs, 0);
    EXPECT_GE(event.endNs, event.beginNs);
    EXPECT_LE(event.endNs, all.count());
}

TEST(TraceRecording, PassesOutliveTheirTrace)
{
    CallLog log;
    const auto questions = std::make_shared<int>(0);
    auto trace = std::make_unique<Trace>(100, [questions] { return ++*questions; });
    auto pass = std::make_unique<TracedPass>(*trace, QStringLiteral("A"),
                                             new RecordingPass(log, "A", 0, 0));
    pass->start(nullptr);
    trace.reset();
    EXPECT_EQ(questions.use_count(), 1);
    pass->isFinished();
    pass->endFrame(nullptr);
    EXPECT_EQ(pass->errorCode(), 0u);
    pass->setName(QStringLiteral("B"));
    pass.reset();
    EXPECT_EQ(log.take(), "A.start(0) A.isFinished A.endFrame(0) A.errorCode A.delete");
}

TEST(TraceRecording, TraceMayGoDuringACall)
{
    CallLog log;
    auto trace = std::make_unique<Trace>(100);
    auto* inner = new RecordingPass(log, "A", 0, 0);
    TracedPass pass(*trace, QStringLiteral("A"), inner);
    inner->onCall = [&trace](const std::string&) { trace.reset(); };
    trace->beginFrame();
    pass.start(nullptr);
    pass.isFinished();
    EXPECT_EQ(log.take(), "A.start(0) A.isFinished");
}

TEST(TraceNames, IndexThatNamesNothingIsHarmless)
{
    Trace trace(10);
    const auto pass = makePass(trace, "A");
    const int max = std::numeric_limits<int>::max();
    EXPECT_EQ(pass->index(), 0);
    EXPECT_EQ(trace.passName(0), QStringLiteral("A"));
    for (const int index : {-1, 1, max, -max - 1}) {
        EXPECT_EQ(trace.passName(index), QString());
        EXPECT_EQ(trace.numCalls(index, TraceEvent::Start), 0);
    }
    EXPECT_EQ(trace.numCalls(0, static_cast<TraceEvent::Kind>(TraceEvent::SetErrorCode + 1)), 0);
    EXPECT_EQ(Trace::kindName(static_cast<TraceEvent::Kind>(TraceEvent::SetErrorCode + 1)),
              QString());
    EXPECT_EQ(Trace::kindName(TraceEvent::SetErrorCode), QStringLiteral("setErrorCode"));
}

TEST(TraceNames, PassesAreNamedByThePathsOfTheirNodes)
{
    Trace trace(10);
    Trace other(10);
    Renderer renderer;
    const int group = renderer.addGroup(QStringLiteral("Bloom"), 0, 0, 0);
    renderer.addPass(QStringLiteral("Plain"), new RenderPassHelper, group);
    renderer.addPass(
        QStringLiteral("Blur"),
        new TracedPass(other, QString(), new TracedPass(trace, QString(), new RenderPassHelper)),
        group);
    Trace::namePasses(renderer);
    EXPECT_EQ(trace.passName(0), QStringLiteral("Bloom/Blur"));
    EXPECT_EQ(other.passName(0), QStringLiteral("Bloom/Blur"));
}

TEST(TraceSummaries, PercentilesAreNearestRanks)
{
    Timed t;
    // 1 to 10, in some order.
    for (const int duration : {4, 1, 10, 7, 2, 9, 3, 8, 5, 6}) {
        t.trace.beginFrame();
        t.time += duration;
        t.trace.endFrame();
    }
    const TraceSummary frames = t.trace.frames();
    EXPECT_EQ(frames.name, QString());
    EXPECT_EQ(frames.count, 10);
    EXPECT_EQ(frames.total, 55);
    EXPECT_EQ(frames.minimum, 1);
    EXPECT_EQ(frames.median, 5);
    EXPECT_EQ(frames.percentile90, 9);
    EXPECT_EQ(frames.percentile99, 10);
    EXPECT_EQ(frames.maximum, 10);
}

TEST(TraceSummaries, PercentilesOfFewAndMany)
{
    for (const int count : {1, 2, 3, 99, 100, 101, 200}) {
        Timed t;
        for (int i = 1; i <= count; ++i) {
            t.trace.beginFrame();
            t.time += i;
            t.trace.endFrame();
        }
        // The smallest value that so many percent do not exceed.
        const auto nearestRank = [count](int percent) {
            int rank = 1;
            while (rank * 100 < percent * count)
                ++rank;
            return rank;
        };
        const TraceSummary frames = t.trace.frames();
        EXPECT_EQ(frames.median, nearestRank(50)) << count;
        EXPECT_EQ(frames.percentile90, nearestRank(90)) << count;
        EXPECT_EQ(frames.percentile99, nearestRank(99)) << count;
    }
}

TEST(TraceSummaries, NothingRecordedIsAllZero)
{
    Trace trace(10);
    const auto pass = makePass(trace, "A");
    const TraceSummary frames = trace.frames();
    EXPECT_EQ(frames.count, 0);
    EXPECT_EQ(frames.maximum, 0);
    const QVector<TraceSummary> passes = trace.passes();
    ASSERT_EQ(passes.size(), 1);
    EXPECT_EQ(passes[0].name, QStringLiteral("A"));
    EXPECT_EQ(passes[0].count, 0);
    EXPECT_EQ(passes[0].total, 0);
}

TEST(TraceSummaries, PassTakesItsCallsAndTheWait)
{
    TimedScene s;
    const int node = s.onePass();
    s.frame();
    s.at(node).unfinishedPolls = 4;
    s.frame();
    const TraceSummary pass = s.trace.passes().first();
    EXPECT_EQ(pass.count, 2);
    EXPECT_EQ(pass.total, 30 + 35);
    EXPECT_EQ(pass.minimum, 30);
    EXPECT_EQ(pass.median, 30);
    EXPECT_EQ(pass.maximum, 35);
}

TEST(TraceSummaries, DetailChangesNothing)
{
    TimedScene s;
    const int node = s.onePass();
    s.trace.setDetail(Trace::EveryCall);
    const auto plain = s.at(node).onCall;
    s.at(node).onCall = [&](const std::string& operation) {
        plain(operation);
        if (operation == "setInput")
            s.time += 1000;
    };
    s.frame();
    EXPECT_EQ(s.trace.passes().first().total, 30);
    EXPECT_EQ(s.trace.frames().total, 1031);
}

TEST(TraceSummaries, CallsOutsideFramesDoNotCount)
{
    TimedScene s;
    s.onePass();
    s.scene.setup();
    s.scene.render();
    s.frame();
    s.scene.teardown();
    EXPECT_EQ(s.trace.passes().first().count, 1);
    EXPECT_EQ(s.trace.passes().first().total, 30);
}

TEST(TraceSummaries, SetupWithinAFrameCounts)
{
    TimedScene s;
    const int node = s.onePass();
    s.scene.renderer.setEnabled(node, true);
    s.frame();
    EXPECT_EQ(s.trace.passes().first().total, 50);
}

TEST(TraceSummaries, CallsWithinCallsOfTheSamePassCountOnce)
{
    TimedScene s;
    const int node = s.onePass();
    bool within = false;
    const auto plain = s.at(node).onCall;
    s.at(node).onCall = [&](const std::string& operation) {
        plain(operation);
        if (operation == "start" && !within) {
            within = true;
            s.scene.render();
        }
    };
    s.frame();
    // beginFrame, start with a whole frame of 31 in it, endFrame
    EXPECT_EQ(s.trace.passes().first().total, 10 + 41 + 10);
}

TEST(TraceSummaries, OpenFrameDoesNotCount)
{
    TimedScene s;
    s.onePass();
    s.frame();
    s.trace.beginFrame();
    s.scene.render();
    EXPECT_EQ(s.trace.frames().count, 1);
    EXPECT_EQ(s.trace.passes().first().count, 1);
    s.trace.endFrame();
    EXPECT_EQ(s.trace.frames().count, 2);
    EXPECT_EQ(s.trace.passes().first().count, 2);
}

TEST(TraceSummaries, FrameThatDidNotFitDoesNotCount)
{
    TimedScene s(6);
    s.onePass();
    s.frame();
    s.frame();
    EXPECT_EQ(s.trace.frames().count, 1);
    EXPECT_EQ(s.trace.passes().first().count, 1);
    EXPECT_EQ(s.trace.passes().first().total, 30);
}

TEST(TraceSummaries, PassesComeInTheOrderInWhichTheyWereMade)
{
    Trace trace(100);
    const auto a = makePass(trace, "Z");
    const auto b = makePass(trace, "A");
    const auto c = makePass(trace, "M");
    trace.beginFrame();
    c->start(nullptr);
    a->start(nullptr);
    trace.endFrame();
    const QVector<TraceSummary> passes = trace.passes();
    ASSERT_EQ(passes.size(), 3);
    EXPECT_EQ(passes[0].name, QStringLiteral("Z"));
    EXPECT_EQ(passes[0].count, 1);
    EXPECT_EQ(passes[1].name, QStringLiteral("A"));
    EXPECT_EQ(passes[1].count, 0);
    EXPECT_EQ(passes[2].name, QStringLiteral("M"));
    EXPECT_EQ(passes[2].count, 1);
}

TEST(TraceFile, EmptyTraceIsAFile)
{
    const QJsonObject file = parsed(Trace(10).toTraceEvents());
    EXPECT_EQ(file[QLatin1String("displayTimeUnit")].toString(), QStringLiteral("ns"));
    const QJsonArray events = file[QLatin1String("traceEvents")].toArray();
    ASSERT_EQ(events.size(), 2);
    for (const QJsonValue& event : events)
        EXPECT_EQ(textOf(event.toObject(), "ph"), "M");
    EXPECT_EQ(textOf(events[0].toObject(), "name"), "process_name");
    EXPECT_EQ(textOf(events[1].toObject(), "name"), "thread_name");
}

TEST(TraceFile, ToTheLetter)
{
    TimedScene s;
    const int node = s.pass("Blur \"2\"");
    s.scene.up(node, 0, s.scene.output());
    s.scene.setup();
    s.at(node).failStart = 4294967295u;
    s.frame();
    EXPECT_EQ(s.trace.toTraceEvents().toStdString(),
              R"({"displayTimeUnit":"ns","otherData":{"droppedEvents":"0"},"traceEvents":[
{"ph":"M","pid":1,"tid":1,"name":"process_name","args":{"name":"Orv"}},
{"ph":"M","pid":1,"tid":1,"name":"thread_name","args":{"name":"Renderer"}},
{"ph":"X","pid":1,"tid":1,"cat":"setup","name":"Blur \"2\" setup","ts":0.000,"dur":0.010,"args":{}},
{"ph":"X","pid":1,"tid":1,"cat":"frame","name":"frame","ts":0.010,"dur":0.031,"args":{"frame":0}},
{"ph":"X","pid":1,"tid":1,"cat":"beginFrame","name":"Blur \"2\" beginFrame","ts":0.010,"dur":0.010,"args":{"frame":0}},
{"ph":"X","pid":1,"tid":1,"cat":"start","name":"Blur \"2\" start","ts":0.020,"dur":0.010,"args":{"frame":0}},
{"ph":"X","pid":1,"tid":1,"cat":"endFrame","name":"Blur \"2\" endFrame","ts":0.031,"dur":0.010,"args":{"frame":0,"errorCode":4294967295}}
]}
)");
}

TEST(TraceFile, TimesAreMicrosecondsToTheNanosecond)
{
    Timed t;
    for (const qint64 time : {0LL, 7LL, 42LL, 999LL, 1000LL, 1001LL, 3600000000123LL}) {
        t.time = 1000 + time;
        t.trace.beginFrame();
    }
    t.trace.endFrame();
    const QByteArray json = t.trace.toTraceEvents();
    for (const char* time : {"\"ts\":0.000,", "\"ts\":0.007,", "\"ts\":0.042,", "\"ts\":0.999,",
                             "\"ts\":1.000,", "\"ts\":1.001,", "\"ts\":3600000000.123,"}) {
        EXPECT_EQ(json.count(time), 1) << time;
    }
}

TEST(TraceFile, RequiredKeysAreThereAndEventsNest)
{
    TimedScene s;
    const int a = s.pass("A");
    const int b = s.pass("B");
    s.scene.edge(a, 0, b, 0);
    s.scene.up(b, 0, s.scene.output());
    s.trace.setDetail(Trace::EveryCall);
    s.at(a).unfinishedPolls = 2;
    s.scene.setup();
    for (int i = 0; i < 3; ++i)
        s.frame();
    const std::vector<QJsonObject> events = completeEvents(s.trace.toTraceEvents());
    EXPECT_EQ(static_cast<int>(events.size()), s.trace.numEvents());

    std::vector<double> ends; // of the events around
    double last = 0;
    for (const QJsonObject& event : events) {
        EXPECT_FALSE(textOf(event, "name").empty());
        EXPECT_FALSE(textOf(event, "cat").empty());
        EXPECT_EQ(numberOf(event, "pid"), 1);
        EXPECT_EQ(numberOf(event, "tid"), 1);
        EXPECT_TRUE(event[QLatin1String("args")].isObject());
        const double begin = numberOf(event, "ts");
        const double end = begin + numberOf(event, "dur");
        EXPECT_GE(begin, last);
        EXPECT_GE(end, begin);
        last = begin;
        const double tiny = 1e-6;
        while (!ends.empty() && ends.back() <= begin + tiny)
            ends.pop_back();
        if (!ends.empty()) {
            EXPECT_LE(end, ends.back() + tiny) << textOf(event, "name");
        }
        ends.push_back(end);
    }
}

TEST(TraceFile, NamesOfAllKindsAreReadBack)
{
    const QString names[] = {
        QStringLiteral("%1 %2 %%"),
        QStringLiteral("\\ \" / ]}"),
        QString(QChar(0)) + QChar(1) + QChar(31) + QLatin1Char('\n') + QChar(127),
        QString::fromUtf8("\xc3\xa4 \xe6\xbc\xa2 \xf0\x9f\x8e\xa8 \xe2\x80\xa8"),
        QString(),
    };
    Timed t;
    std::vector<std::unique_ptr<TracedPass>> passes;
    for (const QString& name : names) {
        passes.push_back(std::make_unique<TracedPass>(t.trace, name, nullptr));
        passes.back()->start(nullptr);
    }
    const std::vector<QJsonObject> events = completeEvents(t.trace.toTraceEvents());
    ASSERT_EQ(events.size(), std::size(names));
    for (std::size_t i = 0; i < events.size(); ++i) {
        EXPECT_EQ(events[i][QLatin1String("name")].toString(),
                  names[i] + QLatin1String(names[i].isEmpty() ? "start" : " start"));
    }
}

TEST(TraceFile, HalvesOfCharactersAreReplaced)
{
    Timed t;
    TracedPass pass(t.trace, QString(QChar(0xd83c)) + QLatin1Char('x'), nullptr);
    pass.start(nullptr);
    const QByteArray json = t.trace.toTraceEvents();
    EXPECT_FALSE(json.contains("\\ud83c"));
    const QString read = completeEvents(json).at(0)[QLatin1String("name")].toString();
    EXPECT_TRUE(read.endsWith(QStringLiteral("x start")));
    EXPECT_FALSE(read.contains(QChar(0xd83c)));
}

TEST(TraceFile, TellsWhatWasDropped)
{
    Timed t(1);
    for (int i = 0; i < 4; ++i)
        t.trace.beginFrame();
    const QJsonObject file = parsed(t.trace.toTraceEvents());
    EXPECT_EQ(textOf(file[QLatin1String("otherData")].toObject(), "droppedEvents"), "3");
}

TEST(TraceFile, DeviceThatTakesNothingIsReported)
{
    QBuffer closed;
    EXPECT_FALSE(Trace(10).writeTraceEvents(closed));
    QBuffer open;
    open.open(QIODevice::WriteOnly);
    const Trace trace(10);
    EXPECT_TRUE(trace.writeTraceEvents(open));
    EXPECT_EQ(open.data(), trace.toTraceEvents());
}

TEST(TraceFile, LargeTraceIsWrittenInPieces)
{
    struct Sink : QIODevice
    {
        qint64 readData(char*, qint64) override { return -1; }
        qint64 writeData(const char*, qint64 size) override
        {
            largest = std::max(largest, size);
            total += size;
            return size;
        }
        qint64 largest = 0;
        qint64 total = 0;
    };
    Trace trace(100000);
    const auto pass = makePass(trace, "A");
    for (int i = 0; i < 100000; ++i)
        pass->start(nullptr);
    Sink sink;
    sink.open(QIODevice::WriteOnly | QIODevice::Unbuffered);
    EXPECT_TRUE(trace.writeTraceEvents(sink));
    EXPECT_GT(sink.total, 5000000);
    EXPECT_LT(sink.largest, 100000);
}

TEST(TraceFile, PiecesAfterOneThatWasNotTakenAreNotWritten)
{
    struct Full : QIODevice
    {
        qint64 readData(char*, qint64) override { return -1; }
        qint64 writeData(const char*, qint64) override { return ++calls == 1 ? -1 : 0; }
        int calls = 0;
    };
    Trace trace(10000);
    const auto pass = makePass(trace, "A");
    for (int i = 0; i < 10000; ++i)
        pass->start(nullptr);
    Full full;
    full.open(QIODevice::WriteOnly | QIODevice::Unbuffered);
    EXPECT_FALSE(trace.writeTraceEvents(full));
    EXPECT_EQ(full.calls, 1);
}

namespace {

/// So many passes in one frame.
struct WideFrame
{
    explicit WideFrame(int size)
    {
        for (int i = 0; i < size; ++i)
            passes.push_back(
                std::make_unique<TracedPass>(trace, QStringLiteral("A"), new LightPass(0, 0)));
        trace.beginFrame();
        for (const auto& pass : passes) {
            pass->start(nullptr);
            pass->isFinished();
        }
        trace.endFrame();
    }

    Trace trace;
    std::vector<std::unique_ptr<TracedPass>> passes;
};

} // namespace

TEST(TraceGrowth, SummariesGrowWithTheEvents)
{
    expectLinear<WideFrame>(100000, [](WideFrame& frame) {
        const QVector<TraceSummary> passes = frame.trace.passes();
        EXPECT_EQ(passes.last().count, 1);
    });
}

TEST(TraceGrowth, FileGrowsWithTheEvents)
{
    expectLinear<WideFrame>(
        100000, [](WideFrame& frame) { EXPECT_GT(frame.trace.toTraceEvents().size(), 3000000); });
}
