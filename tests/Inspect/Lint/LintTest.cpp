// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Inspect/Lint/LintedHost.h"
#include "Inspect/support/OddSnapshot.h"

#include <gtest/gtest.h>

#include <QtCore/QFile>
#include <QtCore/QRegularExpression>

using namespace Kestrin::Orv;
using namespace Kestrin::Orv::Inspect;

namespace {

/// A small deferred renderer: shadow map, G-buffer, occlusion and bloom in groups, with one group
/// in another, tone mapping.
struct Deferred : Host
{
    Deferred()
    {
        parameter("Angle");
        parameter("Exposure");
        parameter("Orv_bool_staggeredFirstFrame", false);
        output("Picture");
        output("Debug");
        const int cameras = pass("Cameras", "Angle", "View Projection LightMatrix");
        const int shadow = pass("ShadowMap", "LightMatrix", "ShadowDepth");
        const int gBuffer = pass("GBuffer", "View Projection", "Albedo Normal Depth");
        const int occlusion = group("AmbientOcclusion", "Normal Depth Projection", "Occlusion");
        const int raw = pass("Occlusion", "Normal Depth Projection", "RawOcclusion", occlusion);
        const int blur = pass("Blur", "RawOcclusion Depth Projection", "Occlusion", occlusion);
        const int lighting =
            pass("Lighting", "Albedo Normal Depth Occlusion ShadowDepth View", "Color Terms");
        const int bloom = group("Bloom", "Color", "Bloom");
        const int threshold = pass("Threshold", "Color", "Bright", bloom);
        const int pyramid = group("Pyramid", "Color", "Color", bloom);
        const int half = pass("Half", "Color", "Color", pyramid);
        const int full = pass("Full", "Color", "Color", pyramid);
        const int glow = pass("Glow", "Color", "Bloom", bloom);
        const int toneMap = pass("ToneMap", "Color Bloom Exposure", "Picture");
        const int debug = pass("DebugView", "Terms Depth", "Debug");

        graph.connectByName(raw, blur);
        graph.connectByName(half, full);
        graph.connectDownByName(half);
        graph.connectUpByName(full);
        link(threshold, "Bright", pyramid, "Color");
        graph.connectByName(pyramid, glow);
        graph.connectDownByName(threshold);
        graph.connectUpByName(glow);
        graph.connectDownByName(raw);
        graph.connectDownByName(blur);
        graph.connectUpByName(blur);
        for (const int node : {shadow, gBuffer, occlusion, lighting})
            graph.connectByName(cameras, node);
        graph.connectByName(gBuffer, occlusion);
        for (const int node : {shadow, gBuffer, occlusion})
            graph.connectByName(node, lighting);
        graph.connectByName(lighting, bloom);
        graph.connectByName(lighting, toneMap);
        graph.connectByName(bloom, toneMap);
        graph.connectByName(lighting, debug);
        graph.connectByName(gBuffer, debug);
        for (int i = 0; i < graph.numNodes(0); ++i)
            graph.connectDownByName(graph.getNode(i, 0));
        graph.connectUpByName(toneMap);
        graph.connectUpByName(debug);
    }
};

} // namespace

TEST(Lint, AnEmptyRendererHasNoFindings)
{
    EXPECT_EQ(linted(Snapshot()), "");
}

TEST(Lint, AChainThatFeedsAnOutputHasNoFindings)
{
    Chain host;
    EXPECT_EQ(linted(host), "");
}

TEST(Lint, AWholeDeferredRendererHasNoFindings)
{
    Deferred host;
    EXPECT_EQ(linted(host), "");
}

TEST(Lint, FindingsComeInTheOrderOfNodesThenPorts)
{
    Host host;
    host.pass("B", "in", "out", 0, QVariant());
    host.pass("A", "in", "", 0, QVariant());
    host.output("Picture");
    std::string codes;
    const QVector<Finding> findings = lint(host.snapshot());
    for (const Finding& finding : findings)
        codes += std::to_string(finding.node) + finding.code.toStdString() + " ";
    EXPECT_EQ(codes,
              "0dead-output 1unneeded-pass 1invalid-default 2unneeded-pass 2invalid-default ");
}

TEST(Lint, NamesWithPercentSignsAreShownAsTheyAre)
{
    Host host;
    host.pass("%1", "", "");
    host.pass("%2", "", "");
    EXPECT_EQ(found(host.snapshot(), "unneeded-pass").at(1).text.toStdString().substr(0, 9),
              "%252 neve");
}

TEST(LintOddSnapshots, WhateverTheFieldsHoldNothingIsReadOutside)
{
    for (unsigned seed = 0; seed < 3000; ++seed) {
        const Snapshot snapshot = oddSnapshot(seed);
        const QVector<Finding> findings = lint(snapshot);
        for (const Finding& finding : findings) {
            EXPECT_LT(finding.node, qMax(1, snapshot.nodes.size())) << seed;
            EXPECT_FALSE(finding.text.contains(QLatin1Char('\n'))) << seed;
            EXPECT_FALSE(finding.text.endsWith(QLatin1Char(' '))) << seed;
        }
    }
}

TEST(LintCodes, AreInAlphabeticalOrder)
{
    const QVector<LintCode> codes = lintCodes();
    for (int i = 1; i < codes.size(); ++i)
        EXPECT_LT(codes.at(i - 1).code, codes.at(i).code);
}

TEST(LintCodes, AreThoseThatAreDocumented)
{
    QFile file(QStringLiteral(ORV_SOURCE_DIR "/docs/lint.md"));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QString text = QString::fromUtf8(file.readAll());
    std::string documented;
    const QRegularExpression heading(QStringLiteral("^## ([a-z-]+)$"),
                                     QRegularExpression::MultilineOption);
    for (auto match = heading.globalMatch(text); match.hasNext();)
        documented += match.next().captured(1).toStdString() + "\n";
    std::string known;
    const QVector<LintCode> codes = lintCodes();
    for (const LintCode& code : codes)
        known += code.code.toStdString() + "\n";
    EXPECT_EQ(documented, known);
}
