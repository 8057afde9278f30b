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
    /// What became of a node.
    enum State {
        Scheduled, ///< a pass that runs
        Disabled,  ///< a pass that an output or the target leads to, but that is disabled
        NotNeeded, ///< a pass that no output and no target leads to
        Group,     ///< a group, the root, or a node whose pass is null: nothing to run
        Removed,   ///< a slot of the node table that holds no node any more
        Missing    ///< no such node
    };

    int node = -1;         ///< the node asked about
    State state = Missing; ///< what became of it
    bool enabled = false;  ///< whether it has a pass that is enabled
    int position = -1;     ///< in the order of execution, from 0
    /// Whether an output or the target leads to the node; groups may be led to as well.
    bool needed = false;
    /// What needs it first: the index of an output of the renderer; -1 for the target.
    int output = -1;
    /// The ports from that output, or from the target's input, back to the node's own output, the
    /// way that the renderer goes. Empty if nothing needs it, and for the target itself.
    QVector<PortRef> path;
    /// For a pass that nothing needs: the node downstream of it, or itself, where the way to an
    /// output ends first: make it the target or feed an output from it, and the pass runs.
    int nearest = -1;
    /// The ports from `nearest` back to the node; empty if they are the same.
    QVector<PortRef> nearestPath;
};

/// Where the value of an input comes from. An input of a group has no default of its own: there,
/// Default says that it carries nothing.
struct InputExplanation
{
    /// What an input takes.
    enum Source { Parameter, Output, Default, NoSuchInput };
    /// Why it is the default.
    enum Cause {
        NotDefault,
        Unfed,            ///< the path ends at an input that nothing feeds
        NoPassBehind,     ///< the path ends at an output of a group that leads nowhere
        UpstreamDisabled, ///< the pass that feeds it is disabled
        NotAPass          ///< what feeds it is neither a pass nor a group
    };

    PortRef input;               ///< the input asked about
    Source source = NoSuchInput; ///< what it takes
    Cause cause = NotDefault;    ///< why it takes its default
    int parameter = -1;          ///< the parameter's index
    PortRef end; ///< the port where the path ends: the producing output, or the last one found
    QVector<PortRef> path; ///< from the input to `end`, every group boundary on the way
    QVariant value;        ///< the parameter's value or the default
};

/// What a graph says to a new edge.
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
        /// The nodes are not siblings, nor a group and its child where the ports would need it. No
        /// call makes such an edge, but for one from an output to an input: Graph::addEdge() does
        /// not ask, and what it makes does not carry that output.
        NotRelated
    };

    PortRef from;           ///< the port that the edge would leave
    PortRef to;             ///< the port that it would enter
    Rule rule = NoSuchNode; ///< the first rule that refuses it
    /// Whether the graph makes the edge when it is told to: always for Accepted, sometimes for
    /// NotRelated, never for the others.
    bool made = false;
    int fedBy = -1;  ///< for AlreadyFed: the edge that feeds it
    int oldest = -1; ///< for LeavesGroup: the edge in question
    /// For a cycle: the ports of the whole way round, from the new edge's source back to its
    /// destination, against the flow.
    QVector<PortRef> cycle;
};

/// Answers questions about one snapshot, which must neither change nor go while this is used.
///
/// Every answer comes as data, and toText() and toJson() put it into words and into JSON. Texts end
/// with a line break and name everything by its path.
class ORV_INSPECT_EXPORT Explainer
{
public:
    /// Works the schedule out once. Linear in what the snapshot holds.
    explicit Explainer(const Snapshot& snapshot);
    ~Explainer();

    /// Why a node runs or not. Linear in the length of the path reported, for a pass that nothing
    /// needs in what lies downstream of it.
    NodeExplanation node(int ref) const;
    /// Where an input's value comes from. Linear in the group boundaries crossed.
    InputExplanation input(int node, int index) const;
    /// Whether the graph would take a new edge, and if not, why not. Which kind of edge follows
    /// from the nodes: siblings, a group's input to its child, a child's output to its group. Takes
    /// the time of Graph::precedes().
    EdgeExplanation edge(const PortRef& from, const PortRef& to) const;

    /// Why a node runs or not, in words.
    QString toText(const NodeExplanation& explanation) const;
    /// Where an input's value comes from, in words.
    QString toText(const InputExplanation& explanation) const;
    /// What the graph says to an edge, in words.
    QString toText(const EdgeExplanation& explanation) const;
    /// Why a node runs or not, as JSON.
    QJsonObject toJson(const NodeExplanation& explanation) const;
    /// Where an input's value comes from, as JSON.
    QJsonObject toJson(const InputExplanation& explanation) const;
    /// What the graph says to an edge, as JSON.
    QJsonObject toJson(const EdgeExplanation& explanation) const;

    /// What runs, in which order, and with how many users.
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
