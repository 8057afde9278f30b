// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include <Kestrin/Orv/RenderPassHelper.h>

#include "support/MessageRecorder.h"
#include "support/RecordingPass.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstddef>
#include <cstring>
#include <new>
#include <type_traits>

using namespace Kestrin::Orv;

namespace {

/// Opens the protected members.
struct Pass : RenderPassHelper
{
    using RenderPassHelper::defaultValues;
    using RenderPassHelper::error;
    using RenderPassHelper::inputs;
    using RenderPassHelper::outputs;
    using RenderPassHelper::outputUsers;
    using RenderPassHelper::reservedInt;
    using RenderPassHelper::reservedSlots;
    using RenderPassHelper::reservedWide;
    using RenderPassHelper::timer;
};

/// The slot of a virtual operation in its class's table, as the Itanium C++ ABI encodes it.
template<typename Member>
std::ptrdiff_t slotOf(Member member)
{
    std::ptrdiff_t encoded = 0;
    std::memcpy(&encoded, &member, sizeof(encoded));
    return (encoded - 1) / static_cast<std::ptrdiff_t>(sizeof(void*));
}

const int kWildIndices[] = {-1, INT_MIN, INT_MAX, 2};

} // namespace

TEST(RenderPassInterface, IsAbstractWithAVirtualDestructor)
{
    EXPECT_TRUE(std::is_abstract<RenderPass>::value);
    EXPECT_TRUE(std::has_virtual_destructor<RenderPass>::value);
    EXPECT_EQ(sizeof(RenderPass), sizeof(void*));
}

TEST(RenderPassInterface, VirtualTableKeepsTheOrderOfDeclaration)
{
    // The destructor has slots 0 and 1.
    EXPECT_EQ(slotOf(&RenderPass::setup), 2);
    EXPECT_EQ(slotOf(&RenderPass::beginFrame), 3);
    EXPECT_EQ(slotOf(&RenderPass::start), 4);
    EXPECT_EQ(slotOf(&RenderPass::skip), 5);
    EXPECT_EQ(slotOf(&RenderPass::endFrame), 6);
    EXPECT_EQ(slotOf(&RenderPass::isFinished), 7);
    EXPECT_EQ(slotOf(&RenderPass::teardown), 8);
    EXPECT_EQ(slotOf(&RenderPass::teardownContextData), 9);
    EXPECT_EQ(slotOf(&RenderPass::numInputs), 10);
    EXPECT_EQ(slotOf(&RenderPass::numOutputs), 11);
    EXPECT_EQ(slotOf(&RenderPass::inputName), 12);
    EXPECT_EQ(slotOf(&RenderPass::outputName), 13);
    EXPECT_EQ(slotOf(&RenderPass::setInput), 14);
    EXPECT_EQ(slotOf(&RenderPass::defaultValue), 15);
    EXPECT_EQ(slotOf(&RenderPass::setDefaultValue), 16);
    EXPECT_EQ(slotOf(&RenderPass::output), 17);
    EXPECT_EQ(slotOf(&RenderPass::setNumOutputUsers), 18);
    EXPECT_EQ(slotOf(&RenderPass::resetNumOutputUsers), 19);
    EXPECT_EQ(slotOf(&RenderPass::errorCode), 20);
    EXPECT_EQ(slotOf(&RenderPass::clearErrorCode), 21);
    EXPECT_EQ(slotOf(&RenderPass::setErrorCode), 22);
}

TEST(RenderPassInterface, HelperAddsItsFourOperationsBehindThoseOfThePass)
{
    EXPECT_EQ(slotOf(&RenderPassHelper::addInput), 23);
    EXPECT_EQ(slotOf(&RenderPassHelper::addOutput), 24);
    EXPECT_EQ(slotOf(&RenderPassHelper::findInput), 25);
    EXPECT_EQ(slotOf(&RenderPassHelper::findOutput), 26);
}

TEST(RenderPassInterface, RendererTableKeepsTheOrderOfDeclaration)
{
    EXPECT_EQ(slotOf(&Renderer::setup), 2);
    EXPECT_EQ(slotOf(&Renderer::render), 3);
    EXPECT_EQ(slotOf(&Renderer::teardown), 4);
    EXPECT_EQ(slotOf(&Renderer::getGraphProcessingMode), 5);
    EXPECT_EQ(slotOf(&Renderer::beginFrame), 6);
    EXPECT_EQ(slotOf(&Renderer::endFrame), 7);
}

TEST(RenderPassHelper, NewPassHasNoPortsAndNoError)
{
    const Pass pass;
    EXPECT_EQ(pass.numInputs(), 0);
    EXPECT_EQ(pass.numOutputs(), 0);
    EXPECT_EQ(pass.errorCode(), 0u);
    EXPECT_TRUE(pass.inputs.isEmpty());
    EXPECT_TRUE(pass.defaultValues.isEmpty());
    EXPECT_TRUE(pass.outputs.isEmpty());
    EXPECT_TRUE(pass.outputUsers.isEmpty());
}

TEST(RenderPassHelper, ConstructionZeroesReservedRoom)
{
    // In memory full of ones, so that no member is zero by luck.
    alignas(Pass) unsigned char room[sizeof(Pass)];
    std::memset(room, 0xff, sizeof(room));
    Pass* pass = new (room) Pass;
    EXPECT_EQ(pass->reservedInt, 0);
    EXPECT_EQ(pass->reservedWide, 0);
    EXPECT_EQ(sizeof(pass->reservedSlots), 100 * sizeof(qint64));
    for (const qint64 slot : pass->reservedSlots)
        EXPECT_EQ(slot, 0);
    EXPECT_EQ(pass->error, 0u);
    EXPECT_FALSE(pass->timer.isValid());
    pass->~Pass();
}

TEST(RenderPassHelper, MembersLieInTheOrderOfDeclaration)
{
    const Pass pass;
    const void* const members[] = {&pass.inputs,       &pass.defaultValues, &pass.outputs,
                                   &pass.outputUsers,  &pass.timer,         &pass.reservedInt,
                                   &pass.reservedWide, &pass.reservedSlots, &pass.error};
    for (std::size_t i = 1; i < sizeof(members) / sizeof(members[0]); ++i)
        EXPECT_LT(members[i - 1], members[i]) << i;
}

TEST(RenderPassHelper, IsFinishedAtOnce)
{
    EXPECT_TRUE(Pass().isFinished());
}

TEST(RenderPassHelper, FrameTimerIsInvalidUntilStarted)
{
    Pass pass;
    const Pass& constPass = pass;
    EXPECT_FALSE(constPass.frameTimer().isValid());
    pass.frameTimer().start();
    EXPECT_TRUE(constPass.frameTimer().isValid());
    EXPECT_TRUE(pass.timer.isValid());
    EXPECT_EQ(&constPass.frameTimer(), &pass.frameTimer());
}

TEST(RenderPassHelper, AddInputNumbersInputsInCallOrder)
{
    Pass pass;
    EXPECT_EQ(pass.addInput(QStringLiteral("a"), 1), 0);
    EXPECT_EQ(pass.addInput(QStringLiteral("b"), 2), 1);
    EXPECT_EQ(pass.addInput(QStringLiteral("c"), 3), 2);
    EXPECT_EQ(pass.numInputs(), 3);
    EXPECT_EQ(pass.numOutputs(), 0);
    EXPECT_EQ(pass.inputName(1), QStringLiteral("b"));
    EXPECT_EQ(pass.defaultValue(2), QVariant(3));
}

TEST(RenderPassHelper, AddOutputCountsSeparatelyFromInputs)
{
    Pass pass;
    pass.addInput(QStringLiteral("a"), 1);
    EXPECT_EQ(pass.addOutput(QStringLiteral("x")), 0);
    EXPECT_EQ(pass.addOutput(QStringLiteral("y")), 1);
    EXPECT_EQ(pass.numOutputs(), 2);
    EXPECT_EQ(pass.numInputs(), 1);
    EXPECT_EQ(pass.outputName(0), QStringLiteral("x"));
    EXPECT_EQ(pass.outputName(1), QStringLiteral("y"));
}

TEST(RenderPassHelper, ParallelListsGrowTogether)
{
    Pass pass;
    pass.addInput(QStringLiteral("a"), 1);
    pass.addInput(QStringLiteral("b"), QVariant());
    pass.addOutput(QStringLiteral("x"));
    EXPECT_EQ(pass.inputs.size(), 2);
    EXPECT_EQ(pass.defaultValues.size(), 2);
    EXPECT_EQ(pass.outputs.size(), 1);
    EXPECT_EQ(pass.outputUsers.size(), 1);
    EXPECT_EQ(pass.outputUsers[0], 0);
}

TEST(RenderPassHelper, NewInputIsInvalidThoughItsDefaultIsNot)
{
    Pass pass;
    pass.addInput(QStringLiteral("a"), 42);
    EXPECT_FALSE(pass.inputs[0].value.isValid());
    EXPECT_EQ(pass.defaultValue(0), QVariant(42));
}

TEST(RenderPassHelper, NewOutputIsInvalid)
{
    Pass pass;
    pass.addOutput(QStringLiteral("x"));
    EXPECT_FALSE(pass.output(0).isValid());
}

TEST(RenderPassHelper, EmptyAndRepeatedNamesGetNewIndices)
{
    Pass pass;
    EXPECT_EQ(pass.addInput(QString(), 1), 0);
    EXPECT_EQ(pass.addInput(QStringLiteral("a"), 1), 1);
    EXPECT_EQ(pass.addInput(QStringLiteral("a"), 1), 2);
    EXPECT_EQ(pass.addOutput(QString()), 0);
    EXPECT_EQ(pass.addOutput(QString()), 1);
}

TEST(RenderPassHelper, FindAnswersTheLowestIndexOfAName)
{
    Pass pass;
    pass.addInput(QStringLiteral("other"), 1);
    pass.addInput(QStringLiteral("twin"), 1);
    pass.addInput(QStringLiteral("twin"), 1);
    pass.addOutput(QStringLiteral("first"));
    pass.addOutput(QStringLiteral("twin"));
    pass.addOutput(QStringLiteral("twin"));
    EXPECT_EQ(pass.findInput(QStringLiteral("twin")), 1);
    EXPECT_EQ(pass.findOutput(QStringLiteral("twin")), 1);
}

TEST(RenderPassHelper, FindComparesExactly)
{
    Pass pass;
    EXPECT_EQ(pass.findInput(QStringLiteral("a")), -1);
    EXPECT_EQ(pass.findOutput(QStringLiteral("a")), -1);
    pass.addInput(QStringLiteral("Depth"), 1);
    pass.addOutput(QStringLiteral("Colour"));
    EXPECT_EQ(pass.findInput(QStringLiteral("depth")), -1);
    EXPECT_EQ(pass.findInput(QStringLiteral("Dept")), -1);
    EXPECT_EQ(pass.findInput(QStringLiteral("Depth ")), -1);
    EXPECT_EQ(pass.findInput(QStringLiteral("Colour")), -1);
    EXPECT_EQ(pass.findOutput(QStringLiteral("colour")), -1);
    EXPECT_EQ(pass.findOutput(QStringLiteral("Depth")), -1);
    EXPECT_EQ(pass.findOutput(QStringLiteral("Colour")), 0);
}

TEST(RenderPassHelper, FindTakesTheEmptyNameLikeAnyOther)
{
    Pass pass;
    pass.addInput(QStringLiteral("a"), 1);
    EXPECT_EQ(pass.findInput(QString()), -1);
    pass.addInput(QString(), 1);
    EXPECT_EQ(pass.findInput(QString()), 1);
}

TEST(RenderPassHelper, SettersStoreValues)
{
    Pass pass;
    pass.addInput(QStringLiteral("a"), 1);
    pass.addInput(QStringLiteral("b"), 2);
    pass.addOutput(QStringLiteral("x"));
    pass.addOutput(QStringLiteral("y"));

    pass.setInput(1, 5);
    EXPECT_FALSE(pass.inputs[0].value.isValid());
    EXPECT_EQ(pass.inputs[1].value, QVariant(5));
    EXPECT_EQ(pass.defaultValue(1), QVariant(2));

    pass.setDefaultValue(0, 6);
    EXPECT_EQ(pass.defaultValue(0), QVariant(6));
    EXPECT_FALSE(pass.inputs[0].value.isValid());

    pass.outputs[1].value = 7;
    EXPECT_EQ(pass.output(1), QVariant(7));
    EXPECT_FALSE(pass.output(0).isValid());

    pass.setNumOutputUsers(1, 3);
    EXPECT_EQ(pass.outputUsers[0], 0);
    EXPECT_EQ(pass.outputUsers[1], 3);
}

TEST(RenderPassHelper, ResetLeavesAZeroForEachOutput)
{
    Pass pass;
    for (int j = 0; j < 3; ++j) {
        pass.addOutput(QString());
        pass.setNumOutputUsers(j, j + 1);
    }
    pass.resetNumOutputUsers();
    EXPECT_EQ(pass.outputUsers, QVector<int>({0, 0, 0}));
}

TEST(RenderPassHelper, ErrorCodeIsStoredAndCleared)
{
    Pass pass;
    pass.setErrorCode(3);
    EXPECT_EQ(pass.errorCode(), 3u);
    EXPECT_EQ(pass.error, 3u);
    pass.setErrorCode(0xffffffffu);
    EXPECT_EQ(pass.errorCode(), 0xffffffffu);
    pass.clearErrorCode();
    EXPECT_EQ(pass.errorCode(), 0u);
}

TEST(RenderPassHelper, LifeCycleCallsChangeAndLogNothing)
{
    const MessageRecorder recorder;
    Pass pass;
    pass.addInput(QStringLiteral("a"), 1);
    pass.addOutput(QStringLiteral("x"));
    pass.setInput(0, 2);
    pass.outputs[0].value = 3;
    pass.setNumOutputUsers(0, 4);
    pass.setErrorCode(5);
    for (RenderCallbacks* callbacks : {callbacksNo(0), callbacksNo(7)}) {
        pass.setup(callbacks);
        pass.beginFrame(callbacks);
        pass.start(callbacks);
        pass.endFrame(callbacks);
        pass.teardown(callbacks);
        pass.teardownContextData(callbacks);
    }
    EXPECT_EQ(pass.numInputs(), 1);
    EXPECT_EQ(pass.numOutputs(), 1);
    EXPECT_EQ(pass.inputs[0].value, QVariant(2));
    EXPECT_EQ(pass.defaultValue(0), QVariant(1));
    EXPECT_EQ(pass.output(0), QVariant(3));
    EXPECT_EQ(pass.outputUsers[0], 4);
    EXPECT_EQ(pass.errorCode(), 5u);
    EXPECT_FALSE(pass.frameTimer().isValid());
    EXPECT_TRUE(recorder.messages().empty());
}

TEST(RenderPassHelper, EverySkipLogsOneDebugMessage)
{
    const MessageRecorder recorder;
    Pass pass;
    pass.skip(nullptr);
    EXPECT_EQ(recorder.messages().size(), 1u);
    pass.skip(callbacksNo(7));
    const std::vector<MessageRecorder::Message> messages = recorder.messages();
    ASSERT_EQ(messages.size(), 2u);
    for (const MessageRecorder::Message& message : messages) {
        EXPECT_EQ(message.level, QtDebugMsg);
        EXPECT_EQ(message.text,
                  QStringLiteral("RenderPassHelper::skip() called, inherit from "
                                 "RenderPassProxy"));
        EXPECT_TRUE(message.hasPlainContext());
    }
}

TEST(RenderPassHelper, SkipChangesNoState)
{
    const MessageRecorder recorder;
    Pass pass;
    pass.addInput(QStringLiteral("a"), 1);
    pass.addOutput(QStringLiteral("x"));
    pass.setInput(0, 2);
    pass.setNumOutputUsers(0, 4);
    pass.setErrorCode(5);
    pass.skip(nullptr);
    EXPECT_EQ(pass.inputs[0].value, QVariant(2));
    EXPECT_EQ(pass.outputUsers[0], 4);
    EXPECT_EQ(pass.errorCode(), 5u);
}

TEST(RenderPassHelper, WildIndicesAreHarmless)
{
    Pass pass;
    for (int i = 0; i < 2; ++i) {
        pass.addInput(QStringLiteral("a"), 1);
        pass.addOutput(QStringLiteral("x"));
    }
    for (const int index : kWildIndices) {
        EXPECT_TRUE(pass.inputName(index).isEmpty()) << index;
        EXPECT_TRUE(pass.outputName(index).isEmpty()) << index;
        EXPECT_FALSE(pass.defaultValue(index).isValid()) << index;
        EXPECT_FALSE(pass.output(index).isValid()) << index;
        pass.setInput(index, 9);
        pass.setDefaultValue(index, 9);
        pass.setNumOutputUsers(index, 9);
    }
    EXPECT_EQ(pass.inputs.size(), 2);
    EXPECT_EQ(pass.defaultValues, QVector<QVariant>({1, 1}));
    EXPECT_EQ(pass.outputUsers, QVector<int>({0, 0}));
    EXPECT_FALSE(pass.inputs[0].value.isValid());
    EXPECT_FALSE(pass.inputs[1].value.isValid());
}

TEST(RenderPassHelper, DerivedPassRunsInARenderer)
{
    struct Doubler : RenderPassHelper
    {
        Doubler()
        {
            addInput(QStringLiteral("in"), 5);
            addOutput(QStringLiteral("out"));
        }
        void start(RenderCallbacks*) override { outputs[0].value = inputs[0].value.toInt() * 2; }
    };
    Renderer renderer;
    const int first = renderer.addPass(QStringLiteral("first"), new Doubler, 0);
    const int second = renderer.addPass(QStringLiteral("second"), new Doubler, 0);
    renderer.addOutput(QStringLiteral("result"));
    Graph& graph = *renderer.getGraph();
    EXPECT_EQ(graph.findInput(first, QStringLiteral("in")), 0);
    EXPECT_EQ(graph.findOutput(second, QStringLiteral("out")), 0);
    graph.addEdge(first, 0, second, 0);
    graph.addUpEdge(0, second, 0);
    renderer.setup(nullptr);
    EXPECT_TRUE(renderer.render(nullptr));
    EXPECT_EQ(renderer.output(0), QVariant(20));
}

TEST(RenderPassHelper, PortsAddedAfterRegistrationStayOutOfTheGraph)
{
    Renderer renderer;
    Pass* pass = new Pass;
    pass->addInput(QStringLiteral("early"), 1);
    const int node = renderer.addPass(QStringLiteral("pass"), pass, 0);
    pass->addInput(QStringLiteral("late"), 2);
    pass->addOutput(QStringLiteral("late"));
    EXPECT_EQ(renderer.getGraph()->numInputs(node), 1);
    EXPECT_EQ(renderer.getGraph()->numOutputs(node), 0);
}

TEST(RenderPassHelper, DeferredPassLogsInEveryFrame)
{
    const MessageRecorder recorder;
    Renderer renderer;
    renderer.addParameter(QStringLiteral("Orv_bool_staggeredFirstFrame"), true);
    Graph& graph = *renderer.getGraph();
    for (int i = 0; i < 3; ++i) {
        Pass* pass = new Pass;
        pass->addOutput(QStringLiteral("x"));
        const int node = renderer.addPass(QStringLiteral("pass"), pass, 0);
        graph.addUpEdge(renderer.addOutput(QString()), node, 0);
    }
    renderer.setup(nullptr);
    renderer.render(nullptr);
    EXPECT_EQ(recorder.messages().size(), 2u);
    renderer.render(nullptr);
    EXPECT_EQ(recorder.messages().size(), 3u);
    renderer.render(nullptr);
    renderer.render(nullptr);
    EXPECT_EQ(recorder.messages().size(), 3u);
}
