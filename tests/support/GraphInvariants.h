// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef ORV_TESTS_GRAPHINVARIANTS_H
#define ORV_TESTS_GRAPHINVARIANTS_H

#include <Kestrin/Orv/Graph.h>

#include <map>
#include <string>
#include <tuple>
#include <vector>

/// Checks what every editing operation keeps. Through public queries only; make one when the graph
/// is new and call check() after each step.
///
/// 1. A live edge stands once in the destinations of the port that it leaves, and is the source of
///    the port that it enters; ports name no other edges.
/// 2. No two live edges enter the same port.
/// 3. Every node but the root has a parent, and a live one stands once among the parent's children.
/// 4. A removed node has no edges, no children and no live descendants.
/// 5. Slots are never reused: tables never shrink, what is removed stays removed, and parents and
///    the ends of edges never change.
///
/// removeInput(), removeOutput(), purge() and addEdge() between nodes that are no siblings may
/// break the rules; nothing else does.
class GraphInvariants
{
public:
    using Graph = Kestrin::Orv::Graph;
    using Violations = std::vector<std::string>;

    explicit GraphInvariants(const Graph& checkedGraph)
        : graph(checkedGraph)
    {
        remember();
    }

    /// The violations found, each as "rule: what is wrong"; empty when all is well.
    Violations check()
    {
        violations.clear();
        checkEdges();
        checkPorts();
        checkTree();
        checkRemovedNodes();
        checkSlots();
        remember();
        return violations;
    }

private:
    enum Side { Input, Output };
    using Port = std::tuple<int, Side, int>; // node, side, index

    static std::string toString(const Port& port)
    {
        return (std::get<1>(port) == Input ? "input " : "output ")
            + std::to_string(std::get<2>(port)) + " of node " + std::to_string(std::get<0>(port));
    }
    static std::string toString(int number) { return std::to_string(number); }

    void violated(int rule, const std::string& text)
    {
        violations.push_back(std::to_string(rule) + ": " + text);
    }

    Port portLeft(int edge) const
    {
        const bool down = !graph.isRegularEdge(edge) && graph.isDownEdge(edge);
        return Port(graph.edgeSourceNode(edge), down ? Input : Output, graph.edgeSourceIndex(edge));
    }
    Port portEntered(int edge) const
    {
        const bool up = !graph.isRegularEdge(edge) && !graph.isDownEdge(edge);
        return Port(graph.edgeDestNode(edge), up ? Output : Input, graph.edgeDestIndex(edge));
    }
    int source(const Port& port) const
    {
        const auto [node, side, index] = port;
        return side == Input ? graph.inputSource(node, index) : graph.outputSource(node, index);
    }
    std::vector<int> destinations(const Port& port) const
    {
        const auto [node, side, index] = port;
        const int count = side == Input ? graph.numInputDestinations(node, index)
                                        : graph.numOutputDestinations(node, index);
        std::vector<int> edges;
        for (int i = 0; i < count; ++i)
            edges.push_back(side == Input ? graph.inputDestination(node, index, i)
                                          : graph.outputDestination(node, index, i));
        return edges;
    }

    void checkEdges()
    {
        std::map<Port, int> feeding;
        for (int edge = 0; edge < graph.numEdgesGlobal(); ++edge) {
            if (!graph.isValidEdge(edge))
                continue;
            const Port left = portLeft(edge);
            int listed = 0;
            for (const int destination : destinations(left))
                listed += destination == edge;
            if (listed != 1)
                violated(1,
                         "edge " + toString(edge) + " stands " + toString(listed)
                             + " times in the destinations of " + toString(left));
            const Port entered = portEntered(edge);
            if (source(entered) != edge)
                violated(1,
                         "edge " + toString(edge) + " is not the source of " + toString(entered));
            const auto [other, first] = feeding.emplace(entered, edge);
            if (!first)
                violated(2,
                         "edges " + toString(other->second) + " and " + toString(edge) + " enter "
                             + toString(entered));
        }
    }

    void checkPorts()
    {
        for (int node = 0; node < graph.numNodesGlobal(); ++node) {
            for (int i = 0; i < graph.numInputs(node); ++i)
                checkPort(Port(node, Input, i));
            for (int i = 0; i < graph.numOutputs(node); ++i)
                checkPort(Port(node, Output, i));
        }
    }
    void checkPort(const Port& port)
    {
        const int feeding = source(port);
        if (feeding != -1 && !(graph.isValidEdge(feeding) && portEntered(feeding) == port))
            violated(1,
                     toString(port) + " names the source " + toString(feeding)
                         + ", which does not enter it");
        for (const int edge : destinations(port)) {
            if (!(graph.isValidEdge(edge) && portLeft(edge) == port))
                violated(1,
                         toString(port) + " names the destination " + toString(edge)
                             + ", which does not leave it");
        }
    }

    void checkTree()
    {
        if (graph.parentNode(Graph::kRootNodeRef) != Graph::kInvalidNodeRef)
            violated(3, "the root has a parent");
        for (int node = 1; node < graph.numNodesGlobal(); ++node) {
            const int parent = graph.parentNode(node);
            if (parent < 0 || parent >= graph.numNodesGlobal()) {
                violated(3, "node " + toString(node) + " has no parent");
                continue;
            }
            int listed = 0;
            for (int i = 0; i < graph.numNodes(parent); ++i)
                listed += graph.getNode(i, parent) == node;
            if (graph.isValidNode(node) ? listed != 1 : listed > 1)
                violated(3,
                         "node " + toString(node) + " stands " + toString(listed)
                             + " times among the children of " + toString(parent));
        }
        for (int parent = 0; parent < graph.numNodesGlobal(); ++parent) {
            for (int i = 0; i < graph.numNodes(parent); ++i) {
                const int child = graph.getNode(i, parent);
                if (graph.parentNode(child) != parent)
                    violated(3,
                             "node " + toString(child) + " stands among the children of "
                                 + toString(parent) + ", which is not its parent");
            }
        }
    }

    void checkRemovedNodes()
    {
        for (int node = 0; node < graph.numNodesGlobal(); ++node) {
            const int parent = graph.parentNode(node);
            if (graph.isValidNode(node)) {
                if (parent != -1 && !graph.isValidNode(parent))
                    violated(4,
                             "node " + toString(node) + " lives under the removed node "
                                 + toString(parent));
                continue;
            }
            if (graph.numNodes(node) != 0)
                violated(4, "the removed node " + toString(node) + " has children");
            for (int edge = 0; edge < graph.numEdgesGlobal(); ++edge) {
                if (graph.isValidEdge(edge)
                    && (graph.edgeSourceNode(edge) == node || graph.edgeDestNode(edge) == node))
                    violated(4,
                             "the removed node " + toString(node) + " has the edge "
                                 + toString(edge));
            }
        }
    }

    struct NodeSlot
    {
        bool live;
        int parent;
    };
    struct EdgeSlot
    {
        bool live;
        std::tuple<int, int, int, int> ends;
    };
    std::vector<NodeSlot> nodeSlots() const
    {
        std::vector<NodeSlot> slots;
        for (int node = 0; node < graph.numNodesGlobal(); ++node)
            slots.push_back({graph.isValidNode(node), graph.parentNode(node)});
        return slots;
    }
    std::vector<EdgeSlot> edgeSlots() const
    {
        std::vector<EdgeSlot> slots;
        for (int edge = 0; edge < graph.numEdgesGlobal(); ++edge)
            slots.push_back({graph.isValidEdge(edge),
                             {graph.edgeSourceNode(edge), graph.edgeSourceIndex(edge),
                              graph.edgeDestNode(edge), graph.edgeDestIndex(edge)}});
        return slots;
    }
    void remember()
    {
        nodesBefore = nodeSlots();
        edgesBefore = edgeSlots();
    }

    void checkSlots()
    {
        const std::vector<NodeSlot> nodes = nodeSlots();
        if (nodes.size() < nodesBefore.size())
            violated(5, "the node table has shrunk");
        for (size_t i = 0; i < nodes.size() && i < nodesBefore.size(); ++i) {
            if (nodes[i].live && !nodesBefore[i].live)
                violated(5, "the removed node " + std::to_string(i) + " lives again");
            if (nodes[i].parent != nodesBefore[i].parent)
                violated(5, "node " + std::to_string(i) + " has changed its parent");
        }
        const std::vector<EdgeSlot> edges = edgeSlots();
        if (edges.size() < edgesBefore.size())
            violated(5, "the edge table has shrunk");
        for (size_t i = 0; i < edges.size() && i < edgesBefore.size(); ++i) {
            if (edges[i].live && !edgesBefore[i].live)
                violated(5, "the removed edge " + std::to_string(i) + " lives again");
            if (edges[i].ends != edgesBefore[i].ends)
                violated(5, "edge " + std::to_string(i) + " has changed its ends");
        }
    }

    const Graph& graph;
    std::vector<NodeSlot> nodesBefore;
    std::vector<EdgeSlot> edgesBefore;
    Violations violations;
};

/// The violations of rules 1 to 4, for a graph whose past does not matter.
inline GraphInvariants::Violations graphViolations(const Kestrin::Orv::Graph& graph)
{
    return GraphInvariants(graph).check();
}

#endif
