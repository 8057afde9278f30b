// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "support/RecordingPass.h"

#include <gtest/gtest.h>

using namespace Kestrin::Orv;

TEST(Mode, IsZeroWithoutPasses)
{
    Scene s;
    EXPECT_EQ(s.renderer.getGraphProcessingMode(), 0);
    s.staggered();
    s.group("G", 1, 1);
    s.output();
    EXPECT_EQ(s.renderer.getGraphProcessingMode(), 0);
}

TEST(Mode, IsTwoWithoutTheStaggeredFirstFrame)
{
    Scene s;
    const int a = s.chain(2);
    EXPECT_EQ(s.renderer.getGraphProcessingMode(), 2);
    s.renderer.setEnabled(a, false);
    EXPECT_EQ(s.renderer.getGraphProcessingMode(), 2);
    s.setup();
    s.render();
    EXPECT_EQ(s.renderer.getGraphProcessingMode(), 2);
}

TEST(Mode, IsOneUntilEveryEnabledPassHasStartedOnce)
{
    Scene s;
    s.staggered();
    s.chain(3);
    EXPECT_EQ(s.renderer.getGraphProcessingMode(), 1);
    s.setup();
    EXPECT_EQ(s.renderer.getGraphProcessingMode(), 1);
    s.render();
    EXPECT_EQ(s.renderer.getGraphProcessingMode(), 1);
    s.render();
    EXPECT_EQ(s.renderer.getGraphProcessingMode(), 1);
    s.render();
    EXPECT_EQ(s.renderer.getGraphProcessingMode(), 2);
    s.render();
    EXPECT_EQ(s.renderer.getGraphProcessingMode(), 2);
}

TEST(Mode, DisabledPassesAreNotWaitedFor)
{
    Scene s;
    s.staggered();
    const int a = s.chain(2);
    s.renderer.setEnabled(a + 1, false);
    s.setup();
    s.render();
    EXPECT_EQ(s.renderer.getGraphProcessingMode(), 2);
    s.renderer.setEnabled(a + 1, true);
    EXPECT_EQ(s.renderer.getGraphProcessingMode(), 1);
}

TEST(Mode, PassDisabledAfterItsStartKeepsTheModeAtOne)
{
    Scene s;
    s.staggered();
    const int a = s.chain(2);
    s.setup();
    s.render();
    s.render();
    EXPECT_EQ(s.renderer.getGraphProcessingMode(), 2);
    s.renderer.setEnabled(a, false);
    EXPECT_EQ(s.renderer.getGraphProcessingMode(), 1);
    for (int i = 0; i < 3; ++i)
        s.render();
    EXPECT_EQ(s.renderer.getGraphProcessingMode(), 1);
    s.teardown();
    EXPECT_EQ(s.renderer.getGraphProcessingMode(), 1);
    s.renderer.setEnabled(a, true);
    EXPECT_EQ(s.renderer.getGraphProcessingMode(), 2);
}

TEST(Mode, ComparesCountsAndNotPasses)
{
    Scene s;
    s.staggered();
    const int a = s.chain(2);
    s.setup();
    s.render();
    EXPECT_EQ(s.renderer.getGraphProcessingMode(), 1);
    s.renderer.setEnabled(a, false);
    EXPECT_EQ(s.renderer.getGraphProcessingMode(), 2) << "A has started, B is enabled: one each";
}

TEST(Mode, EnabledPassThatIsNeverScheduledKeepsTheModeAtOne)
{
    Scene s;
    s.staggered();
    s.chain(1);
    s.pass("lone", 0, 0);
    s.setup();
    for (int i = 0; i < 3; ++i)
        s.render();
    EXPECT_EQ(s.renderer.getGraphProcessingMode(), 1);
}

TEST(Mode, StartsWithoutTheStaggeredFirstFrameDoNotCount)
{
    Scene s;
    const int parameter = s.staggered(false);
    s.chain(1);
    s.setup();
    s.render();
    s.renderer.setParameter(parameter, true);
    EXPECT_EQ(s.renderer.getGraphProcessingMode(), 1);
}

TEST(Mode, SwitchingTheParameterOffAnswersTwoAtOnce)
{
    Scene s;
    const int parameter = s.staggered();
    s.chain(3);
    s.setup();
    s.render();
    s.renderer.setParameter(parameter, false);
    EXPECT_EQ(s.renderer.getGraphProcessingMode(), 2);
}

TEST(Mode, IsTwoWhenEveryPassIsDisabledAndNoneHasStarted)
{
    Scene s;
    s.staggered();
    const int a = s.chain(1);
    s.renderer.setEnabled(a, false);
    EXPECT_EQ(s.renderer.getGraphProcessingMode(), 2);
}

TEST(Mode, RemovedNodesKeepTheirPassCounted)
{
    Scene s;
    s.staggered();
    const int a = s.chain(1);
    s.graph.removeNode(a);
    s.setup();
    s.render();
    EXPECT_EQ(s.renderer.getGraphProcessingMode(), 1);
}
