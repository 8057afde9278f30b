// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef GALLERY_GALLERYGRAPH_H
#define GALLERY_GALLERYGRAPH_H

#include <Kestrin/Orv/Renderer.h>

#include <QtCore/QVariant>
#include <QtCore/QVector>

namespace Kestrin {
namespace Orv {
class Graph;
} // namespace Orv
} // namespace Kestrin

namespace Gallery {

/// The renderer of this program: its passes and how they hang together.
///
///     Cameras -> ShadowMap -----------------------------> Lighting -> [Bloom] -> ToneMap
///            \-> GBuffer -> [AmbientOcclusion] ---------/         \-----------/    |
///                                                                         AntiAlias -> Present
///
/// Groups are in brackets. DebugView shows what the passes before Bloom have made; LightMeter runs
/// only as a target.
class GalleryGraph
{
public:
    GalleryGraph();

    Kestrin::Orv::Renderer& renderer() { return host; }

    /// Indices of the renderer's parameters and outputs.
    int angle;
    int exposure;
    int bloomStrength;
    int lightDirection;
    int staggered;
    int debug;
    int picture;

    /// The pass of this name, in whichever group; -1 if there is none.
    int findPass(const QString& name);
    /// The passes that the renderer's outputs and its target need, in their order of execution.
    QVector<int> executionOrder();
    /// Disables the passes that executionOrder() does not need. A pass that is never scheduled
    /// would count as one that has yet to start.
    void disableIdlePasses();

private:
    using Node = int;

    void addOcclusion();
    void addBloom();
    Node addPyramid(Node bloom);
    void wire();

    Kestrin::Orv::Renderer host;
    Kestrin::Orv::Graph& graph;
    Node cameras, shadowMap, gBuffer, occlusion, lighting, bloom, toneMap, antiAlias, present,
        debugView, lightMeter;
};

} // namespace Gallery

#endif
