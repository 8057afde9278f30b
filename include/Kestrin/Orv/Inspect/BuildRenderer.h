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
    const NodeRecord& node; ///< what the document says of it; holds during the call
    int ref;                ///< the node that it becomes in the renderer
    QString path;           ///< its path, as Paths writes it
};

/// Makes the passes of a renderer that is built from a snapshot.
class ORV_INSPECT_EXPORT PassFactory
{
public:
    /// Makes a pass for a node. Its ports must be those of the node, in number, order and name.
    using Maker = std::function<RenderPass*(const PassRequest&)>;

    /// Passes of this type are made by \p maker from now on.
    void add(const QString& type, const Maker& maker);
    /// Passes of types that were not added are made by \p maker; without one they are a problem.
    void setFallback(const Maker& maker);
    /// A factory that makes a StandInPass of everything.
    static PassFactory standIns();

    /// The maker for a type; null if there is none.
    Maker maker(const QString& type) const;

private:
    QHash<QString, Maker> makers;
    Maker fallback;
};

/// Builds what a snapshot shows in a renderer that holds nothing but its root: the document, read
/// and built, gives a renderer whose snapshot is written as the same document. Removed nodes and
/// edges are left out, so refs may differ.
/// \return what stands in the way: types that the factory does not know, passes whose ports are not
/// those of the document, a renderer that is not empty, edges that the graph refuses. When it is
/// not empty, the renderer has been left as it was.
///
/// Takes the time of the graph's own calls: Graph::addEdge() tests each edge for cycles.
ORV_INSPECT_EXPORT QVector<Problem> buildRenderer(const Snapshot& snapshot, Renderer& renderer,
                                                  const PassFactory& factory,
                                                  const Places& places = Places());

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin

#endif
