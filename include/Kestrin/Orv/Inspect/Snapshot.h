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
    QVariant defaultValue;     ///< the value of a pass's input when no live source feeds it
};

/// A node of the graph: the renderer itself (node 0), a pass, or a group.
struct NodeRecord
{
    QString name;                ///< not required to be unique
    int parent = -1;             ///< -1 for the root
    int value = -1;              ///< the index of a pass
    bool removed = true;         ///< true for a slot whose node was removed
    bool pass = false;           ///< whether the node has a pass; a group has none
    bool enabled = false;        ///< whether that pass is enabled
    QString type;                ///< the host's name for this kind of pass; may be empty
    QVector<QString> groups;     ///< the names of the port groups
    QVector<PortRecord> inputs;  ///< by port index
    QVector<PortRecord> outputs; ///< by port index
    QVector<int> children;       ///< in the order of adding
};

/// A connection from a port to a port.
struct EdgeRecord
{
    int srcNode = -1;    ///< the node that it leaves
    int srcIndex = -1;   ///< the port that it leaves: an input for a down edge, otherwise an output
    int dstNode = -1;    ///< the node that it enters
    int dstIndex = -1;   ///< the port that it enters: an output for an up edge, otherwise an input
    bool removed = true; ///< true for a slot whose edge was removed
};

/// The ref of a port.
struct PortRef
{
    int node = -1;         ///< the node that it belongs to; -1 for no port
    int index = -1;        ///< its index among the node's inputs, or outputs
    bool isOutput = false; ///< true for an output
};

/// True when both name the same port.
inline bool operator==(const PortRef& a, const PortRef& b)
{
    return a.node == b.node && a.index == b.index && a.isOutput == b.isOutput;
}
/// True when they name different ports.
inline bool operator!=(const PortRef& a, const PortRef& b)
{
    return !(a == b);
}

/// The kind of an edge. It follows from the parents of the nodes at its ends, as in Graph.
enum class EdgeKind {
    None,    ///< no kind: an end has been removed, or the ends lie in unrelated groups
    Regular, ///< from an output to the input of a sibling
    Down,    ///< from an input of a group to an input of its child
    Up       ///< from an output of a child to an output of its group
};

/// A renderer and its graph at one moment, as plain data.
///
/// Most functions of this library work on snapshots. A snapshot is taken from a renderer or read
/// from a document. It may be passed to another thread, and does not change when the renderer does.
/// Its node refs, edge refs and port indices are those of the graph.
///
/// A program may also fill the fields itself. No operation reads outside them, whatever they hold.
/// For a ref or an index that does not exist, queries return an empty record.
class ORV_INSPECT_EXPORT Snapshot
{
public:
    /// Returns the host's name for the kind of a pass; empty if it has none.
    using TypeOf = std::function<QString(const RenderPass&)>;

    /// A renderer with only the root.
    Snapshot();
    /// Takes a snapshot of \p renderer, removed nodes and edges included. Calls numInputs() and
    /// defaultValue() of its passes. Calls \p typeOf, if given, once for each pass; a pass that
    /// this library has made knows its type without it. Linear in the size of the graph.
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
    /// True when the node has this port.
    bool hasPort(const PortRef& ref) const;
    /// The kind of an edge; EdgeKind::None for a removed edge.
    EdgeKind kindOf(int ref) const;
    /// The kind that an edge between two nodes has, or would have.
    EdgeKind kindBetween(int srcNode, int dstNode) const;
    /// The port that an edge leaves. For an edge of kind None, it is an output, as Graph connects
    /// it. The port need not exist.
    PortRef sourceOf(int ref) const;
    /// The port that an edge enters. For an edge of kind None, it is an input. The port need not
    /// exist.
    PortRef destinationOf(int ref) const;
    /// The port that an edge of a kind leaves. The edge need not be in a snapshot.
    static PortRef sourceOf(const EdgeRecord& edge, EdgeKind kind);
    /// The port that an edge of a kind enters.
    static PortRef destinationOf(const EdgeRecord& edge, EdgeKind kind);
    /// The port that feeds another port, as the walks of Graph follow the edge between them. The
    /// feeder of an output is an output of a child. The feeder of an input is an input of the
    /// parent or an output of a sibling. It is the port that the edge names, and need not exist.
    /// Returns no port (node -1) if nothing feeds the port, or if the edge that enters it carries
    /// no value.
    PortRef feeder(const PortRef& ref) const;
    /// True when the node has an enabled pass. The renderer runs and reads no other passes.
    bool isLivePass(int ref) const;

    /// Works like Graph::walkUp().
    bool walkUp(int& ref, int& port) const;
    /// Works like Graph::walkAcross().
    bool walkAcross(int& ref, int& port) const;
    /// Works like Graph::walkDown().
    bool walkDown(int& ref, int& port) const;
    /// Works like Graph::walkToSourceNode().
    bool walkToSourceNode(int& ref, int& port) const;

    QVector<NodeRecord> nodes; ///< by ref; the root is the first
    QVector<EdgeRecord> edges; ///< by ref
    /// The values of the renderer's parameters. Their names are those of the root's inputs.
    QVector<QVariant> parameters;
    /// The number of the renderer's outputs. Their names are those of the root's outputs.
    int numOutputs = 0;
    int target = -1; ///< the renderer's target; -1 for none
};

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin

Q_DECLARE_TYPEINFO(Kestrin::Orv::Inspect::PortRecord, Q_MOVABLE_TYPE);
Q_DECLARE_TYPEINFO(Kestrin::Orv::Inspect::NodeRecord, Q_MOVABLE_TYPE);
Q_DECLARE_TYPEINFO(Kestrin::Orv::Inspect::EdgeRecord, Q_MOVABLE_TYPE);

#endif
