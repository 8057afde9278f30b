// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "GalleryGraph.h"

#include "Passes/CamerasPass.h"
#include "Passes/FilterPass.h"
#include "Passes/GeometryPass.h"
#include "Passes/LightMeterPass.h"

#include <Kestrin/Orv/Graph.h>
#include <Kestrin/Orv/Walkers.h>

#include <QtGui/QMatrix4x4>
#include <QtGui/QVector3D>

namespace Gallery {

using Kestrin::Orv::BottomUpInputWalker;
using Kestrin::Orv::BottomUpSubgraphWalker;
using Kestrin::Orv::Graph;

namespace {

const int root = Graph::kRootNodeRef;

FilterPass* filter(const char* name)
{
    const QString passName = QString::fromLatin1(name);
    return new FilterPass(passName, passName + QLatin1String(".frag"));
}

FilterPass* filter(const QString& name, const char* shader)
{
    return new FilterPass(name, QString::fromLatin1(shader) + QLatin1String(".frag"));
}

int add(Kestrin::Orv::Renderer& renderer, GalleryPass* pass, int parent)
{
    return renderer.addPass(pass->name(), pass, parent);
}

// The names of ports that are wired one by one.
const QString color = QStringLiteral("Color");
const QString detail = QStringLiteral("Detail");

} // namespace

GalleryGraph::GalleryGraph()
    : graph(*host.getGraph())
{
    angle = host.addParameter(QStringLiteral("Angle"), 0.0F);
    exposure = host.addParameter(QStringLiteral("Exposure"), 1.0F);
    bloomStrength = host.addParameter(QStringLiteral("BloomStrength"), 0.9F);
    lightDirection = host.addParameter(QStringLiteral("LightDirection"), QVector3D(0.6F, 1, -0.7F));
    staggered = host.addParameter(QStringLiteral("Orv_bool_staggeredFirstFrame"), false);
    // The debug view comes first, so that it runs first and lets go of the G-buffer.
    debug = host.addOutput(QStringLiteral("Debug"));
    picture = host.addOutput(QStringLiteral("Picture"));

    cameras = host.addPass(QStringLiteral("Cameras"), new CamerasPass, root);
    shadowMap = add(host, GeometryPass::makeShadowMap(), root);
    gBuffer = add(host, GeometryPass::makeGBuffer(), root);
    addOcclusion();
    lighting = add(host,
                   filter("Lighting")
                       ->texture("Albedo", Qt::gray)
                       ->texture("Normal", QColor(0, 0, 255, 128))
                       ->texture("Depth", Qt::white)
                       ->texture("Occlusion", Qt::white)
                       ->texture("ShadowDepth", Qt::white)
                       ->value("View", QMatrix4x4())
                       ->value("Projection", QMatrix4x4())
                       ->value("LightMatrix", QMatrix4x4())
                       ->value("LightDirection", QVector3D(0, 1, 0))
                       ->target("Color", GL_RGBA16F)
                       ->target("Terms", GL_RGBA8),
                   root);
    addBloom();
    toneMap = add(host,
                  filter("ToneMap")
                      ->texture("Color", Qt::black)
                      ->texture("Bloom", Qt::black)
                      ->value("Exposure", 1.0F)
                      ->target("Color", GL_RGBA8),
                  root);
    antiAlias = add(
        host, filter("AntiAlias")->texture("Color", Qt::black)->target("Smooth", GL_RGBA8), root);
    present = add(host,
                  filter("Present")
                      ->texture("Smooth", Qt::black)
                      ->texture("Color", Qt::black)
                      ->target("Picture", GL_RGBA8),
                  root);
    debugView = add(host,
                    filter("DebugView")
                        ->texture("Albedo", Qt::black)
                        ->texture("Normal", Qt::black)
                        ->texture("Depth", Qt::white)
                        ->texture("ShadowDepth", Qt::white)
                        ->texture("Terms", Qt::black)
                        ->value("Projection", QMatrix4x4())
                        ->target("Debug", GL_RGBA8),
                    root);
    lightMeter = add(host, new LightMeterPass, root);
    wire();
}

void GalleryGraph::addOcclusion()
{
    // What comes from the G-buffer is a group of ports of its own.
    occlusion = host.addGroup(QStringLiteral("AmbientOcclusion"), 0, 0, root);
    const int surface = graph.addInputGroup(occlusion, QStringLiteral("Surface"));
    graph.addInput(occlusion, QStringLiteral("Normal"), surface);
    graph.addInput(occlusion, QStringLiteral("Depth"), surface);
    graph.addInput(occlusion, QStringLiteral("Projection"), Graph::kInvalidGroupRef);
    graph.addOutput(occlusion, QStringLiteral("Occlusion"), Graph::kInvalidGroupRef);

    const Node raw = add(host,
                         filter("Occlusion")
                             ->texture("Normal", QColor(0, 0, 255))
                             ->texture("Depth", Qt::white)
                             ->value("Projection", QMatrix4x4())
                             ->target("RawOcclusion", GL_R8),
                         occlusion);
    const Node blur = add(host,
                          filter("OcclusionBlur")
                              ->texture("RawOcclusion", Qt::white)
                              ->texture("Depth", Qt::white)
                              ->value("Projection", QMatrix4x4())
                              ->target("Occlusion", GL_R8),
                          occlusion);
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

    const Node threshold = add(host,
                               filter("Threshold")
                                   ->texture("Color", Qt::black)
                                   ->target("Bright", GL_R11F_G11F_B10F)
                                   ->scaledDown(2),
                               bloom);
    const Node pyramid = addPyramid(bloom);
    const Node glow = add(host,
                          filter("Glow")
                              ->texture("Color", Qt::black)
                              ->value("BloomStrength", 0.0F)
                              ->target("Bloom", GL_R11F_G11F_B10F)
                              ->scaledDown(2),
                          bloom);
    graph.connectDownByName(threshold);
    graph.addEdgeByName(threshold, QStringLiteral("Bright"), pyramid, color);
    graph.connectByName(pyramid, glow);
    graph.connectDownByName(glow);
    graph.connectUpByName(glow);
}

/// Halves the picture level by level, then comes back up, adding each level to the blurred ones
/// below.
GalleryGraph::Node GalleryGraph::addPyramid(Node parent)
{
    const int numLevels = 4;
    const Node pyramid = host.addGroup(QStringLiteral("Pyramid"), 0, 0, parent);
    graph.addInput(pyramid, color, Graph::kInvalidGroupRef);
    graph.addOutput(pyramid, color, Graph::kInvalidGroupRef);

    QVector<Node> down;
    for (int level = 0; level < numLevels; ++level) {
        down.append(add(host,
                        filter(QStringLiteral("Downsample%1").arg(level + 1), "Downsample")
                            ->texture("Color", Qt::black)
                            ->target("Color", GL_R11F_G11F_B10F)
                            ->scaledDown(4 << level),
                        pyramid));
        if (level > 0)
            graph.connectByName(down[level - 1], down[level]);
    }
    graph.connectDownByName(down.first());

    Node coarser = down.last();
    for (int level = numLevels - 2; level >= 0; --level) {
        const Node up = add(host,
                            filter(QStringLiteral("Upsample%1").arg(level + 1), "Upsample")
                                ->texture("Color", Qt::black)
                                ->texture("Detail", Qt::black)
                                ->target("Color", GL_R11F_G11F_B10F)
                                ->scaledDown(4 << level),
                            pyramid);
        graph.addEdgeByName(down[level], color, up, detail);
        graph.connectByName(coarser, up);
        coarser = up;
    }
    graph.connectUpByName(coarser);
    return pyramid;
}

void GalleryGraph::wire()
{
    // Passes to passes first: what is left unfed is then fed from the renderer's parameters.
    // A group's output feeds one reader. For more of them, or across two group borders at once, the
    // renderer counts too few readers, and a texture would return to the pool too early.
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
    return Graph::kInvalidNodeRef;
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
