// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Inspect/Explain/ExplainedHost.h"

#include <gtest/gtest.h>

#include <Kestrin/Orv/Inspect/ForeignValue.h>

#include <QtCore/QJsonArray>

using namespace Kestrin::Orv;
using namespace Kestrin::Orv::Inspect;

TEST(ExplainInput, AParameterIsShownWithItsValue)
{
    Frame f;
    EXPECT_EQ(f.input(f.shadow, 0), quoted(R"(
//! [parameter]
Shadow.Angle takes the parameter Angle (42 now):
  input Shadow.Angle
  parameter Angle
//! [parameter]
)"));
    f.renderer.setParameter(f.angle, QStringLiteral("two\n\"lines\""));
    EXPECT_EQ(f.input(0, f.angle),
              "Angle is a parameter of the renderer (\"two\\n\\\"lines\\\"\" now).\n");
    f.renderer.setParameter(f.angle, QVariant());
    EXPECT_EQ(f.input(0, f.angle), "Angle is a parameter of the renderer (no value now).\n");
    f.renderer.setParameter(f.angle, 0.9F);
    EXPECT_EQ(f.input(0, f.angle), "Angle is a parameter of the renderer (0.9 now).\n");
    f.renderer.setParameter(f.angle, QByteArray("x"));
    EXPECT_EQ(f.input(0, f.angle),
              "Angle is a parameter of the renderer (a value of the type QByteArray now).\n");
}

TEST(ExplainInput, AValueOfATypeOfTheHostIsShownAsInTheDocument)
{
    Frame f;
    const auto foreign = [](const QJsonValue& value) {
        return QVariant::fromValue(ForeignValue{QStringLiteral("Color"), value});
    };
    f.renderer.setParameter(f.angle, foreign(QJsonArray{0.5, QStringLiteral("a\nb")}));
    EXPECT_EQ(f.input(0, f.angle),
              "Angle is a parameter of the renderer ([0.5,\"a\\nb\"] of the type Color now).\n");
    f.renderer.setParameter(f.angle, foreign(QString(100, QLatin1Char('x'))));
    EXPECT_EQ(f.input(0, f.angle),
              "Angle is a parameter of the renderer (a value of the type Color now).\n");
}

TEST(ExplainInput, AnUpstreamOutputIsShownWithEveryGroupBoundary)
{
    Frame f;
    EXPECT_EQ(f.input(f.toneMap, 0), quoted(R"(
//! [output]
ToneMap.Color takes the output Bloom/Glow.Color:
  input ToneMap.Color
  output Bloom.Color
  output Bloom/Glow.Color
//! [output]
)"));
    EXPECT_EQ(f.input(f.blur, 0),
              "Bloom/Blur.Color takes the output Shadow.Map:\n"
              "  input Bloom/Blur.Color\n"
              "  input Bloom.Scene\n"
              "  output Shadow.Map\n");
}

TEST(ExplainInput, OfAPassThatDoesNotRunTheInputThatItWouldTakeIsNamed)
{
    Frame f;
    EXPECT_EQ(f.input(f.debug, 0),
              "Debug.Exposure would take the output LightMeter.Exposure:\n"
              "  input Debug.Exposure\n"
              "  output LightMeter.Exposure\n");
}

TEST(ExplainInput, AnUnfedInputTakesItsDefault)
{
    Frame f;
    EXPECT_EQ(f.input(f.shadow, 1),
              "Shadow.Bias takes its default (0.5), because nothing feeds it.\n");
    EXPECT_EQ(f.input(f.glow, 1), quoted(R"(
//! [unfed]
Bloom/Glow.Mask takes its default (0.5), because nothing feeds the input Bloom.Spare:
  input Bloom/Glow.Mask
  input Bloom.Spare
//! [unfed]
)"));
}

TEST(ExplainInput, AGroupOutputWithoutAPassBehindLeavesTheDefault)
{
    Frame f;
    EXPECT_EQ(f.input(f.toneMap, 1), quoted(R"(
//! [no-pass-behind]
ToneMap.Other takes its default (0.5), because no pass feeds the output Bloom.Spare:
  input ToneMap.Other
  output Bloom.Spare
//! [no-pass-behind]
)"));
}

TEST(ExplainInput, ADisabledPassUpstreamIsNamed)
{
    Frame f;
    f.renderer.setEnabled(f.glow, false);
    EXPECT_EQ(f.input(f.toneMap, 0), quoted(R"(
//! [upstream-disabled]
ToneMap.Color takes its default (0.5), because Bloom/Glow, which feeds it, is disabled:
  input ToneMap.Color
  output Bloom.Color
  output Bloom/Glow.Color
//! [upstream-disabled]
)"));
}

TEST(ExplainInput, ANullPassUpstreamIsNamed)
{
    Frame f;
    const int null = f.renderer.addPass(QStringLiteral("Null"), nullptr, 0);
    const int output = f.graph.addOutput(null, QStringLiteral("Out"), -1);
    f.graph.addEdge(null, output, f.shadow, 1);
    EXPECT_EQ(f.input(f.shadow, 1),
              "Shadow.Bias takes its default (0.5), because Null, which feeds it, has no pass:\n"
              "  input Shadow.Bias\n"
              "  output Null.Out\n");
}

TEST(ExplainInput, AGroupCarriesWhatItIsFed)
{
    Frame f;
    EXPECT_EQ(f.input(f.bloom, 0),
              "Bloom.Scene carries the output Shadow.Map:\n"
              "  input Bloom.Scene\n"
              "  output Shadow.Map\n");
    EXPECT_EQ(f.input(f.bloom, 1), "Bloom.Spare carries nothing, because nothing feeds it.\n");
}

TEST(ExplainInput, NodesAndPortsThatDoNotExistAreNamedAsSuch)
{
    Frame f;
    EXPECT_EQ(f.input(f.toneMap, 2), "ToneMap has no such input.\n");
    EXPECT_EQ(f.input(0, -1), "The renderer has no such input.\n");
    EXPECT_EQ(f.input(-7, 0), "There is no node -7.\n");
}
