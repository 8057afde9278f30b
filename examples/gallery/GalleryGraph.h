// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef GALLERY_GALLERYGRAPH_H
#define GALLERY_GALLERYGRAPH_H

#include <Kestrin/Orv/Inspect/Document.h>
#include <Kestrin/Orv/Inspect/Snapshot.h>
#include <Kestrin/Orv/Renderer.h>

#include <QtCore/QHash>
#include <QtCore/QString>
#include <QtCore/QVector>

namespace Kestrin {
namespace Orv {
class Graph;
namespace Inspect {
class Trace;
} // namespace Inspect
} // namespace Orv
} // namespace Kestrin

namespace Gallery {

namespace Inspect = Kestrin::Orv::Inspect;

/// The renderer of this program: its passes and how they hang together, as they are built in or as
/// a document says.
///
/// The built-in ones:
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
    /// Holds nothing yet.
    /// \param trace records the passes, if it is not null; it is kept longer than this.
    explicit GalleryGraph(Inspect::Trace* trace = nullptr);

    /// Builds what is built in.
    void build();
    /// Builds what a document shows.
    /// \return what stands in the way; nothing has been built then.
    QVector<Inspect::Problem> build(const Inspect::ReadResult& document);

    Kestrin::Orv::Renderer& renderer() { return host; }
    /// The graph as it is now, with the types of its passes.
    Inspect::Snapshot snapshot();

    /// The pass of this name, in whichever group, or of this path; -1 if there is none.
    int findPass(const QString& name);
    /// Says for people of which output the renderer counts too few readers, so that its texture
    /// would return to the pool too early; empty if there is none.
    QString uncountedReader();
    /// The passes that the renderer's outputs and its target need, in their order of execution.
    QVector<int> executionOrder();
    /// Disables the passes that executionOrder() does not need. A pass that is never scheduled
    /// would count as one that has yet to start.
    void disableIdlePasses();

private:
    using Node = int;

    Kestrin::Orv::RenderPass* make(const QString& type, const QString& name);
    Node add(const char* type, Node parent);
    Node add(const char* type, const QString& name, Node parent);
    void addOcclusion();
    void addBloom();
    Node addPyramid(Node parent);
    void wire();

    Inspect::Trace* trace;
    Kestrin::Orv::Renderer host;
    Kestrin::Orv::Graph& graph;
    QHash<const Kestrin::Orv::RenderPass*, QString> types;
    // What wire() connects.
    Node cameras = -1;
    Node shadowMap = -1;
    Node gBuffer = -1;
    Node occlusion = -1;
    Node lighting = -1;
    Node bloom = -1;
    Node toneMap = -1;
    Node antiAlias = -1;
    Node present = -1;
    Node debugView = -1;
    Node lightMeter = -1;
};

} // namespace Gallery

#endif
