// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include <Kestrin/Orv/Inspect/Schedule.h>

#include <gtest/gtest.h>

#include "Inspect/support/LargeGraphs.h"
#include "Inspect/support/OddSnapshot.h"
#include "Inspect/support/RandomRenderer.h"
#include "support/RecordingPass.h"

using namespace Kestrin::Orv::Inspect;

namespace {

/// What setup() does, call by call, is what was predicted.
void expectAsPredicted(RandomRenderer& random)
{
    const Schedule schedule = predictSchedule(Snapshot::of(random.renderer));
    random.log.clear();
    random.renderer.setup(nullptr);

    ASSERT_EQ(random.log.size(), static_cast<std::size_t>(schedule.order.size()));
    for (int i = 0; i < schedule.order.size(); ++i) {
        const SetupCall& call = random.log[static_cast<std::size_t>(i)];
        const int node = schedule.order.at(i);
        EXPECT_EQ(call.pass, random.pass(node));
        EXPECT_EQ(schedule.positions.at(node), i);
        EXPECT_EQ(call.users.mid(0, random.graph.numOutputs(node)), schedule.users.at(node));
    }
    EXPECT_EQ(schedule.positions.count(-1) + schedule.order.size(), schedule.positions.size());
}

} // namespace

TEST(Schedule, IsEmptyForAnEmptyRenderer)
{
    const Schedule schedule = predictSchedule(Snapshot());
    EXPECT_TRUE(schedule.order.isEmpty());
    EXPECT_EQ(schedule.positions, QVector<int>{-1});
    EXPECT_EQ(schedule.needed, QVector<bool>{false});
}

TEST(Schedule, PassesComeAfterThoseThatFeedThem)
{
    Scene scene;
    const int a = scene.chain(3);
    const Schedule schedule = predictSchedule(Snapshot::of(scene.renderer));
    EXPECT_EQ(schedule.order, (QVector<int>{a, a + 1, a + 2}));
    EXPECT_EQ(schedule.positions, (QVector<int>{-1, 0, 1, 2}));
}

TEST(Schedule, BranchesFollowTheOrderOfOutputsAndThenOfInputs)
{
    Scene scene;
    const int c = scene.pass("C", 0, 1), b = scene.pass("B", 0, 1), a = scene.pass("A", 0, 1);
    const int mix = scene.pass("Mix", 2, 1);
    const int first = scene.output(), second = scene.output();
    scene.edge(a, 0, mix, 1);
    scene.edge(b, 0, mix, 0);
    scene.up(mix, 0, first);
    scene.up(c, 0, second);
    EXPECT_EQ(predictSchedule(Snapshot::of(scene.renderer)).order, (QVector<int>{b, a, mix, c}));
}

TEST(Schedule, ADisabledPassIsNeededButDoesNotRun)
{
    Scene scene;
    const int a = scene.chain(3);
    scene.renderer.setEnabled(a + 1, false);
    const Schedule schedule = predictSchedule(Snapshot::of(scene.renderer));
    EXPECT_EQ(schedule.order, (QVector<int>{a, a + 2}));
    EXPECT_TRUE(schedule.needed.at(a + 1));
    EXPECT_EQ(schedule.positions.at(a + 1), -1);
    EXPECT_TRUE(schedule.users.at(a + 1).isEmpty());
}

TEST(Schedule, ATargetThatIsAGroupSchedulesWhatFeedsIt)
{
    Scene scene;
    const int a = scene.pass("A", 0, 1);
    const int group = scene.group("Group", 1, 0);
    const int inside = scene.pass("Inside", 1, 0, group);
    scene.edge(a, 0, group, 0);
    scene.down(0, inside, 0);
    scene.renderer.setTarget(group);
    EXPECT_EQ(predictSchedule(Snapshot::of(scene.renderer)).order, QVector<int>{a});
}

TEST(Schedule, TheRootAndMissingNodesAreNoTargets)
{
    Scene scene;
    const int a = scene.pass("A", 0, 1);
    for (const int target : {0, -1, 99, a}) {
        scene.renderer.setTarget(target);
        const Snapshot snapshot = Snapshot::of(scene.renderer);
        EXPECT_EQ(predictSchedule(snapshot).order.size(), target == a ? 1 : 0) << target;
    }
    scene.graph.removeNode(a);
    EXPECT_TRUE(predictSchedule(Snapshot::of(scene.renderer)).order.isEmpty());
}

TEST(Schedule, OutputsThatTheRendererDoesNotKeepNeedNothing)
{
    Scene scene;
    const int a = scene.pass("A", 0, 1);
    const int output = scene.graph.addOutput(0, QStringLiteral("of the root alone"), -1);
    scene.up(a, 0, output);
    Snapshot snapshot = Snapshot::of(scene.renderer);
    EXPECT_TRUE(predictSchedule(snapshot).order.isEmpty());
    snapshot.numOutputs = 1 << 30;
    EXPECT_EQ(predictSchedule(snapshot).order, QVector<int>{a});
}

TEST(Schedule, KnowsThePortThatLedToEachNodeFirst)
{
    Scene scene;
    const int a = scene.pass("A", 0, 1), b = scene.pass("B", 2, 1), c = scene.pass("C", 1, 0);
    const int unused = scene.pass("Unused", 0, 0);
    scene.output();
    const int output = scene.output();
    scene.edge(a, 0, b, 1);
    scene.edge(a, 0, c, 0);
    scene.up(b, 0, output);
    scene.renderer.setTarget(c);
    const Schedule schedule = predictSchedule(Snapshot::of(scene.renderer));
    EXPECT_EQ(schedule.reachedBy.at(b), (PortRef{0, output, true}));
    EXPECT_EQ(schedule.reachedBy.at(a), (PortRef{b, 1, false}));
    EXPECT_EQ(schedule.reachedBy.at(c), PortRef());
    EXPECT_EQ(schedule.reachedBy.at(unused), PortRef());
}

TEST(Schedule, UsersAreCountedAmongThePassesThatAreNeeded)
{
    Scene scene;
    const int a = scene.pass("A", 0, 2);
    const int b = scene.pass("B", 1, 1), off = scene.pass("Off", 1, 1);
    const int unused = scene.pass("Unused", 1, 1);
    scene.edge(a, 0, b, 0);
    scene.edge(a, 0, off, 0);
    scene.edge(a, 0, unused, 0);
    scene.up(b, 0, scene.output());
    scene.up(off, 0, scene.output());
    scene.renderer.setEnabled(off, false);
    const Schedule schedule = predictSchedule(Snapshot::of(scene.renderer));
    EXPECT_EQ(schedule.users.at(a), (QVector<int>{2, 0}));
    EXPECT_EQ(schedule.users.at(b), QVector<int>{1});
    EXPECT_TRUE(schedule.users.at(unused).isEmpty());
}

TEST(Schedule, ReadersInsideAGroupCountAsUsers)
{
    Scene scene;
    const int a = scene.pass("A", 0, 1);
    const int group = scene.group("Group", 1, 2);
    const int x = scene.pass("X", 1, 1, group), y = scene.pass("Y", 1, 1, group);
    scene.edge(a, 0, group, 0);
    scene.down(0, x, 0);
    scene.down(0, y, 0);
    scene.up(x, 0, 0);
    scene.up(y, 0, 1);
    scene.up(group, 0, scene.output());
    EXPECT_EQ(predictSchedule(Snapshot::of(scene.renderer)).users.at(a), QVector<int>{1});
    scene.up(group, 1, scene.output());
    EXPECT_EQ(predictSchedule(Snapshot::of(scene.renderer)).users.at(a), QVector<int>{2});
}

TEST(Schedule, OfAGroupsReadersAsManyCountAsTheOutputHasEdges)
{
    Scene scene;
    const int group = scene.group("Group", 0, 2);
    const int x = scene.pass("X", 0, 1, group);
    const int a = scene.pass("A", 1, 1), b = scene.pass("B", 1, 1);
    scene.up(x, 0, 0);
    scene.edge(group, 0, a, 0);
    scene.edge(group, 0, b, 0);
    scene.up(a, 0, scene.output());
    scene.up(b, 0, scene.output());
    EXPECT_EQ(predictSchedule(Snapshot::of(scene.renderer)).users.at(x), QVector<int>{1});
    scene.up(x, 0, 1);
    EXPECT_EQ(predictSchedule(Snapshot::of(scene.renderer)).users.at(x), QVector<int>{2});
}

TEST(ScheduleProperties, SetupDoesAsPredicted)
{
    forRandomRenderers(expectAsPredicted);
}

TEST(ScheduleTotality, WhateverTheTablesHoldThereIsAnAnswer)
{
    for (unsigned seed = 0; seed < 5000; ++seed) {
        const Snapshot snapshot = oddSnapshot(seed);
        const Schedule schedule = predictSchedule(snapshot);
        EXPECT_EQ(schedule.needed.size(), snapshot.nodes.size());
        EXPECT_EQ(schedule.reachedBy.size(), snapshot.nodes.size());
        EXPECT_EQ(schedule.users.size(), snapshot.nodes.size());
        ASSERT_EQ(schedule.positions.size(), snapshot.nodes.size());
        for (int i = 0; i < schedule.order.size(); ++i)
            EXPECT_EQ(schedule.positions.at(schedule.order.at(i)), i);
    }
}

namespace {

template<typename Graph>
void predict(Graph& graph)
{
    const Schedule schedule = predictSchedule(graph.snapshot);
    ASSERT_TRUE(schedule.needed.at(graph.deepest));
}

} // namespace

TEST(ScheduleGrowth, IsLinearInTheLengthOfAChain)
{
    expectLinearUpTo<LargeChain>(20000, &predict);
}

TEST(ScheduleGrowth, IsLinearInTheWidthOfAFan)
{
    expectLinearUpTo<LargeFan>(20000, &predict);
}

TEST(ScheduleGrowth, IsLinearInThePortsOfAGroup)
{
    expectLinearUpTo<LargeGroup>(20000, &predict);
}

TEST(ScheduleGrowth, IsLinearInTheDepthOfGroups)
{
    expectLinearUpTo<LargeNest>(20000, &predict);
}
