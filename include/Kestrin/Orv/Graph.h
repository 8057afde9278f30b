// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_GRAPH_H
#define KESTRIN_ORV_GRAPH_H

#include <Kestrin/Orv/Export.h>

#include <QtCore/QString>

namespace Kestrin {
namespace Orv {

/// A tree of nodes with named input and output ports, and the edges between those ports.
///
/// Nodes, edges, ports and port groups are named by plain ints:
/// - a *node ref* is a slot of the graph's node table, an *edge ref* a slot of its edge table;
/// - a *port index* is a position in a node's input or output list, counted from 0 in each;
/// - a *group ref* is a position in a node's list of group names.
///
/// Removing a node or an edge marks its slot and leaves it in place, so every other ref keeps its
/// meaning. Only purge() renumbers, and it invalidates every node and edge ref.
///
/// There are three kinds of edge. The kind is not stored: it follows from the node tree as it is
/// now.
///
///     regular   output of a node  -> input of a sibling       addEdge
///     down      input of a node   -> input of its child       addDownEdge
///     up        output of a child -> output of its parent     addUpEdge
///
/// A node with children is a group. Down edges carry values from its inputs to its children. Up
/// edges carry the children's results to its outputs.
///
/// Every operation accepts every int. A query about something that does not exist returns -1 for a
/// ref, group, value or index, 0 for a count, false, or an empty string. An operation that adds
/// something returns -1 and changes nothing when its arguments do not name live nodes and existing
/// ports. An operation that changes or removes something does nothing when that does not exist. For
/// the operations that change it, a removed node or edge does not exist. Queries still return what
/// its slot holds, until the next purge().
///
/// Only one thread at a time may use a graph, const queries included. Distinct graphs are
/// independent of each other. The only exception thrown is std::bad_alloc, and it leaves the graph
/// as it was.
class ORV_EXPORT Graph
{
public:
    static const int kRootNodeRef = 0;      ///< the root, which every new graph holds
    static const int kInvalidNodeRef = -1;  ///< no node
    static const int kInvalidEdgeRef = -1;  ///< no edge
    static const int kInvalidGroupRef = -1; ///< no group

    /// Makes a graph that holds only the root node, which has no name, no ports and the value -1.
    Graph();
    /// Frees both tables. Walkers over this graph must be gone by then.
    ~Graph();
    Graph(const Graph&) = delete;
    Graph& operator=(const Graph&) = delete;

    /// @name Tables and validity
    /// All take constant time.
    /// @{

    /// Number of slots in the node table, removed nodes included.
    int numNodesGlobal() const;
    /// The node ref of a table slot: always \p index itself, valid or not.
    int getNodeGlobal(int index) const;
    /// Number of slots in the edge table, removed edges included.
    int numEdgesGlobal() const;
    /// The edge ref of a table slot: always \p index itself, valid or not.
    int getEdgeGlobal(int index) const;

    /// True when \p node is in the node table and not removed.
    bool isValidNode(int node) const;
    /// True when \p node is valid and has an input \p input.
    bool isValidInput(int node, int input) const;
    /// True when \p node is valid and has an output \p output.
    bool isValidOutput(int node, int output) const;
    /// True when \p node is valid and has a name for the input group \p group.
    bool isValidInputGroup(int node, int group) const;
    /// Always false: output groups have no names, see addOutputGroup().
    bool isValidOutputGroup(int node, int group) const;
    /// True when \p edge is in the edge table and not removed.
    bool isValidEdge(int edge) const;
    /// True when \p edge is valid and the nodes at its ends have the same parent.
    bool isRegularEdge(int edge) const;
    /// True when \p edge is valid and leaves the parent of the node that it enters.
    bool isDownEdge(int edge) const;
    /// True when \p edge is valid and enters the parent of the node that it leaves.
    bool isUpEdge(int edge) const;
    /// @}

    /// @name Nodes
    /// @{

    /// Appends a node under \p parent, with value -1 and with unnamed, ungrouped ports. A port
    /// count below zero makes no ports. Existing refs stay valid. Linear in the port counts,
    /// otherwise constant time, amortised.
    /// \return the new node's ref, or -1 when \p parent is not a valid node.
    /// \throws std::bad_alloc when memory cannot hold the ports.
    int addNode(const QString& name, int numInputs, int numOutputs, int parent);

    /// Removes \p node, everything below it and every edge at their ports. Takes \p node off its
    /// parent's list, so later siblings move up one position; their refs stay valid. Also takes a
    /// node off the list that removeChildNode() left there. Removing the root leaves no valid node,
    /// and nothing can be added to such a graph. Linear in the nodes and edges removed, plus the
    /// later siblings; no recursion.
    void removeNode(int node);
    /// Removes \p node like removeNode(), but leaves it on its parent's list: numNodes() still
    /// counts it and getNode(), findNode() and findNodeFromValue() still find it. May be called
    /// again. A later removeNode() takes the node off the list.
    void removeChildNode(int node);

    /// The node's parent; -1 for the root. A removed node keeps its parent.
    int parentNode(int node) const;
    /// True when \p ancestor is the parent of \p node, or that parent's, and so on; no node
    /// contains itself. Linear in the depth of \p node.
    bool contains(int ancestor, int node) const;
    /// Number of children of \p parent.
    int numNodes(int parent) const;
    /// The child at position \p index of \p parent, in the order of adding; -1 if none.
    int getNode(int index, int parent) const;
    /// The position of \p node among its parent's children; -1 if it is not listed there.
    /// Linear in the number of siblings.
    int indexOfNode(int node) const;
    /// The first child of \p parent with this name, compared exactly; -1 if none. Names may repeat,
    /// and grandchildren are not searched. Linear in the number of children.
    int findNode(const QString& name, int parent) const;
    /// The first child of \p parent with this value; -1 if none. Linear in the number of children.
    int findNodeFromValue(int value, int parent) const;
    /// The node's name.
    QString nodeName(int node) const;
    /// Replaces the node's name.
    void setNodeName(int node, const QString& name);
    /// The node's value: an integer of the caller's. In a Renderer's graph, the index of the node's
    /// pass, or -1.
    int nodeValue(int node) const;
    /// Replaces the node's value.
    void setNodeValue(int node, int value);
    /// @}

    /// @name Inputs
    /// @{

    /// Appends an input. Names may repeat. \p group is stored unchecked, whether or not such a
    /// group has a name; -1 for no group.
    /// \return the port's index, or -1 when \p node is not valid. Constant time, amortised.
    int addInput(int node, const QString& name, int group);
    /// Deletes an input. The inputs after it move down one index. Edges are not changed: edges at
    /// later inputs keep their old indices, which then name the port that has moved there. So
    /// disconnect the port first, and remove only the last input while others are connected. Linear
    /// in the later inputs.
    void removeInput(int node, int input);
    /// Number of inputs; a removed node keeps its ports.
    int numInputs(int node) const;
    /// The first input with this name, compared exactly; -1 if none. Linear in the number of
    /// inputs.
    int findInput(int node, const QString& name) const;
    /// The input's name; empty for one that was never named.
    QString inputName(int node, int input) const;
    /// Replaces the input's name; edges stay.
    void setInputName(int node, int input, const QString& name);
    /// The group that the input was added to; -1 for none. The group need not have a name.
    int inputGroup(int node, int input) const;

    /// Appends a group name; names may repeat.
    /// \return the group's ref, or -1 when \p node is not valid. Constant time, amortised.
    int addInputGroup(int node, const QString& name);
    /// Takes every input of this group out of it, then deletes the group's name, if it has one.
    /// Later names move down one position, but the inputs of later groups keep their numbers, which
    /// then name the next group: remove only the last group, or add the inputs again. Linear in the
    /// inputs and the later names.
    void removeInputGroup(int node, int group);
    /// Number of group names, those of addOutputGroup() included.
    int numInputGroups(int node) const;
    /// The first group with this name, compared exactly; -1 if none. Linear in the number of names.
    int findInputGroup(int node, const QString& name) const;
    /// The name of a group.
    QString inputGroupName(int node, int group) const;
    /// Replaces the name of a group; its inputs stay in it.
    void setInputGroupName(int node, int group, const QString& name);
    /// @}

    /// @name Outputs Outputs follow the rules of inputs, except where noted.
    /// @{

    /// Appends an output and returns its index; see addInput().
    int addOutput(int node, const QString& name, int group);
    /// Deletes an output, with the same consequences for edges as removeInput().
    void removeOutput(int node, int output);
    /// Number of outputs; a removed node keeps its ports.
    int numOutputs(int node) const;
    /// The first output with this name, compared exactly; -1 if none. Linear in the number of
    /// outputs.
    int findOutput(int node, const QString& name) const;
    /// The output's name; empty for one that was never named.
    QString outputName(int node, int output) const;
    /// Replaces the output's name; edges stay.
    void setOutputName(int node, int output, const QString& name);
    /// The group that the output was added to; -1 for none.
    int outputGroup(int node, int output) const;

    /// Does the same as addInputGroup(): it appends the name to the *input* group names. So input
    /// and output groups are numbered in one sequence, and findInputGroup() finds both. The list of
    /// output group names always stays empty: the other operations on output group names find
    /// nothing.
    /// \return the group's ref, for addOutput(), or -1 when \p node is not valid.
    int addOutputGroup(int node, const QString& name);
    /// Takes every output of this group out of it. There is no name to delete.
    void removeOutputGroup(int node, int group);
    /// Always 0, see addOutputGroup().
    int numOutputGroups(int node) const;
    /// Always -1, see addOutputGroup().
    int findOutputGroup(int node, const QString& name) const;
    /// Always empty, see addOutputGroup().
    QString outputGroupName(int node, int group) const;
    /// Does nothing, see addOutputGroup().
    void setOutputGroupName(int node, int group, const QString& name);
    /// @}

    /// @name Making and removing edges At most one edge feeds an input or output. Disconnect a port
    /// before you feed it from another edge. Any number of edges may leave a port. Refs of other
    /// edges stay valid.
    /// @{

    /// Makes a regular edge from an output to the input of a sibling.
    /// \return the new edge's ref. -1 when an edge already feeds the input, when the oldest edge
    /// that leaves the output is not a regular one, or when \p dstNode precedes \p srcNode (see
    /// precedes()), so that the edge would close a cycle.
    ///
    /// Does not check that the nodes are siblings. Does not refuse a cycle that runs through the
    /// inside of a group, because precedes() finds the producing nodes and not the groups around
    /// them.
    ///
    /// Takes the time of precedes(\p dstNode, \p srcNode, true). That is constant for a \p dstNode
    /// that feeds nothing yet, and for a \p srcNode that nothing feeds yet. So a graph can be wired
    /// in linear time, from its sources down or from its sinks up.
    int addEdge(int srcNode, int srcOutput, int dstNode, int dstInput);
    /// Makes an up edge from a child's output to an output of its parent. The child's output may
    /// feed siblings at the same time. Does not search for cycles.
    /// \return the new edge's ref, or -1 when an edge already feeds the parent's output. Constant
    /// time.
    int addUpEdge(int parentOutput, int childNode, int childOutput);
    /// Makes a down edge from an input of the child's parent to an input of the child. Does not
    /// search for cycles.
    /// \return the new edge's ref, or -1 when an edge already feeds the child's input. Constant
    /// time.
    int addDownEdge(int parentInput, int childNode, int childInput);
    /// Marks the edge removed and disconnects it from the ports at its ends. Younger edges that
    /// leave the same port move up one position. The edge's kind, as it is now, decides which ports
    /// these are. Linear in the younger edges that leave the same port.
    void removeEdge(int edge);
    /// Removes the edge that feeds the input and every down edge that leaves it.
    void disconnectInput(int node, int input);
    /// Calls disconnectInput() for every input of this group; -1 stands for the ungrouped inputs.
    void disconnectInputGroup(int node, int group);
    /// @}

    /// @name Connecting by name Names are compared exactly, and the first port with a name is used.
    /// Unnamed ports match each other. Operations that connect several ports go through the
    /// receiving ports in ascending order. When an edge is refused, they try no second port. Each
    /// pair of ports is compared, so the time is the product of both port counts, plus the time of
    /// adding the edges.
    /// @{

    /// Calls addEdge() for two ports found by name. Logs a name that is not found at critical
    /// level, and returns -1.
    int addEdgeByName(int srcNode, const QString& srcOutputName, int dstNode,
                      const QString& dstInputName);
    /// Calls addUpEdge() for two ports found by name. Logs nothing.
    int addUpEdgeByName(const QString& parentOutputName, int childNode,
                        const QString& childOutputName);
    /// Calls addDownEdge() for two ports found by name. Logs a node or a name that is not found at
    /// critical level, and returns -1.
    int addDownEdgeByName(const QString& parentInputName, int childNode,
                          const QString& childInputName);
    /// Feeds every unfed input of \p dstNode from an output of \p srcNode: the first one that has
    /// the same name and whose oldest leaving edge, if any, is a regular one.
    void connectByName(int srcNode, int dstNode);
    /// Feeds the parent's outputs from the child's outputs of the same name. Leaves out the child's
    /// outputs that are fed from inside the child, and the parent's outputs whose oldest leaving
    /// edge, if any, is not an up edge.
    void connectUpByName(int childNode);
    /// Feeds every unfed input of the child from an input of its parent: the first one that has the
    /// same name and whose oldest leaving edge, if any, is a down edge.
    void connectDownByName(int childNode);
    /// Works like connectByName(), but only between the outputs of \p srcGroup and the inputs of \p
    /// dstGroup. Groups are compared as plain numbers; -1 stands for the ungrouped ports.
    void connectGroups(int srcNode, int srcGroup, int dstNode, int dstGroup);
    /// Calls connectGroups() for the groups with these names. A name that is not found stands for
    /// the ungrouped ports. On the feeding side this is always the case, because output groups have
    /// no names.
    void connectNamedGroups(int srcNode, const QString& outputGroupName, int dstNode,
                            const QString& inputGroupName);
    /// @}

    /// @name Edges of a port All take constant time. They also return the ends of a removed edge.
    /// @{

    /// The node that the edge leaves.
    int edgeSourceNode(int edge) const;
    /// The port that the edge leaves: an input for a down edge, otherwise an output.
    int edgeSourceIndex(int edge) const;
    /// The node that the edge enters.
    int edgeDestNode(int edge) const;
    /// The port that the edge enters: an output for an up edge, otherwise an input.
    int edgeDestIndex(int edge) const;

    /// The edge that feeds the input (regular or down); -1 if none.
    int inputSource(int node, int input) const;
    /// The up edge that feeds the output; -1 if none.
    int outputSource(int node, int output) const;
    /// Number of down edges that leave the input.
    int numInputDestinations(int node, int input) const;
    /// The down edge at position \p index, oldest first; -1 if none.
    int inputDestination(int node, int input, int index) const;
    /// True when the input is valid and an edge leaves it at position \p index.
    bool isValidInputDestination(int node, int input, int index) const;
    /// Number of regular and up edges that leave the output.
    int numOutputDestinations(int node, int output) const;
    /// The edge at position \p index, oldest first; -1 if none.
    int outputDestination(int node, int output, int index) const;
    /// True when the output is valid and an edge leaves it at position \p index.
    bool isValidOutputDestination(int node, int output, int index) const;
    /// @}

    /// @name Walking against the flow of data Each operation moves a (node, port) position in place
    /// and returns whether it moved. It takes constant time for each group boundary crossed, and
    /// allocates nothing. From a port that does not exist, it does not move.
    /// @{

    /// From an input, follows down edges back, out of any number of groups, to the outermost input.
    bool walkUp(int& node, int& port) const;
    /// From an input, follows one regular edge back to the sibling's output that feeds it.
    bool walkAcross(int& node, int& port) const;
    /// From an output, follows up edges back, into any number of groups, to the innermost output
    /// that produces the value.
    bool walkDown(int& node, int& port) const;
    /// From an input to the output that produces its value: walkUp(), walkAcross(), walkDown().
    /// \return false when walkAcross() found no edge. Then the position is the input that walkUp()
    /// reached: an input of the root for a value that comes from outside the graph.
    bool walkToSourceNode(int& node, int& port) const;
    /// @}

    /// @name The whole graph
    /// @{

    /// True when \p upstreamNode is \p downstreamNode or lies upstream of it.
    /// \param followHierarchy false follows only regular edges that feed an input directly. true
    /// traces every input like walkToSourceNode(), which finds the producing node inside a group
    /// and not the group. Constant time when no output of \p upstreamNode feeds a sibling or its
    /// parent. Otherwise linear in the nodes and inputs upstream of \p downstreamNode, times the
    /// depth of the groups crossed.
    bool precedes(int upstreamNode, int downstreamNode, bool followHierarchy) const;

    /// Removes the slots of removed nodes and edges from both tables and moves the other slots
    /// down. **Invalidates every node and edge ref**, except those before the first removed slot of
    /// their table.
    ///
    /// Edges are renumbered correctly, but the hierarchy is not. A node's parent keeps its old
    /// number. Each list of children becomes the new refs of the slots 0, 1, 2, ... up to its
    /// length (-1 for a removed slot). A host that needs the hierarchy after removing nodes must
    /// build a new graph instead. Linear in the size of the graph.
    void purge();
    /// @}

private:
    friend const struct GraphTables& tablesOf(const Graph& graph); // for the library's own sources

    struct ORV_NO_EXPORT Impl;
    Impl* impl;
};

} // namespace Orv
} // namespace Kestrin

#endif
