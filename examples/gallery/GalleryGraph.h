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

/// The renderer of this program, with its passes and their connections. The graph is either built
/// in or read from a document.
///
/// The built-in graph:
///
///     Cameras -> ShadowMap -----------------------------> Lighting -> [Bloom] -> ToneMap
///            \-> GBuffer -> [AmbientOcclusion] ---------/         \-----------/    |
///                                                                         AntiAlias -> Present
///
/// Groups are in brackets. DebugView shows the results of the passes before Bloom. LightMeter runs
/// only as a target.
class GalleryGraph
{
public:
    /// Makes an empty graph.
    /// \param trace records the passes, if it is not null. It must outlive this object.
    explicit GalleryGraph(Inspect::Trace* trace = nullptr);

    /// Builds the built-in graph.
    void build();
    /// Builds the graph of a document.
    /// \return the problems. If there is one, nothing has been built.
    QVector<Inspect::Problem> build(const Inspect::ReadResult& document);

    Kestrin::Orv::Renderer& renderer() { return host; }
    /// The graph as it is now, with the types of its passes.
    Inspect::Snapshot snapshot();

    /// The pass with this name, in any group, or with this path; -1 if there is none.
    int findPass(const QString& name);
    /// A text that names an output of which the renderer counts too few readers, so that its
    /// texture would return to the pool too early. Empty if there is none.
    QString uncountedReader();
    /// The passes that the renderer's outputs and its target need, in their order of execution.
    QVector<int> executionOrder();
    /// Disables the passes that executionOrder() does not contain. The renderer would wait for the
    /// start of a pass that is never scheduled.
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
    // The nodes that wire() connects.
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
