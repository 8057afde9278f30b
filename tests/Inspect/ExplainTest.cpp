// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include <Kestrin/Orv/Inspect/Explain.h>

#include <gtest/gtest.h>

#include "RandomRenderer.h"
#include "support/LightPass.h"

#include <QtCore/QJsonDocument>

#include <initializer_list>

using namespace Kestrin::Orv;
using namespace Kestrin::Orv::Inspect;

namespace {

/// A pass with named ports; the default of every input is 0.5.
class NamedPass : public LightPass
{
public:
    NamedPass(const QStringList& ins, const QStringList& outs)
        : LightPass(ins.size(), outs.size())
        , inputNames(ins)
        , outputNames(outs)
    {
    }
    QString inputName(int index) const override { return inputNames.value(index); }
    QString outputName(int index) const override { return outputNames.value(index); }
    QVariant defaultValue(int) const override { return 0.5; }

private:
    QStringList inputNames, outputNames;
};

QStringList split(const char* names)
{
    return QString::fromUtf8(names).split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

/// A renderer that is wired by names, and what is explained of it.
struct Scene
{
    Renderer renderer;
    Graph& graph = *renderer.getGraph();

    int pass(const char* name, const char* inputs, const char* outputs, int parent = 0)
    {
        return renderer.addPass(QString::fromUtf8(name),
                                new NamedPass(split(inputs), split(outputs)), parent);
    }
    int group(const char* name, const char* inputs, const char* outputs, int parent = 0)
    {
        const QStringList ins = split(inputs), outs = split(outputs);
        const int node =
            renderer.addGroup(QString::fromUtf8(name), ins.size(), outs.size(), parent);
        for (int i = 0; i < ins.size(); ++i)
            graph.setInputName(node, i, ins.at(i));
        for (int i = 0; i < outs.size(); ++i)
            graph.setOutputName(node, i, outs.at(i));
        return node;
    }
    std::string node(int ref)
    {
        const Snapshot snapshot = Snapshot::of(renderer);
        const Explainer explainer(snapshot);
        return explainer.toText(explainer.node(ref)).toStdString();
    }
    std::string input(int ref, int index)
    {
        const Snapshot snapshot = Snapshot::of(renderer);
        const Explainer explainer(snapshot);
        return explainer.toText(explainer.input(ref, index)).toStdString();
    }
    std::string edge(const PortRef& from, const PortRef& to)
    {
        const Snapshot snapshot = Snapshot::of(renderer);
        const Explainer explainer(snapshot);
        return explainer.toText(explainer.edge(from, to)).toStdString();
    }
};

///     Angle -> Shadow -> [Lit Bloom: Blur -> Glow ] -> ToneMap -> Picture
struct Frame : Scene
{
    int angle = renderer.addParameter(QStringLiteral("Angle"), 42);
    int picture = renderer.addOutput(QStringLiteral("Picture"));
    int shadow = pass("Shadow", "Angle Bias", "Map");
    int bloom = group("Bloom", "Scene Spare", "Color Spare");
    int blur = pass("Blur", "Color", "Color", bloom);
    int glow = pass("Glow", "Color Mask", "Color", bloom);
    int toneMap = pass("ToneMap", "Color Other", "Color");
    int meter = pass("LightMeter", "Color", "Exposure");
    int debug = pass("Debug", "Exposure", "");

    Frame()
    {
        graph.addDownEdge(angle, shadow, 0);
        graph.addEdge(shadow, 0, bloom, 0);
        graph.addDownEdge(0, blur, 0);
        graph.addEdge(blur, 0, glow, 0);
        graph.addDownEdge(1, glow, 1);
        graph.addUpEdge(0, glow, 0);
        graph.addEdge(bloom, 0, toneMap, 0);
        graph.addEdge(bloom, 1, toneMap, 1);
        graph.addUpEdge(picture, toneMap, 0);
        graph.addEdge(bloom, 0, meter, 0);
        graph.addEdge(meter, 0, debug, 0);
    }
};

} // namespace

TEST(Try, Out)
{
    Frame f;
    for (int n = -1; n < 9; ++n) {
        std::cout << f.node(n);
        const int inputs = f.graph.numInputs(n);
        for (int i = 0; i <= inputs; ++i)
            std::cout << f.input(n, i);
    }
    std::cout << f.edge({f.toneMap, 0, true}, {f.shadow, 1, false});
    std::cout << f.edge({f.toneMap, 0, true}, {f.debug, 0, false});
    std::cout << f.edge({f.shadow, 0, true}, {f.debug, 0, false});
    std::cout << f.edge({f.shadow, 0, true}, {f.shadow, 1, false});
    std::cout << f.edge({f.shadow, 0, true}, {f.blur, 1, false});
    std::cout << f.edge({f.shadow, 0, true}, {77, 1, false});
    f.renderer.setEnabled(f.glow, false);
    f.renderer.setEnabled(f.debug, false);
    f.renderer.setEnabled(f.meter, false);
    f.renderer.setTarget(f.debug);
    for (int n = -1; n < 9; ++n) {
        std::cout << f.node(n);
        const int inputs = f.graph.numInputs(n);
        for (int i = 0; i <= inputs; ++i)
            std::cout << f.input(n, i);
    }
}
