// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_INSPECT_SNAPSHOT_H
#define KESTRIN_ORV_INSPECT_SNAPSHOT_H

#include <Kestrin/Orv/Inspect/Export.h>

#include <QtCore/QString>
#include <QtCore/QVariant>
#include <QtCore/QVector>

#include <functional>

namespace Kestrin {
namespace Orv {

class RenderPass;
class Renderer;

namespace Inspect {

/// An input or output of a node.
struct PortRecord
{
    QString name;              ///< not required to be unique
    int group = -1;            ///< the port group that it was added to; -1 for none
    int source = -1;           ///< the edge that feeds it; -1 for none
    QVector<int> destinations; ///< the edges that leave it, oldest first
    QVariant defaultValue;     ///< what the input of a pass takes when nothing live feeds it
};

/// A node of the graph: the renderer itself (node 0), a pass, or a group.
struct NodeRecord
{
    QString name;                ///< not required to be unique
    int parent = -1;             ///< -1 for the root
    int value = -1;              ///< the index of a pass
    bool removed = true;         ///< a slot that holds no node any more
    bool pass = false;           ///< whether the renderer has a pass for the node; groups have none
    bool enabled = false;        ///< whether that pass is enabled
    QString type;                ///< what the host calls that kind of pass; may be empty
    QVector<QString> groups;     ///< the names of the port groups
    QVector<PortRecord> inputs;  ///< by port index
    QVector<PortRecord> outputs; ///< by port index
    QVector<int> children;       ///< in the order in which they were added
};

/// A connection from a port to a port.
struct EdgeRecord
{
    int srcNode = -1;    ///< the node that it leaves
    int srcIndex = -1;   ///< the port that it leaves: an input for a down edge, otherwise an output
    int dstNode = -1;    ///< the node that it enters
    int dstIndex = -1;   ///< the port that it enters: an output for an up edge, otherwise an input
    bool removed = true; ///< a slot that holds no edge any more
};

/// A port by refs.
struct PortRef
{
    int node = -1;         ///< the node that it belongs to; -1 for no port
    int index = -1;        ///< its index among the node's inputs, or outputs
    bool isOutput = false; ///< which of both
};

/// Whether both name the same port.
inline bool operator==(const PortRef& a, const PortRef& b)
{
    return a.node == b.node && a.index == b.index && a.isOutput == b.isOutput;
}
/// Whether they name different ports.
inline bool operator!=(const PortRef& a, const PortRef& b)
{
    return !(a == b);
}

/// Which way an edge runs, as Graph tells it from the parents of its ends.
enum class EdgeKind {
    None,    ///< none of those below: its ends have been removed, or lie in unrelated groups
    Regular, ///< from an output to the input of a sibling
    Down,    ///< from an input of a group to an input of its child
    Up       ///< from an output of a child to an output of its group
};

/// What a renderer and its graph look like at one moment, as plain data.
///
/// Everything in this library works on snapshots: they are taken from a renderer or read from a
/// document, can be handed to other threads, and stay what they are when the renderer goes on. Node
/// and edge refs are those of the graph, port indices as well.
///
/// The fields may be filled by hand; whatever they hold, no operation reads outside them. The
/// queries answer for a ref or an index that names nothing as for an empty record.
class ORV_INSPECT_EXPORT Snapshot
{
public:
    /// Tells what the host calls the kind of a pass; empty if it does not know.
    using TypeOf = std::function<QString(const RenderPass&)>;

    /// A renderer with nothing in it but the root.
    Snapshot();
    /// What \p renderer looks like now, removed nodes and edges included. Calls numInputs() and
    /// defaultValue() of its passes, and \p typeOf, if there is one, once for each pass; a pass
    /// that this library has made knows its type without it. Linear in what the graph holds.
    static Snapshot of(Renderer& renderer, const TypeOf& typeOf = TypeOf());

    /// The node of a ref.
    const NodeRecord& node(int ref) const;
    /// The edge of a ref.
    const EdgeRecord& edge(int ref) const;
    /// An input of a node.
    const PortRecord& input(int ref, int index) const;
    /// An output of a node.
    const PortRecord& output(int ref, int index) const;
    /// An input or output of a node.
    const PortRecord& port(const PortRef& ref) const;
    /// Whether the node has such a port.
    bool hasPort(const PortRef& ref) const;
    /// Which way an edge runs; EdgeKind::None for a removed one.
    EdgeKind kindOf(int ref) const;
    /// Which way an edge between two nodes runs, or would run.
    EdgeKind kindBetween(int srcNode, int dstNode) const;
    /// The port that an edge leaves. Where the edge is of no kind, that is an output, as Graph
    /// connects it. What the edge names need not exist.
    PortRef sourceOf(int ref) const;
    /// The port that an edge enters; an input where the edge is of no kind.
    PortRef destinationOf(int ref) const;
    /// The port that an edge of a kind leaves, whether or not it is in a snapshot.
    static PortRef sourceOf(const EdgeRecord& edge, EdgeKind kind);
    /// The port that an edge of a kind enters.
    static PortRef destinationOf(const EdgeRecord& edge, EdgeKind kind);
    /// The port that feeds another, as the walks of the graph follow the edge between them: for an
    /// output one of a child, for an input one of the parent or of a sibling. It is the port that
    /// the edge names and need not exist. No port, whose node is -1, if nothing feeds it or if its
    /// edge carries nothing.
    PortRef feeder(const PortRef& ref) const;
    /// Whether the node has a pass that is enabled: the only ones that are run and read.
    bool isLivePass(int ref) const;

    /// As Graph::walkUp().
    bool walkUp(int& ref, int& port) const;
    /// As Graph::walkAcross().
    bool walkAcross(int& ref, int& port) const;
    /// As Graph::walkDown().
    bool walkDown(int& ref, int& port) const;
    /// As Graph::walkToSourceNode().
    bool walkToSourceNode(int& ref, int& port) const;

    QVector<NodeRecord> nodes; ///< by ref; the root is the first
    QVector<EdgeRecord> edges; ///< by ref
    /// The values of the renderer's parameters; their names are those of the root's inputs.
    QVector<QVariant> parameters;
    /// How many outputs the renderer keeps; their names are those of the root's outputs.
    int numOutputs = 0;
    int target = -1; ///< the node that the renderer was given as its target; -1 for none
};

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin

Q_DECLARE_TYPEINFO(Kestrin::Orv::Inspect::PortRecord, Q_MOVABLE_TYPE);
Q_DECLARE_TYPEINFO(Kestrin::Orv::Inspect::NodeRecord, Q_MOVABLE_TYPE);
Q_DECLARE_TYPEINFO(Kestrin::Orv::Inspect::EdgeRecord, Q_MOVABLE_TYPE);

#endif
