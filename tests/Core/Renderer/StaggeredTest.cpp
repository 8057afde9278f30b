// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "support/Growth.h"
#include "support/LightPass.h"
#include "support/RecordingPass.h"
#include "support/RendererInternals.h"

#include <gtest/gtest.h>

using namespace Kestrin::Orv;

TEST(Staggered, FramesBringPassesUpOneByOne)
{
    Scene s;
    s.staggered();
    s.chain(4);
    s.setup();
    s.log.keepOnly("start skip");
    EXPECT_EQ(s.frame(), "A.start(7) B.skip(7) C.skip(7) D.skip(7)");
    EXPECT_EQ(s.frame(), "A.start(7) B.start(7) C.skip(7) D.skip(7)");
    EXPECT_EQ(s.frame(), "A.start(7) B.start(7) C.start(7) D.skip(7)");
    EXPECT_EQ(s.frame(), "A.start(7) B.start(7) C.start(7) D.start(7)");
    EXPECT_EQ(s.frame(), "A.start(7) B.start(7) C.start(7) D.start(7)");
}

TEST(Staggered, WithoutTheParameterAllStartAtOnce)
{
    Scene s;
    s.chain(3);
    s.setup();
    s.log.keepOnly("start skip");
    EXPECT_EQ(s.frame(), "A.start(7) B.start(7) C.start(7)");
}

TEST(Staggered, SkippedPassesAreProcessedInAllOtherWays)
{
    Scene s;
    s.staggered();
    s.chain(2);
    s.setup();
    s.log.keepOnly("clearErrorCode beginFrame start skip isFinished endFrame errorCode");
    EXPECT_EQ(s.frame(),
              "A.clearErrorCode A.beginFrame(7) A.start(7) A.isFinished A.endFrame(7) "
              "A.errorCode "
              "B.clearErrorCode B.beginFrame(7) B.skip(7) B.isFinished B.endFrame(7) "
              "B.errorCode");
    EXPECT_EQ(s.renderer.getNumPasses(), 2);
}

TEST(Staggered, SkippedPassThatFailsEndsTheFrame)
{
    Scene s;
    s.staggered();
    const int a = s.chain(3);
    s.at(a + 1).failSkip = 4;
    s.setup();
    s.log.keepOnly("start skip");
    EXPECT_FALSE(s.render());
    EXPECT_EQ(s.log.take(), "A.start(7) B.skip(7)");
    EXPECT_EQ(s.renderer.getNumPasses(), 2);
}

TEST(Staggered, PassesBehindANewOneAreSkippedThoughStartedBefore)
{
    Scene s;
    s.staggered();
    const int a = s.chain(4);
    s.renderer.setEnabled(a + 1, false);
    s.setup();
    s.log.keepOnly("start skip");
    for (int i = 0; i < 3; ++i)
        s.frame();
    EXPECT_EQ(s.frame(), "A.start(7) C.start(7) D.start(7)");
    s.renderer.setEnabled(a + 1, true);
    EXPECT_EQ(s.frame(), "A.start(7) B.start(7) C.skip(7) D.skip(7)");
    EXPECT_EQ(s.frame(), "A.start(7) B.start(7) C.start(7) D.start(7)");
}

TEST(Staggered, NewPassThatFailsHasStartedAllTheSame)
{
    Scene s;
    s.staggered();
    const int a = s.chain(2);
    s.at(a).failStart = 1;
    s.setup();
    s.log.keepOnly("start skip");
    EXPECT_EQ(s.frame(), "A.start(7)");
    s.at(a).failStart = 0;
    EXPECT_EQ(s.frame(), "A.start(7) B.start(7)");
}

TEST(Staggered, SwitchedOffMidwayStartsAllAtOnce)
{
    Scene s;
    const int parameter = s.staggered();
    s.chain(4);
    s.setup();
    s.log.keepOnly("start skip");
    EXPECT_EQ(s.frame(), "A.start(7) B.skip(7) C.skip(7) D.skip(7)");
    s.renderer.setParameter(parameter, false);
    EXPECT_EQ(s.frame(), "A.start(7) B.start(7) C.start(7) D.start(7)");
    s.renderer.setParameter(parameter, true);
    EXPECT_EQ(s.frame(), "A.start(7) B.start(7) C.skip(7) D.skip(7)")
        << "starts while it was off are not remembered";
}

TEST(Staggered, SwitchedOnLaterHoldsRunningPassesBack)
{
    Scene s;
    s.chain(2);
    s.setup();
    s.render();
    s.render();
    s.staggered();
    s.log.keepOnly("start skip");
    EXPECT_EQ(s.frame(), "A.start(7) B.skip(7)");
    EXPECT_EQ(s.frame(), "A.start(7) B.start(7)");
}

TEST(Staggered, StartedPassesOutlastTeardownAndSetup)
{
    Scene s;
    const int parameter = s.staggered();
    s.chain(3);
    s.setup();
    s.render();
    s.render();
    s.teardown();
    s.setup();
    s.setup();
    s.renderer.setParameter(parameter, false);
    s.renderer.setParameter(parameter, true);
    s.log.keepOnly("start skip");
    EXPECT_EQ(s.frame(), "A.start(7) B.start(7) C.start(7)") << "A and B are not new";
}

TEST(Staggered, DisabledPassesTakeNoFrame)
{
    Scene s;
    s.staggered();
    const int a = s.chain(3);
    s.renderer.setEnabled(a + 1, false);
    s.setup();
    s.log.keepOnly("start skip");
    EXPECT_EQ(s.frame(), "A.start(7) C.skip(7)");
    EXPECT_EQ(s.frame(), "A.start(7) C.start(7)");
}

TEST(Staggered, PassAtASecondNodeIsNewThere)
{
    Scene s;
    s.staggered();
    const int a = s.pass("A", 0, 1);
    const int b = s.pass("B", 0, 1);
    s.up(a, 0, s.output());
    s.up(b, 0, s.output());
    s.graph.setNodeValue(b, s.graph.nodeValue(a));
    s.setup();
    s.log.keepOnly("start skip");
    EXPECT_EQ(s.frame(), "A.start(7) A.skip(7)") << "nodes are remembered, not passes";
    EXPECT_EQ(s.frame(), "A.start(7) A.start(7)");
}

TEST(Staggered, NewStartOfOneFrameDoesNotHoldTheNextBack)
{
    Scene s;
    s.staggered();
    s.chain(1);
    s.setup();
    s.log.keepOnly("start skip");
    EXPECT_EQ(s.frame(), "A.start(7)");
    EXPECT_EQ(s.frame(), "A.start(7)");
}

TEST(Staggered, PassRenderedOnItsOwnIsSkippedOnceANewOneHasStarted)
{
    Scene s;
    s.staggered();
    const int a = s.chain(2);
    s.log.keepOnly("start skip");
    internals::render(internals::of(s.renderer), a + 1, callbacksNo(7));
    internals::render(internals::of(s.renderer), a, callbacksNo(7));
    EXPECT_EQ(s.log.take(), "B.start(7) A.skip(7)");
    s.setup();
    EXPECT_EQ(s.frame(), "A.start(7) B.skip(7)");
    EXPECT_EQ(s.frame(), "A.start(7) B.start(7)");
}

namespace {

/// A renderer in which all of so many passes have been started before its next frame.
struct AllStarted
{
    explicit AllStarted(int count)
    {
        renderer.addParameter(QStringLiteral("Orv_bool_staggeredFirstFrame"), true);
        Graph& graph = *renderer.getGraph();
        QVector<int> nodes;
        for (int i = 0; i < count; ++i)
            nodes.append(renderer.addPass(QString(), new LightPass(0, 1), 0));
        // A frame of the first pass alone lets the next call start one more.
        graph.addUpEdge(renderer.addOutput(QString()), nodes[0], 0);
        renderer.setup(nullptr);
        for (const int node : nodes) {
            renderer.render(nullptr);
            internals::render(internals::of(renderer), node, nullptr);
        }
        EXPECT_EQ(renderer.getGraphProcessingMode(), 2);

        for (int i = 1; i < count; ++i)
            graph.addUpEdge(renderer.addOutput(QString()), nodes[i], 0);
        renderer.setup(nullptr);
    }
    Renderer renderer;
};

} // namespace

TEST(StaggeredGrowth, AFrameIsLinearInThePasses)
{
    expectLinearUpTo<AllStarted>(40000, [](AllStarted& s) {
        s.renderer.render(nullptr);
        EXPECT_GE(s.renderer.getNumPasses(), 5000) << "all of them";
    });
}
