// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_INSPECT_EXPLAIN_H
#define KESTRIN_ORV_INSPECT_EXPLAIN_H

#include <Kestrin/Orv/Inspect/Export.h>
#include <Kestrin/Orv/Inspect/Paths.h>
#include <Kestrin/Orv/Inspect/Schedule.h>
#include <Kestrin/Orv/Inspect/Snapshot.h>

#include <QtCore/QJsonObject>

#include <memory>

namespace Kestrin {
namespace Orv {
namespace Inspect {

/// Why a node runs or does not.
struct NodeExplanation
{
    /// The state of a node.
    enum State {
        Scheduled, ///< a pass that runs
        Disabled,  ///< a disabled pass that an output or the target leads to
        NotNeeded, ///< a pass that no output and no target leads to
        Group,     ///< a group, the root, or a node whose pass is null: nothing to run
        Removed,   ///< a slot of the node table that holds no node any more
        Missing    ///< no such node
    };

    int node = -1;         ///< the node asked about
    State state = Missing; ///< its state
    bool enabled = false;  ///< whether it has a pass that is enabled
    int position = -1;     ///< in the order of execution, from 0
    /// Whether an output or the target leads to the node, which may be a group.
    bool needed = false;
    /// What needs it first: the index of an output of the renderer, or -1 for the target.
    int output = -1;
    /// The ports from that output, or from the target's input, back to the node's own output, as
    /// the renderer follows them. Empty if nothing needs the node, and for the target itself.
    QVector<PortRef> path;
    /// For a pass that nothing needs: the nearest node downstream that nothing reads, or the pass
    /// itself. If you make that node the target, or feed an output of the renderer from it, the
    /// pass runs.
    int nearest = -1;
    /// The ports from `nearest` back to the node; empty if they are the same.
    QVector<PortRef> nearestPath;
};

/// Where the value of an input comes from. An input of a group has no default. For such an input,
/// Default means that it carries no value.
struct InputExplanation
{
    /// The source of the value.
    enum Source { Parameter, Output, Default, NoSuchInput };
    /// Why the input takes its default.
    enum Cause {
        NotDefault,
        Unfed,            ///< the path ends at an input that nothing feeds
        NoPassBehind,     ///< the path ends at an output of a group that leads nowhere
        UpstreamDisabled, ///< the pass that feeds it is disabled
        NotAPass          ///< the node that feeds it is neither a pass nor a group
    };

    PortRef input;               ///< the input asked about
    Source source = NoSuchInput; ///< the source of the value
    Cause cause = NotDefault;    ///< why it takes its default
    int parameter = -1;          ///< the parameter's index
    PortRef end; ///< the port where the path ends: the producing output, or the last one found
    QVector<PortRef> path; ///< from the input to `end`, every group boundary on the way
    QVariant value;        ///< the parameter's value or the default
};

/// Whether a graph would accept a new edge, and which rule refuses it.
struct EdgeExplanation
{
    /// The rules in the order in which they are applied.
    enum Rule {
        Accepted,
        NoSuchNode,
        NoSuchPort,
        AlreadyFed,
        LeavesGroup, ///< the oldest edge that leaves the output is not a regular one
        Cycle,
        /// The nodes are neither siblings nor a group and its child, as the ports would need it. No
        /// call makes such an edge, except from an output to an input: Graph::addEdge() does not
        /// check the nodes, and the edge that it makes does not carry that output.
        NotRelated
    };

    PortRef from;           ///< the port that the edge would leave
    PortRef to;             ///< the port that it would enter
    Rule rule = NoSuchNode; ///< the first rule that refuses it
    /// Whether a call makes the edge: always for Accepted, sometimes for NotRelated, never for the
    /// other rules.
    bool made = false;
    int fedBy = -1;  ///< for AlreadyFed: the edge that feeds it
    int oldest = -1; ///< for LeavesGroup: the oldest edge that leaves the output
    /// For Cycle: all ports of the cycle, from the new edge's source back to its destination,
    /// against the flow.
    QVector<PortRef> cycle;
};

/// Answers questions about one snapshot. The snapshot must neither change nor be destroyed while
/// the Explainer is in use.
///
/// Every answer is plain data. toText() turns it into text and toJson() into JSON. Texts end with a
/// line break and name everything by its path.
class ORV_INSPECT_EXPORT Explainer
{
public:
    /// Predicts the schedule once. Linear in the size of the snapshot.
    explicit Explainer(const Snapshot& snapshot);
    ~Explainer();

    /// Why a node runs or does not. Linear in the length of the reported path; for a pass that
    /// nothing needs, linear in the part of the graph downstream of it.
    NodeExplanation node(int ref) const;
    /// Where an input's value comes from. Linear in the group boundaries crossed.
    InputExplanation input(int node, int index) const;
    /// Whether the graph would accept a new edge, and if not, why not. The kind of the edge follows
    /// from the nodes: siblings, a group and its child, or a child and its group. Takes the time of
    /// Graph::precedes(), and at least time linear in the number of nodes.
    EdgeExplanation edge(const PortRef& from, const PortRef& to) const;

    /// Why a node runs or does not, as text.
    QString toText(const NodeExplanation& explanation) const;
    /// Where an input's value comes from, as text.
    QString toText(const InputExplanation& explanation) const;
    /// Whether the graph accepts an edge, as text.
    QString toText(const EdgeExplanation& explanation) const;
    /// Why a node runs or does not, as JSON.
    QJsonObject toJson(const NodeExplanation& explanation) const;
    /// Where an input's value comes from, as JSON.
    QJsonObject toJson(const InputExplanation& explanation) const;
    /// Whether the graph accepts an edge, as JSON.
    QJsonObject toJson(const EdgeExplanation& explanation) const;

    /// The passes that run, their order, and their numbers of users.
    const Schedule& schedule() const;
    /// The names of the snapshot's nodes and ports.
    const Paths& paths() const;

private:
    struct Impl;
    std::unique_ptr<const Impl> impl;
};

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin

#endif
