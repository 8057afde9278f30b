// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef ORV_TESTS_GRAPHCALLS_H
#define ORV_TESTS_GRAPHCALLS_H

#include "GraphOracle.h"

#include <Kestrin/Orv/Graph.h>
#include <Kestrin/Orv/Graphviz.h>
#include <Kestrin/Orv/Walkers.h>

#include <cstdint>
#include <new>
#include <string>
#include <vector>

/// Every public operation of a graph as data, so that histories of calls can be generated, decoded
/// from bytes, shrunk and printed, and carried out on the library and on the oracle alike.
///
/// ORV_GRAPH_CALLS(X) lists them as X(name, roles, expression). The roles tell what each argument
/// is, in the order of the declaration: n node, e edge, p port, g group, i index, v any value,
/// c port count, b bool, s string. The expression is carried out on graph `g` with the integers
/// a[0], a[1], ... and the strings s[0], s[1], each numbered from the left. The calls that
/// change the graph come first.
#define ORV_GRAPH_CALLS(X)                                                                         \
    X(addNode, "sccn", out.is(g.addNode(s[0], a[0], a[1], a[2])))                                  \
    X(addEdge, "npnp", out.is(g.addEdge(a[0], a[1], a[2], a[3])))                                  \
    X(addUpEdge, "pnp", out.is(g.addUpEdge(a[0], a[1], a[2])))                                     \
    X(addDownEdge, "pnp", out.is(g.addDownEdge(a[0], a[1], a[2])))                                 \
    X(connectByName, "nn", g.connectByName(a[0], a[1]))                                            \
    X(connectUpByName, "n", g.connectUpByName(a[0]))                                               \
    X(connectDownByName, "n", g.connectDownByName(a[0]))                                           \
    X(connectGroups, "ngng", g.connectGroups(a[0], a[1], a[2], a[3]))                              \
    X(connectNamedGroups, "nsns", g.connectNamedGroups(a[0], s[0], a[1], s[1]))                    \
    X(addEdgeByName, "nsns", out.is(g.addEdgeByName(a[0], s[0], a[1], s[1])))                      \
    X(addUpEdgeByName, "sns", out.is(g.addUpEdgeByName(s[0], a[0], s[1])))                         \
    X(addDownEdgeByName, "sns", out.is(g.addDownEdgeByName(s[0], a[0], s[1])))                     \
    X(removeEdge, "e", g.removeEdge(a[0]))                                                         \
    X(disconnectInput, "np", g.disconnectInput(a[0], a[1]))                                        \
    X(disconnectInputGroup, "ng", g.disconnectInputGroup(a[0], a[1]))                              \
    X(removeNode, "n", g.removeNode(a[0]))                                                         \
    X(removeChildNode, "n", g.removeChildNode(a[0]))                                               \
    X(purge, "", g.purge())                                                                        \
    X(setNodeName, "ns", g.setNodeName(a[0], s[0]))                                                \
    X(setNodeValue, "nv", g.setNodeValue(a[0], a[1]))                                              \
    X(addInput, "nsg", out.is(g.addInput(a[0], s[0], a[1])))                                       \
    X(addOutput, "nsg", out.is(g.addOutput(a[0], s[0], a[1])))                                     \
    X(removeInput, "np", g.removeInput(a[0], a[1]))                                                \
    X(removeOutput, "np", g.removeOutput(a[0], a[1]))                                              \
    X(setInputName, "nps", g.setInputName(a[0], a[1], s[0]))                                       \
    X(setOutputName, "nps", g.setOutputName(a[0], a[1], s[0]))                                     \
    X(addInputGroup, "ns", out.is(g.addInputGroup(a[0], s[0])))                                    \
    X(addOutputGroup, "ns", out.is(g.addOutputGroup(a[0], s[0])))                                  \
    X(removeInputGroup, "ng", g.removeInputGroup(a[0], a[1]))                                      \
    X(removeOutputGroup, "ng", g.removeOutputGroup(a[0], a[1]))                                    \
    X(setInputGroupName, "ngs", g.setInputGroupName(a[0], a[1], s[0]))                             \
    X(setOutputGroupName, "ngs", g.setOutputGroupName(a[0], a[1], s[0]))                           \
    X(numNodesGlobal, "", out.is(g.numNodesGlobal()))                                              \
    X(getNodeGlobal, "v", out.is(g.getNodeGlobal(a[0])))                                           \
    X(numEdgesGlobal, "", out.is(g.numEdgesGlobal()))                                              \
    X(getEdgeGlobal, "v", out.is(g.getEdgeGlobal(a[0])))                                           \
    X(isValidNode, "n", out.is(g.isValidNode(a[0])))                                               \
    X(isValidInput, "np", out.is(g.isValidInput(a[0], a[1])))                                      \
    X(isValidOutput, "np", out.is(g.isValidOutput(a[0], a[1])))                                    \
    X(isValidInputGroup, "ng", out.is(g.isValidInputGroup(a[0], a[1])))                            \
    X(isValidOutputGroup, "ng", out.is(g.isValidOutputGroup(a[0], a[1])))                          \
    X(isValidEdge, "e", out.is(g.isValidEdge(a[0])))                                               \
    X(isRegularEdge, "e", out.is(g.isRegularEdge(a[0])))                                           \
    X(isDownEdge, "e", out.is(g.isDownEdge(a[0])))                                                 \
    X(isUpEdge, "e", out.is(g.isUpEdge(a[0])))                                                     \
    X(parentNode, "n", out.is(g.parentNode(a[0])))                                                 \
    X(contains, "nn", out.is(g.contains(a[0], a[1])))                                              \
    X(numNodes, "n", out.is(g.numNodes(a[0])))                                                     \
    X(getNode, "in", out.is(g.getNode(a[0], a[1])))                                                \
    X(indexOfNode, "n", out.is(g.indexOfNode(a[0])))                                               \
    X(findNode, "sn", out.is(g.findNode(s[0], a[0])))                                              \
    X(findNodeFromValue, "vn", out.is(g.findNodeFromValue(a[0], a[1])))                            \
    X(nodeName, "n", out.is(g.nodeName(a[0])))                                                     \
    X(nodeValue, "n", out.is(g.nodeValue(a[0])))                                                   \
    X(numInputs, "n", out.is(g.numInputs(a[0])))                                                   \
    X(numOutputs, "n", out.is(g.numOutputs(a[0])))                                                 \
    X(findInput, "ns", out.is(g.findInput(a[0], s[0])))                                            \
    X(findOutput, "ns", out.is(g.findOutput(a[0], s[0])))                                          \
    X(inputName, "np", out.is(g.inputName(a[0], a[1])))                                            \
    X(outputName, "np", out.is(g.outputName(a[0], a[1])))                                          \
    X(inputGroup, "np", out.is(g.inputGroup(a[0], a[1])))                                          \
    X(outputGroup, "np", out.is(g.outputGroup(a[0], a[1])))                                        \
    X(numInputGroups, "n", out.is(g.numInputGroups(a[0])))                                         \
    X(numOutputGroups, "n", out.is(g.numOutputGroups(a[0])))                                       \
    X(findInputGroup, "ns", out.is(g.findInputGroup(a[0], s[0])))                                  \
    X(findOutputGroup, "ns", out.is(g.findOutputGroup(a[0], s[0])))                                \
    X(inputGroupName, "ng", out.is(g.inputGroupName(a[0], a[1])))                                  \
    X(outputGroupName, "ng", out.is(g.outputGroupName(a[0], a[1])))                                \
    X(edgeSourceNode, "e", out.is(g.edgeSourceNode(a[0])))                                         \
    X(edgeSourceIndex, "e", out.is(g.edgeSourceIndex(a[0])))                                       \
    X(edgeDestNode, "e", out.is(g.edgeDestNode(a[0])))                                             \
    X(edgeDestIndex, "e", out.is(g.edgeDestIndex(a[0])))                                           \
    X(inputSource, "np", out.is(g.inputSource(a[0], a[1])))                                        \
    X(outputSource, "np", out.is(g.outputSource(a[0], a[1])))                                      \
    X(numInputDestinations, "np", out.is(g.numInputDestinations(a[0], a[1])))                      \
    X(inputDestination, "npi", out.is(g.inputDestination(a[0], a[1], a[2])))                       \
    X(isValidInputDestination, "npi", out.is(g.isValidInputDestination(a[0], a[1], a[2])))         \
    X(numOutputDestinations, "np", out.is(g.numOutputDestinations(a[0], a[1])))                    \
    X(outputDestination, "npi", out.is(g.outputDestination(a[0], a[1], a[2])))                     \
    X(isValidOutputDestination, "npi", out.is(g.isValidOutputDestination(a[0], a[1], a[2])))       \
    X(walkUp, "np", out.is(g.walkUp(out.from(a[0]), out.at(a[1]))))                                \
    X(walkAcross, "np", out.is(g.walkAcross(out.from(a[0]), out.at(a[1]))))                        \
    X(walkDown, "np", out.is(g.walkDown(out.from(a[0]), out.at(a[1]))))                            \
    X(walkToSourceNode, "np", out.is(g.walkToSourceNode(out.from(a[0]), out.at(a[1]))))            \
    X(precedes, "nnb", out.is(g.precedes(a[0], a[1], a[2] != 0)))                                  \
    X(bottomUpInputs, "nb", out.order = bottomUpInputs(g, a[0], a[1] != 0))                        \
    X(breadthFirstInputs, "nb", out.order = breadthFirstInputs(g, a[0], a[1] != 0))                \
    X(bottomUpSubgraph, "n", out.order = bottomUpSubgraph(g, a[0]))                                \
    X(dumpAsGraphviz, "", dumpAsGraphviz(&g))

enum class GraphOp : std::uint8_t {
#define ORV_ENUMERATOR(name, roles, expression) name,
    ORV_GRAPH_CALLS(ORV_ENUMERATOR)
#undef ORV_ENUMERATOR
};
const int kNumGraphOps = static_cast<int>(GraphOp::dumpAsGraphviz) + 1;
/// The operations before this one may change the graph.
const int kNumGraphEdits = static_cast<int>(GraphOp::numNodesGlobal);

/// A call that has not met its graph yet: a byte for each argument.
struct GraphStep
{
    std::uint8_t op;
    std::uint8_t args[4];
};

/// A call with its arguments.
struct GraphCall
{
    GraphOp op;
    int ints[4];
    QString strings[2];

    /// As compilable source, as in `graph.addNode(QString(), 1, 2, 0);`.
    std::string text() const;
};

/// Turns the bytes of a step into arguments: mostly refs and ports that exist in this graph, else
/// ones just beside the range or anywhere.
GraphCall resolve(const GraphStep& step, const Oracle::Graph& graph);

/// What a call answered.
struct Outcome
{
    int value = 0;
    QString text;
    int node = 0, port = 0; // the position that a walk left
    std::vector<int> order;
    bool badAlloc = false;

    void is(int answer) { value = answer; }
    void is(bool answer) { value = answer; }
    void is(const QString& answer) { text = answer; }
    int& from(int ref) { return node = ref; }
    int& at(int index) { return port = index; }
    bool operator==(const Outcome& other) const
    {
        return value == other.value && text == other.text && node == other.node
            && port == other.port && order == other.order && badAlloc == other.badAlloc;
    }
    std::string print() const;
};

/// The yield of a walker of the library; cut off where more comes than a walk can hold.
template<typename Walker>
std::vector<int> yieldOf(Walker& walker, const Kestrin::Orv::Graph& graph)
{
    std::vector<int> order;
    for (; walker.valid(); walker.next()) {
        order.push_back(walker.node());
        if (order.size() > static_cast<std::size_t>(graph.numNodesGlobal()) + 2)
            break;
    }
    return order;
}

inline std::vector<int> bottomUpInputs(const Kestrin::Orv::Graph& graph, int start, bool follow)
{
    Kestrin::Orv::BottomUpInputWalker walker(graph, start, follow);
    return yieldOf(walker, graph);
}

inline std::vector<int> breadthFirstInputs(const Kestrin::Orv::Graph& graph, int start, bool follow)
{
    Kestrin::Orv::BreadthFirstInputWalker walker(graph, start, follow);
    return yieldOf(walker, graph);
}

inline std::vector<int> bottomUpSubgraph(const Kestrin::Orv::Graph& graph, int start)
{
    Kestrin::Orv::BottomUpSubgraphWalker walker(graph, start);
    return yieldOf(walker, graph);
}

/// Carries a call out, on the library's graph or on the oracle's.
template<typename G>
Outcome perform(G& g, const GraphCall& call)
{
    const int(&a)[4] = call.ints;
    const QString(&s)[2] = call.strings;
    Outcome out;
    (void)a;
    (void)s;
    try {
        switch (call.op) {
#define ORV_CASE(name, roles, expression)                                                          \
case GraphOp::name:                                                                                \
    expression;                                                                                    \
    break;
            ORV_GRAPH_CALLS(ORV_CASE)
#undef ORV_CASE
        }
    } catch (const std::bad_alloc&) {
        out.badAlloc = true;
    }
    return out;
}

/// Everything that can be asked, compared; the first difference, or nothing.
std::string difference(const Kestrin::Orv::Graph& graph, const Oracle::Graph& model);

#endif
