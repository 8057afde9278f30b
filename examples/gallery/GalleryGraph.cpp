// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "GalleryGraph.h"

#include "PassMakers.h"

#include <Kestrin/Orv/Graph.h>
#include <Kestrin/Orv/Inspect/BuildRenderer.h>
#include <Kestrin/Orv/Inspect/Lint.h>
#include <Kestrin/Orv/Inspect/Paths.h>
#include <Kestrin/Orv/Inspect/Trace.h>
#include <Kestrin/Orv/Inspect/TracedPass.h>
#include <Kestrin/Orv/Walkers.h>

#include <QtGui/QVector3D>

namespace Gallery {

using Kestrin::Orv::BottomUpInputWalker;
using Kestrin::Orv::BottomUpSubgraphWalker;
using Kestrin::Orv::Graph;

namespace {

const int root = Graph::kRootNodeRef;

// The names of ports that are connected one by one.
const QString color = QStringLiteral("Color");
const QString detail = QStringLiteral("Detail");

} // namespace

GalleryGraph::GalleryGraph(Inspect::Trace* trace_)
    : trace(trace_)
    , graph(*host.getGraph())
{
}

void GalleryGraph::build()
{
    host.addParameter(QStringLiteral("Angle"), 0.0F);
    host.addParameter(QStringLiteral("Exposure"), 1.0F);
    host.addParameter(QStringLiteral("BloomStrength"), 0.9F);
    host.addParameter(QStringLiteral("LightDirection"), QVector3D(0.6F, 1, -0.7F));
    host.addParameter(QStringLiteral("Orv_bool_staggeredFirstFrame"), false);
    // The debug view comes first, so that it runs first and releases the G-buffer.
    host.addOutput(QStringLiteral("Debug"));
    host.addOutput(QStringLiteral("Picture"));

    cameras = add("Cameras", root);
    shadowMap = add("ShadowMap", root);
    gBuffer = add("GBuffer", root);
    addOcclusion();
    lighting = add("Lighting", root);
    addBloom();
    toneMap = add("ToneMap", root);
    antiAlias = add("AntiAlias", root);
    present = add("Present", root);
    debugView = add("DebugView", root);
    lightMeter = add("LightMeter", root);
    wire();
    Inspect::Trace::namePasses(host);
}

QVector<Inspect::Problem> GalleryGraph::build(const Inspect::ReadResult& document)
{
    Inspect::PassFactory factory;
    const QStringList known = passTypes();
    for (const QString& type : known) {
        factory.add(type, [this, type](const Inspect::PassRequest& request) {
            return make(type, request.node.name);
        });
    }
    const auto problems = Inspect::buildRenderer(document.snapshot, host, factory, document.places);
    Inspect::Trace::namePasses(host);
    return problems;
}

Inspect::Snapshot GalleryGraph::snapshot()
{
    return Inspect::Snapshot::of(
        host, [this](const Kestrin::Orv::RenderPass& pass) { return types.value(&pass); });
}

Kestrin::Orv::RenderPass* GalleryGraph::make(const QString& type, const QString& name)
{
    Kestrin::Orv::RenderPass* pass = makePass(type, name);
    types.insert(pass, type);
    return trace ? new Inspect::TracedPass(*trace, name, pass) : pass;
}

GalleryGraph::Node GalleryGraph::add(const char* type, Node parent)
{
    return add(type, QString::fromLatin1(type), parent);
}

GalleryGraph::Node GalleryGraph::add(const char* type, const QString& name, Node parent)
{
    return host.addPass(name, make(QString::fromLatin1(type), name), parent);
}

void GalleryGraph::addOcclusion()
{
    // The inputs from the G-buffer form their own port group.
    occlusion = host.addGroup(QStringLiteral("AmbientOcclusion"), 0, 0, root);
    const int surface = graph.addInputGroup(occlusion, QStringLiteral("Surface"));
    graph.addInput(occlusion, QStringLiteral("Normal"), surface);
    graph.addInput(occlusion, QStringLiteral("Depth"), surface);
    graph.addInput(occlusion, QStringLiteral("Projection"), Graph::kInvalidGroupRef);
    graph.addOutput(occlusion, QStringLiteral("Occlusion"), Graph::kInvalidGroupRef);

    const Node raw = add("Occlusion", occlusion);
    const Node blur = add("OcclusionBlur", occlusion);
    graph.connectByName(raw, blur);
    graph.connectDownByName(raw);
    graph.connectDownByName(blur);
    graph.connectUpByName(blur);
}

void GalleryGraph::addBloom()
{
    bloom = host.addGroup(QStringLiteral("Bloom"), 0, 0, root);
    graph.addInput(bloom, color, Graph::kInvalidGroupRef);
    graph.addInput(bloom, QStringLiteral("BloomStrength"), Graph::kInvalidGroupRef);
    graph.addOutput(bloom, QStringLiteral("Bloom"), Graph::kInvalidGroupRef);

    const Node threshold = add("Threshold", bloom);
    const Node pyramid = addPyramid(bloom);
    const Node glow = add("Glow", bloom);
    graph.connectDownByName(threshold);
    graph.addEdgeByName(threshold, QStringLiteral("Bright"), pyramid, color);
    graph.connectByName(pyramid, glow);
    graph.connectDownByName(glow);
    graph.connectUpByName(glow);
}

/// Halves the picture level by level. Then goes back up and adds each level to the blurred levels
/// below.
GalleryGraph::Node GalleryGraph::addPyramid(Node parent)
{
    const int numLevels = 4;
    const Node pyramid = host.addGroup(QStringLiteral("Pyramid"), 0, 0, parent);
    graph.addInput(pyramid, color, Graph::kInvalidGroupRef);
    graph.addOutput(pyramid, color, Graph::kInvalidGroupRef);

    QVector<Node> down;
    for (int level = 0; level < numLevels; ++level) {
        down.append(add("Downsample", QStringLiteral("Downsample%1").arg(level + 1), pyramid));
        if (level > 0)
            graph.connectByName(down[level - 1], down[level]);
    }
    graph.connectDownByName(down.first());

    Node coarser = down.last();
    for (int level = numLevels - 2; level >= 0; --level) {
        const Node up = add("Upsample", QStringLiteral("Upsample%1").arg(level + 1), pyramid);
        graph.addEdgeByName(down[level], color, up, detail);
        graph.connectByName(coarser, up);
        coarser = up;
    }
    graph.connectUpByName(coarser);
    return pyramid;
}

void GalleryGraph::wire()
{
    // Connect passes with passes first. Then the renderer's parameters feed the remaining inputs.
    // Let each output of a group have one reader: with more readers, or across two group borders,
    // the renderer counts too few readers, and a texture would return to the pool too early.
    graph.connectByName(cameras, shadowMap);
    graph.connectByName(cameras, gBuffer);
    graph.connectNamedGroups(gBuffer, QStringLiteral("Surface"), occlusion,
                             QStringLiteral("Surface"));
    graph.connectByName(cameras, occlusion);
    for (const Node source : {gBuffer, occlusion, shadowMap, cameras})
        graph.connectByName(source, lighting);
    graph.connectByName(lighting, bloom);
    graph.connectByName(lighting, toneMap);
    graph.connectByName(bloom, toneMap);
    graph.connectByName(toneMap, antiAlias);
    graph.connectByName(toneMap, present);
    graph.connectByName(antiAlias, present);
    for (const Node source : {gBuffer, shadowMap, lighting, cameras})
        graph.connectByName(source, debugView);
    graph.connectByName(lighting, lightMeter);

    for (int i = 0; i < graph.numNodes(root); ++i)
        graph.connectDownByName(graph.getNode(i, root));
    graph.connectUpByName(present);
    graph.connectUpByName(debugView);
}

int GalleryGraph::findPass(const QString& name)
{
    for (BottomUpSubgraphWalker walker(graph, root); walker.valid(); walker.next()) {
        if (host.renderPass(walker.node()) && graph.nodeName(walker.node()) == name)
            return walker.node();
    }
    const Inspect::Snapshot now = snapshot();
    const QVector<int> found = Inspect::Paths(now).findNodes(name);
    for (const Node node : found) {
        if (host.renderPass(node))
            return node;
    }
    return Graph::kInvalidNodeRef;
}

QString GalleryGraph::uncountedReader()
{
    const QVector<Inspect::Finding> findings = Inspect::lint(snapshot());
    for (const Inspect::Finding& finding : findings) {
        if (finding.code == QLatin1String("uncounted-users"))
            return finding.text;
    }
    return {};
}

QVector<int> GalleryGraph::executionOrder()
{
    QVector<int> ends;
    for (int output = 0; output < host.numOutputs(); ++output) {
        Node node = root;
        int port = output;
        if (graph.walkDown(node, port))
            ends.append(node);
    }
    ends.append(host.getTarget());

    QVector<int> order;
    for (const Node end : qAsConst(ends)) {
        for (BottomUpInputWalker walker(graph, end, true); walker.valid(); walker.next()) {
            const Node node = walker.node();
            if (host.renderPass(node) && host.enabled(node) && !order.contains(node))
                order.append(node);
        }
    }
    return order;
}

void GalleryGraph::disableIdlePasses()
{
    const QVector<int> needed = executionOrder();
    for (BottomUpSubgraphWalker walker(graph, root); walker.valid(); walker.next()) {
        if (host.renderPass(walker.node()) && !needed.contains(walker.node()))
            host.setEnabled(walker.node(), false);
    }
}

} // namespace Gallery
