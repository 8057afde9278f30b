// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_INSPECT_BUILDRENDERER_H
#define KESTRIN_ORV_INSPECT_BUILDRENDERER_H

#include <Kestrin/Orv/Inspect/Document.h>
#include <Kestrin/Orv/Inspect/Export.h>
#include <Kestrin/Orv/Inspect/Snapshot.h>

#include <QtCore/QHash>
#include <QtCore/QString>
#include <QtCore/QVector>

#include <functional>

namespace Kestrin {
namespace Orv {

class RenderPass;
class Renderer;

namespace Inspect {

/// The node that a pass is made for.
struct PassRequest
{
    const NodeRecord& node; ///< its record, with the refs of the renderer and without edges;
                            ///< valid during the call
    int ref;                ///< the ref of the node in the renderer
    QString path;           ///< its path, as Paths writes it
};

/// Makes the passes of a renderer that is built from a snapshot.
class ORV_INSPECT_EXPORT PassFactory
{
public:
    /// Makes a pass for a node. The pass must have the node's ports: the same number, order and
    /// names.
    using Maker = std::function<RenderPass*(const PassRequest&)>;

    /// From now on, \p maker makes the passes of this type.
    void add(const QString& type, const Maker& maker);
    /// \p maker makes the passes of all types that were not added. Without a fallback,
    /// buildRenderer() reports such types as problems.
    void setFallback(const Maker& maker);
    /// A factory that makes a StandInPass for every type.
    static PassFactory standIns();

    /// The maker for a type; null if there is none.
    Maker maker(const QString& type) const;

private:
    QHash<QString, Maker> makers;
    Maker fallback;
};

/// Builds the graph of a snapshot in a renderer that holds only its root. If a document is read and
/// built, the snapshot of the new renderer is written as the same document. Leaves out removed
/// nodes and edges, so refs may differ.
/// \param places where the parts of the snapshot stand in the document, for the problems.
/// \return all problems: types that the factory does not know, passes whose ports differ from those
/// of the document, a renderer that is not empty, edges that the graph refuses. If there is a
/// problem, the renderer is not changed.
///
/// Takes the time of the calls of the graph: Graph::addEdge() tests each edge for cycles.
ORV_INSPECT_EXPORT QVector<Problem> buildRenderer(const Snapshot& snapshot, Renderer& renderer,
                                                  const PassFactory& factory,
                                                  const Places& places = Places());

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin

#endif
