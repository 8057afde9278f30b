// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "support/RecordingPass.h"
#include "support/RendererInternals.h"

#include <gtest/gtest.h>

using namespace Kestrin::Orv;

namespace {

/// What resolving the inputs of a node makes the passes see.
std::string resolve(Scene& s, int node)
{
    s.log.take();
    internals::setRenderPassInputs(internals::of(s.renderer), node);
    return s.log.take();
}

} // namespace

TEST(Inputs, UnconnectedInputTakesItsDefault)
{
    Scene s;
    const int a = s.pass("A", 2, 0);
    EXPECT_EQ(resolve(s, a),
              "A.numInputs A.defaultValue(0) A.setInput(0,A0?) "
              "A.defaultValue(1) A.setInput(1,A1?)");
}

TEST(Inputs, InvalidDefaultIsSetToo)
{
    Scene s;
    const int a = s.pass("A", 1, 0);
    s.at(a).defaults[0] = QVariant();
    EXPECT_EQ(resolve(s, a), "A.numInputs A.defaultValue(0) A.setInput(0,invalid)");
}

TEST(Inputs, ParameterReachesAPass)
{
    Scene s;
    s.parameter(1);
    s.parameter(2);
    const int a = s.pass("A", 1, 0);
    s.down(1, a, 0);
    EXPECT_EQ(resolve(s, a), "A.numInputs A.setInput(0,2)");
    s.renderer.setParameter(1, QVariant());
    EXPECT_EQ(resolve(s, a), "A.numInputs A.setInput(0,invalid)") << "no default in its place";
}

TEST(Inputs, ParameterReachesAPassThroughNestedGroups)
{
    Scene s;
    s.parameter(1);
    s.parameter(2);
    const int g = s.group("G", 3, 0);
    const int h = s.group("H", 2, 0, g);
    const int x = s.pass("X", 2, 0, h);
    s.down(1, g, 2);
    s.down(2, h, 0);
    s.down(0, x, 1);
    EXPECT_EQ(resolve(s, x), "X.numInputs X.defaultValue(0) X.setInput(0,X0?) X.setInput(1,2)");
}

TEST(Inputs, UpstreamOutputIsReadJustBeforeItIsSet)
{
    Scene s;
    const int a = s.pass("A", 0, 2);
    const int b = s.pass("B", 2, 0);
    s.edge(a, 1, b, 0);
    s.edge(a, 0, b, 1);
    s.at(a).results = {QStringLiteral("zero"), QStringLiteral("one")};
    EXPECT_EQ(resolve(s, b),
              "B.numInputs A.output(1) B.setInput(0,one) A.output(0) B.setInput(1,zero)");
}

TEST(Inputs, InvalidUpstreamOutputIsSetToo)
{
    Scene s;
    const int a = s.pass("A", 0, 1);
    const int b = s.pass("B", 1, 0);
    s.edge(a, 0, b, 0);
    EXPECT_EQ(resolve(s, b), "B.numInputs A.output(0) B.setInput(0,invalid)");
}

TEST(Inputs, UpstreamOutputComesOutOfNestedGroups)
{
    Scene s;
    const int g = s.group("G", 0, 3);
    const int h = s.group("H", 0, 2, g);
    const int x = s.pass("X", 0, 2, h);
    const int b = s.pass("B", 1, 0);
    s.up(x, 1, 0);
    s.up(h, 0, 2);
    s.edge(g, 2, b, 0);
    EXPECT_EQ(resolve(s, b), "B.numInputs X.output(1) B.setInput(0,invalid)");
}

TEST(Inputs, UpstreamOutputGoesIntoNestedGroups)
{
    Scene s;
    const int a = s.pass("A", 0, 1);
    const int g = s.group("G", 2, 0);
    const int h = s.group("H", 1, 0, g);
    const int x = s.pass("X", 1, 0, h);
    s.edge(a, 0, g, 1);
    s.down(1, h, 0);
    s.down(0, x, 0);
    EXPECT_EQ(resolve(s, x), "X.numInputs A.output(0) X.setInput(0,invalid)");
}

TEST(Inputs, SiblingInsideAGroupFeedsTheGroupsNestedInput)
{
    Scene s;
    const int g = s.group("G", 0, 0);
    const int y = s.pass("Y", 0, 1, g);
    const int h = s.group("H", 1, 0, g);
    const int x = s.pass("X", 1, 0, h);
    s.edge(y, 0, h, 0);
    s.down(0, x, 0);
    EXPECT_EQ(resolve(s, x), "X.numInputs Y.output(0) X.setInput(0,invalid)");
}

TEST(Inputs, GroupInputThatNothingFeedsGivesTheDefaultOfThePass)
{
    Scene s;
    const int g = s.group("G", 1, 0);
    const int x = s.pass("X", 1, 0, g);
    s.down(0, x, 0);
    EXPECT_EQ(resolve(s, x), "X.numInputs X.defaultValue(0) X.setInput(0,X0?)");
}

TEST(Inputs, GroupOutputThatLeadsNowhereGivesTheDefaultOfThePass)
{
    Scene s;
    const int g = s.group("G", 0, 1);
    const int b = s.pass("B", 1, 0);
    s.edge(g, 0, b, 0);
    EXPECT_EQ(resolve(s, b), "B.numInputs B.defaultValue(0) B.setInput(0,B0?)");
}

TEST(Inputs, DisabledSourceGivesTheDefault)
{
    Scene s;
    const int a = s.pass("A", 0, 1);
    const int b = s.pass("B", 1, 0);
    s.edge(a, 0, b, 0);
    s.at(a).results[0] = 1;
    s.renderer.setEnabled(a, false);
    EXPECT_EQ(resolve(s, b), "B.numInputs B.defaultValue(0) B.setInput(0,B0?)");
    s.renderer.setEnabled(a, true);
    EXPECT_EQ(resolve(s, b), "B.numInputs A.output(0) B.setInput(0,1)");
}

TEST(Inputs, SourceWhoseValueNamesNoPassGivesTheDefault)
{
    Scene s;
    const int a = s.pass("A", 0, 1);
    const int b = s.pass("B", 1, 0);
    s.edge(a, 0, b, 0);
    for (const int value : {-1, 2, 1000}) {
        s.graph.setNodeValue(a, value);
        EXPECT_EQ(resolve(s, b), "B.numInputs B.defaultValue(0) B.setInput(0,B0?)") << value;
    }
}

TEST(Inputs, RemovedSourceGivesTheDefault)
{
    Scene s;
    const int a = s.pass("A", 0, 1);
    const int b = s.pass("B", 1, 0);
    s.edge(a, 0, b, 0);
    s.graph.removeNode(a);
    EXPECT_EQ(resolve(s, b), "B.numInputs B.defaultValue(0) B.setInput(0,B0?)");
}

TEST(Inputs, PassWithoutInputsIsLeftAlone)
{
    Scene s;
    const int a = s.pass("A", 0, 1);
    EXPECT_EQ(resolve(s, a), "A.numInputs");
    s.at(a).extraInputs = -5;
    EXPECT_EQ(resolve(s, a), "A.numInputs");
}

TEST(Inputs, AreAsManyAsThePassHasNow)
{
    Scene s;
    const int a = s.pass("A", 2, 0);
    s.at(a).extraInputs = 1;
    EXPECT_EQ(resolve(s, a),
              "A.numInputs A.defaultValue(0) A.setInput(0,A0?) A.defaultValue(1) "
              "A.setInput(1,A1?) A.defaultValue(2) A.setInput(2,invalid)");
    s.at(a).extraInputs = -1;
    EXPECT_EQ(resolve(s, a), "A.numInputs A.defaultValue(0) A.setInput(0,A0?)");
}

TEST(Inputs, AreResolvedAnewInEveryFrame)
{
    Scene s;
    const int p = s.parameter(4);
    const int a = s.pass("A", 1, 1);
    const int b = s.pass("B", 2, 1);
    s.down(p, a, 0);
    s.edge(a, 0, b, 0);
    s.up(b, 0, s.output());
    s.setup();
    s.log.keepOnly("setInput");
    EXPECT_EQ(s.frame(), "A.setInput(0,4) B.setInput(0,A0#1) B.setInput(1,B1?)");
    s.renderer.setParameter(p, 5);
    s.at(b).defaults[1] = QStringLiteral("new");
    EXPECT_EQ(s.frame(), "A.setInput(0,5) B.setInput(0,A0#2) B.setInput(1,new)");
    s.graph.disconnectInput(b, 0);
    s.down(p, b, 1);
    EXPECT_EQ(s.frame(), "A.setInput(0,5) B.setInput(0,B0?) B.setInput(1,5)");
}

TEST(Inputs, ParameterSetWithoutASetupIsSeenByTheNextFrame)
{
    Scene s;
    const int p = s.parameter(1);
    const int a = s.chain(1);
    s.down(p, a, 0);
    s.setup();
    s.renderer.setParameter(p, 2);
    s.log.keepOnly("setInput setup teardown");
    EXPECT_EQ(s.frame(), "A.setInput(0,2)") << "and nothing was set up anew";
}

TEST(Inputs, DisablingAFeedingPassGivesItsConsumerTheDefault)
{
    Scene s;
    const int a = s.chain(2);
    s.setup();
    s.render();
    s.renderer.setEnabled(a, false);
    s.log.keepOnly("setInput");
    EXPECT_EQ(s.frame(), "B.setInput(0,B0?) B.setInput(0,B0?)") << "in setup and in the frame";
    s.renderer.setEnabled(a, true);
    EXPECT_EQ(s.frame(),
              "A.setInput(0,A0?) B.setInput(0,A0#1) "
              "A.setInput(0,A0?) B.setInput(0,A0#2)");
}

TEST(Inputs, SkippedSourceKeepsFeedingItsOldValue)
{
    Scene s;
    const int a = s.pass("A", 0, 1);
    const int b = s.pass("B", 0, 1);
    const int c = s.pass("C", 2, 1);
    s.edge(a, 0, c, 0);
    s.edge(b, 0, c, 1);
    s.up(c, 0, s.output());
    s.staggered();
    s.setup();
    s.log.keepOnly("setInput");
    EXPECT_EQ(s.frame(), "C.setInput(0,A0#1) C.setInput(1,invalid)");
    EXPECT_EQ(s.frame(), "C.setInput(0,A0#2) C.setInput(1,B0#1)");
}

TEST(Inputs, RootInputWithoutAParameterIsInvalid)
{
    Scene s;
    const int stray =
        s.graph.addInput(Graph::kRootNodeRef, QStringLiteral("stray"), Graph::kInvalidGroupRef);
    const int a = s.pass("A", 1, 0);
    s.down(stray, a, 0);
    EXPECT_EQ(resolve(s, a), "A.numInputs A.setInput(0,invalid)");
}
