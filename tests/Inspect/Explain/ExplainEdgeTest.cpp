// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Inspect/Explain/ExplainedHost.h"

#include <gtest/gtest.h>

using namespace Kestrin::Orv;
using namespace Kestrin::Orv::Inspect;

TEST(ExplainEdge, AnEdgeThatTheGraphTakesIsAccepted)
{
    Frame f;
    EXPECT_EQ(f.edge({f.meter, 0, true}, {f.toneMap, 1, false}),
              "An edge from the output LightMeter.Exposure to the input ToneMap.Other is refused: "
              "ToneMap.Other is already fed by the output Bloom.Spare.\n");
    f.graph.disconnectInput(f.toneMap, 1);
    EXPECT_EQ(f.edge({f.meter, 0, true}, {f.toneMap, 1, false}),
              "An edge from the output LightMeter.Exposure to the input ToneMap.Other is "
              "accepted.\n");
    EXPECT_EQ(f.edge({f.blur, 0, true}, {f.bloom, 1, true}),
              "An edge from the output Bloom/Blur.Color to the output Bloom.Spare is accepted.\n");
    f.graph.disconnectInput(f.glow, 1);
    EXPECT_EQ(f.edge({f.bloom, 0, false}, {f.glow, 1, false}),
              "An edge from the input Bloom.Scene to the input Bloom/Glow.Mask is accepted.\n");
    f.graph.disconnectInput(f.shadow, 0);
    EXPECT_EQ(f.edge({0, f.angle, false}, {f.shadow, 0, false}),
              "An edge from the parameter Angle to the input Shadow.Angle is accepted.\n");
}

TEST(ExplainEdge, TheSourceOfAFedPortIsNamed)
{
    Frame f;
    EXPECT_EQ(f.edge({f.meter, 0, true}, {0, f.picture, true}), quoted(R"(
//! [already-fed]
An edge from the output LightMeter.Exposure to the output Picture is refused: Picture is already fed by the output ToneMap.Color.
//! [already-fed]
)"));
    EXPECT_EQ(f.edge({f.bloom, 1, false}, {f.blur, 0, false}),
              "An edge from the input Bloom.Spare to the input Bloom/Blur.Color is refused: "
              "Bloom/Blur.Color is already fed by the input Bloom.Scene.\n");
}

TEST(ExplainEdge, AnOutputThatLeavesItsGroupFeedsNoSibling)
{
    Frame f;
    EXPECT_EQ(f.edge({f.toneMap, 0, true}, {f.shadow, 1, false}), quoted(R"(
//! [leaves-group]
An edge from the output ToneMap.Color to the input Shadow.Bias is refused: the oldest edge of ToneMap.Color leads to the output Picture, not to a sibling.
//! [leaves-group]
)"));
}

TEST(ExplainEdge, ACycleIsListedPortByPort)
{
    Frame f;
    EXPECT_EQ(f.edge({f.meter, 0, true}, {f.shadow, 1, false}), quoted(R"(
//! [cycle]
An edge from the output LightMeter.Exposure to the input Shadow.Bias is refused: it would close a cycle:
  output LightMeter.Exposure
  input LightMeter.Color
  output Bloom.Color
  output Bloom/Glow.Color
  input Bloom/Glow.Color
  output Bloom/Blur.Color
  input Bloom/Blur.Color
  input Bloom.Scene
  output Shadow.Map
  input Shadow.Bias
//! [cycle]
)"));
}

TEST(ExplainEdge, APassCannotFeedItself)
{
    Frame f;
    EXPECT_EQ(f.edge({f.shadow, 0, true}, {f.shadow, 1, false}),
              "An edge from the output Shadow.Map to the input Shadow.Bias is refused: it would "
              "close a cycle:\n"
              "  output Shadow.Map\n"
              "  input Shadow.Bias\n");
}

TEST(ExplainEdge, AFedInputIsReportedBeforeACycle)
{
    Frame f;
    EXPECT_EQ(f.edge({f.meter, 0, true}, {f.meter, 0, false}),
              "An edge from the output LightMeter.Exposure to the input LightMeter.Color is "
              "refused: LightMeter.Color is already fed by the output Bloom.Color.\n");
}

TEST(ExplainEdge, AnEdgeBetweenUnrelatedNodesIsAcceptedButCarriesNothing)
{
    Frame f;
    const int other = f.pass("Other", "In", "");
    EXPECT_EQ(f.edge({f.blur, 0, true}, {other, 0, false}), quoted(R"(
//! [not-related]
An edge from the output Bloom/Blur.Color to the input Other.In is accepted but does not carry that output: the nodes are not siblings.
//! [not-related]
)"));
}

TEST(ExplainEdge, AnEdgeFromAGroupsOutputIntoTheGroupCarriesAnother)
{
    Frame f;
    f.graph.disconnectInput(f.glow, 1);
    EXPECT_EQ(f.edge({f.bloom, 0, true}, {f.glow, 1, false}),
              "An edge from the output Bloom.Color to the input Bloom/Glow.Mask is accepted but "
              "does not carry that output: the nodes are not siblings.\n");
    ASSERT_GE(f.graph.addEdge(f.bloom, 1, f.glow, 1), 0);
    EXPECT_EQ(
        f.input(f.glow, 1),
        "Bloom/Glow.Mask takes its default (0.5), because nothing feeds the input Bloom.Spare:\n"
        "  input Bloom/Glow.Mask\n"
        "  input Bloom.Spare\n");
}

TEST(ExplainEdge, NoEdgeBypassesABoundary)
{
    Frame f;
    EXPECT_EQ(
        f.edge({f.blur, 0, true}, {0, f.picture, true}),
        "An edge from the output Bloom/Blur.Color to the output Picture is refused: an output "
        "feeds another only from a child to its group.\n");
    EXPECT_EQ(f.edge({f.shadow, 0, true}, {f.bloom, 1, true}),
              "An edge from the output Shadow.Map to the output Bloom.Spare is refused: an output "
              "feeds another only from a child to its group.\n");
    EXPECT_EQ(f.edge({0, f.angle, false}, {f.glow, 1, false}),
              "An edge from the parameter Angle to the input Bloom/Glow.Mask is refused: an input "
              "feeds another only from a group to its child.\n");
    EXPECT_EQ(f.edge({f.bloom, 0, false}, {f.bloom, 1, true}),
              "An edge from the input Bloom.Scene to the output Bloom.Spare is refused: no edge "
              "leads from an input to an output.\n");
}

TEST(ExplainEdge, NodesAndPortsThatDoNotExistAreNamedAsSuch)
{
    Frame f;
    EXPECT_EQ(f.edge({f.shadow, 3, true}, {f.toneMap, 1, false}),
              "An edge from the output Shadow.[no output 3] to the input ToneMap.Other is refused: "
              "the output Shadow.[no output 3] does not exist.\n");
    EXPECT_EQ(f.edge({f.shadow, 0, true}, {f.toneMap, 9, false}),
              "An edge from the output Shadow.Map to the input ToneMap.[no input 9] is refused: "
              "the input ToneMap.[no input 9] does not exist.\n");
    f.graph.removeNode(f.shadow);
    EXPECT_EQ(f.edge({f.shadow, 0, true}, {f.toneMap, 1, false}),
              "An edge from the output Shadow[removed 1].Map to the input ToneMap.Other is "
              "refused: Shadow[removed 1] does not exist.\n");
    EXPECT_EQ(f.edge({f.toneMap, 0, true}, {42, 1, false}),
              "An edge from the output ToneMap.Color to the input node 42.[no input 1] is refused: "
              "node 42 does not exist.\n");
}
