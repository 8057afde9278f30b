// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include <Kestrin/Orv/Inspect/Schedule.h>

#include "RandomRenderer.h"

#include <gtest/gtest.h>

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
}

TEST(ScheduleProperties, SetupDoesAsPredicted)
{
    forRandomRenderers(expectAsPredicted);
}
