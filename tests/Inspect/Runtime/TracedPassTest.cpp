// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include <Kestrin/Orv/Inspect/TracedPass.h>

#include <Kestrin/Orv/Inspect/Snapshot.h>
#include <Kestrin/Orv/Inspect/Trace.h>
#include <Kestrin/Orv/RenderPassHelper.h>

#include "support/RecordingPass.h"

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>

using namespace Kestrin::Orv;
using namespace Kestrin::Orv::Inspect;

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

} // namespace

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

TEST(TracedPassLifetime, PassesOutliveTheirTrace)
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

TEST(TracedPassLifetime, ATraceMayBeDeletedDuringACall)
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
