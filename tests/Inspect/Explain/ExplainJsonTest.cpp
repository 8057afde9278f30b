// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Inspect/Explain/ExplainedHost.h"

#include <gtest/gtest.h>

using namespace Kestrin::Orv;
using namespace Kestrin::Orv::Inspect;

TEST(ExplainJson, NamesNodesByTheirPaths)
{
    Frame f;
    f.renderer.setEnabled(f.glow, false);
    f.graph.removeNode(f.blur);
    const Snapshot snapshot = Snapshot::of(f.renderer);
    const Explainer explainer(snapshot);
    const auto node = [&](int ref) { return json(explainer.toJson(explainer.node(ref))); };
    EXPECT_EQ(node(f.toneMap),
              R"({"enabled":true,"node":"ToneMap","of":2,"output":"Picture",)"
              R"("path":[{"output":"Picture"},{"output":"ToneMap.Color"}],"position":1,)"
              R"("state":"scheduled"})");
    EXPECT_EQ(
        node(f.glow),
        R"({"enabled":false,"node":"Bloom/Glow","output":"Picture",)"
        R"("path":[{"output":"Picture"},{"output":"ToneMap.Color"},{"input":"ToneMap.Color"},)"
        R"({"output":"Bloom.Color"},{"output":"Bloom/Glow.Color"}],"state":"disabled"})");
    EXPECT_EQ(node(f.meter),
              R"({"enabled":true,"nearest":"Debug","nearestPath":[{"input":"Debug.Exposure"},)"
              R"({"output":"LightMeter.Exposure"}],"node":"LightMeter","state":"not-needed"})");
    EXPECT_EQ(node(f.blur), R"({"enabled":true,"node":"Bloom/Blur[removed 3]","state":"removed"})");
    EXPECT_EQ(node(99), R"({"node":"","state":"missing"})");
}

TEST(ExplainJson, NamesTheTargetByItsPath)
{
    Frame f;
    f.renderer.setTarget(f.debug);
    const Snapshot snapshot = Snapshot::of(f.renderer);
    const Explainer explainer(snapshot);
    EXPECT_EQ(json(explainer.toJson(explainer.node(f.debug))),
              R"({"enabled":true,"node":"Debug","of":6,"path":[],"position":5,)"
              R"("state":"scheduled","target":"Debug"})");
    EXPECT_EQ(json(explainer.toJson(explainer.node(f.bloom))),
              R"({"node":"Bloom","output":"Picture","path":[{"output":"Picture"},)"
              R"({"output":"ToneMap.Color"},{"input":"ToneMap.Other"},{"output":"Bloom.Spare"}],)"
              R"("state":"group"})");
}

TEST(ExplainJson, HoldsInputs)
{
    Frame f;
    const Snapshot snapshot = Snapshot::of(f.renderer);
    const Explainer explainer(snapshot);
    const auto input = [&](int node, int index) {
        return json(explainer.toJson(explainer.input(node, index)));
    };
    EXPECT_EQ(input(f.shadow, 0),
              R"({"end":{"input":"Angle"},"input":"Shadow.Angle",)"
              R"("path":[{"input":"Shadow.Angle"},{"input":"Angle"}],"source":"parameter",)"
              R"("value":42})");
    EXPECT_EQ(input(f.blur, 0),
              R"({"end":{"output":"Shadow.Map"},"input":"Bloom/Blur.Color",)"
              R"("path":[{"input":"Bloom/Blur.Color"},{"input":"Bloom.Scene"},)"
              R"({"output":"Shadow.Map"}],"source":"output"})");
    EXPECT_EQ(input(f.shadow, 1),
              R"({"cause":"unfed","end":{"input":"Shadow.Bias"},"input":"Shadow.Bias",)"
              R"("path":[{"input":"Shadow.Bias"}],"source":"default","value":0.5})");
    EXPECT_EQ(input(f.shadow, 9), R"({"input":"Shadow.[no input 9]","source":"no-such-input"})");
}

TEST(ExplainJson, HoldsEdges)
{
    Frame f;
    const Snapshot snapshot = Snapshot::of(f.renderer);
    const Explainer explainer(snapshot);
    const auto edge = [&](const PortRef& from, const PortRef& to) {
        return json(explainer.toJson(explainer.edge(from, to)));
    };
    EXPECT_EQ(edge({f.shadow, 0, true}, {f.shadow, 1, false}),
              R"({"cycle":[{"output":"Shadow.Map"},{"input":"Shadow.Bias"}],)"
              R"("from":{"output":"Shadow.Map"},"made":false,"rule":"cycle",)"
              R"("to":{"input":"Shadow.Bias"}})");
    EXPECT_EQ(edge({f.toneMap, 0, true}, {f.shadow, 1, false}),
              R"({"from":{"output":"ToneMap.Color"},"made":false,"oldest":{"output":"Picture"},)"
              R"("rule":"leaves-group","to":{"input":"Shadow.Bias"}})");
    EXPECT_EQ(edge({f.shadow, 0, true}, {f.debug, 0, false}),
              R"({"fedBy":{"output":"LightMeter.Exposure"},"from":{"output":"Shadow.Map"},)"
              R"("made":false,"rule":"already-fed","to":{"input":"Debug.Exposure"}})");
}
