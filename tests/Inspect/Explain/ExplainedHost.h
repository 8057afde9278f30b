// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef ORV_TESTS_EXPLAINEDHOST_H
#define ORV_TESTS_EXPLAINEDHOST_H

#include <Kestrin/Orv/Inspect/Explain.h>

#include "Inspect/support/Host.h"

#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>

#include <string>

/// A host and the texts that explain it. The default of every input is 0.5.
struct ExplainedHost : Host
{
    using PortRef = Kestrin::Orv::Inspect::PortRef;
    using Snapshot = Kestrin::Orv::Inspect::Snapshot;
    using Explainer = Kestrin::Orv::Inspect::Explainer;

    int pass(const char* name, const char* inputs, const char* outputs, int parent = 0)
    {
        return Host::pass(name, inputs, outputs, parent, 0.5);
    }
    std::string node(int ref)
    {
        const Snapshot taken = snapshot();
        const Explainer explainer(taken);
        return explainer.toText(explainer.node(ref)).toStdString();
    }
    std::string input(int ref, int index)
    {
        const Snapshot taken = snapshot();
        const Explainer explainer(taken);
        return explainer.toText(explainer.input(ref, index)).toStdString();
    }
    std::string edge(const PortRef& from, const PortRef& to)
    {
        const Snapshot taken = snapshot();
        const Explainer explainer(taken);
        return explainer.toText(explainer.edge(from, to)).toStdString();
    }
};

///     Angle -> Shadow -> [Bloom: Blur -> Glow] -+-> ToneMap -> Picture
///                                               +-> LightMeter -> Debug
///
/// The group Bloom has an input and an output to spare, which nothing feeds.
struct Frame : ExplainedHost
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

/// What a page quotes from a raw string: without the lines that mark the region.
inline std::string quoted(const char* text)
{
    std::string result;
    const QStringList lines = QString::fromUtf8(text).split(QLatin1Char('\n'));
    for (const QString& line : lines) {
        if (!line.isEmpty() && !line.startsWith(QLatin1String("//!")))
            result += line.toStdString() + "\n";
    }
    return result;
}

inline std::string json(const QJsonObject& object)
{
    return QJsonDocument(object).toJson(QJsonDocument::Compact).toStdString();
}

#endif
