// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef ORV_TESTS_GRAPHORACLE_H
#define ORV_TESTS_GRAPHORACLE_H

#include <QtCore/QString>

#include <string>
#include <vector>

/// A second, deliberately simple implementation of the library to compare the first one with. It
/// states each rule as directly as possible and cares for neither speed nor depth.
namespace Oracle {

class Graph
{
public:
    Graph();

    int numNodesGlobal() const;
    int getNodeGlobal(int index) const;
    int numEdgesGlobal() const;
    int getEdgeGlobal(int index) const;
    bool isValidNode(int node) const;
    bool isValidInput(int node, int input) const;
    bool isValidOutput(int node, int output) const;
    bool isValidInputGroup(int node, int group) const;
    bool isValidOutputGroup(int node, int group) const;
    bool isValidEdge(int edge) const;
    bool isRegularEdge(int edge) const;
    bool isDownEdge(int edge) const;
    bool isUpEdge(int edge) const;

    int addNode(const QString& name, int numInputs, int numOutputs, int parent);
    void removeNode(int node);
    void removeChildNode(int node);
    int parentNode(int node) const;
    bool contains(int ancestor, int node) const;
    int numNodes(int parent) const;
    int getNode(int index, int parent) const;
    int indexOfNode(int node) const;
    int findNode(const QString& name, int parent) const;
    int findNodeFromValue(int value, int parent) const;
    QString nodeName(int node) const;
    void setNodeName(int node, const QString& name);
    int nodeValue(int node) const;
    void setNodeValue(int node, int value);

    int addInput(int node, const QString& name, int group);
    void removeInput(int node, int input);
    int numInputs(int node) const;
    int findInput(int node, const QString& name) const;
    QString inputName(int node, int input) const;
    void setInputName(int node, int input, const QString& name);
    int inputGroup(int node, int input) const;
    int addInputGroup(int node, const QString& name);
    void removeInputGroup(int node, int group);
    int numInputGroups(int node) const;
    int findInputGroup(int node, const QString& name) const;
    QString inputGroupName(int node, int group) const;
    void setInputGroupName(int node, int group, const QString& name);

    int addOutput(int node, const QString& name, int group);
    void removeOutput(int node, int output);
    int numOutputs(int node) const;
    int findOutput(int node, const QString& name) const;
    QString outputName(int node, int output) const;
    void setOutputName(int node, int output, const QString& name);
    int outputGroup(int node, int output) const;
    int addOutputGroup(int node, const QString& name);
    void removeOutputGroup(int node, int group);
    int numOutputGroups(int node) const;
    int findOutputGroup(int node, const QString& name) const;
    QString outputGroupName(int node, int group) const;
    void setOutputGroupName(int node, int group, const QString& name);

    int addEdge(int srcNode, int srcOutput, int dstNode, int dstInput);
    int addUpEdge(int parentOutput, int childNode, int childOutput);
    int addDownEdge(int parentInput, int childNode, int childInput);
    void removeEdge(int edge);
    void disconnectInput(int node, int input);
    void disconnectInputGroup(int node, int group);

    int addEdgeByName(int srcNode, const QString& srcOutputName, int dstNode,
                      const QString& dstInputName);
    int addUpEdgeByName(const QString& parentOutputName, int childNode,
                        const QString& childOutputName);
    int addDownEdgeByName(const QString& parentInputName, int childNode,
                          const QString& childInputName);
    void connectByName(int srcNode, int dstNode);
    void connectUpByName(int childNode);
    void connectDownByName(int childNode);
    void connectGroups(int srcNode, int srcGroup, int dstNode, int dstGroup);
    void connectNamedGroups(int srcNode, const QString& outputGroupName, int dstNode,
                            const QString& inputGroupName);

    int edgeSourceNode(int edge) const;
    int edgeSourceIndex(int edge) const;
    int edgeDestNode(int edge) const;
    int edgeDestIndex(int edge) const;
    int inputSource(int node, int input) const;
    int outputSource(int node, int output) const;
    int numInputDestinations(int node, int input) const;
    int inputDestination(int node, int input, int index) const;
    bool isValidInputDestination(int node, int input, int index) const;
    int numOutputDestinations(int node, int output) const;
    int outputDestination(int node, int output, int index) const;
    bool isValidOutputDestination(int node, int output, int index) const;

    bool walkUp(int& node, int& port) const;
    bool walkAcross(int& node, int& port) const;
    bool walkDown(int& node, int& port) const;
    bool walkToSourceNode(int& node, int& port) const;

    bool precedes(int upstreamNode, int downstreamNode, bool followHierarchy) const;
    void purge();

    /// Where the rules leave an answer open, this is set: a chain of down or up edges ran in a
    /// cycle, which only a hierarchy left unsound by purge() can make. How far round it a walk
    /// gets is nobody's business, as long as the walk ends.
    mutable bool open = false;
    /// The messages due so far, in the form of MessageSink.
    mutable std::vector<QString> messages;

    /// Both tables, to the last field: equal for two graphs that nothing can tell apart.
    std::string tables() const;

private:
    struct Port
    {
        QString name;
        int source = -1;
        std::vector<int> destinations;
        int group = -1;
    };
    struct Node
    {
        QString name;
        int parent;
        int value = -1;
        std::vector<Port> inputs, outputs;
        std::vector<QString> groups;
        std::vector<int> children;
        bool removed = false;
    };
    struct Edge
    {
        int srcNode, srcIndex, dstNode, dstIndex;
        bool removed = false;
    };

    const Node* node(int ref) const;
    Node* liveNode(int ref);
    const Port* input(int ref, int index) const;
    const Port* output(int ref, int index) const;
    Port* input(int ref, int index);
    Port* output(int ref, int index);
    int makeEdge(int srcNode, int srcIndex, Port* from, int dstNode, int dstIndex, Port* to);
    void remove(int ref, std::vector<bool>& reached);
    bool trace(int& ref, int& port, bool followHierarchy) const;
    void assertion(bool holds, const char* condition, const QString& message) const;

    std::vector<Node> nodes;
    std::vector<Edge> edges;
};

/// What the walkers yield, in order.
std::vector<int> bottomUpInputs(const Graph& graph, int start, bool followHierarchy);
std::vector<int> breadthFirstInputs(const Graph& graph, int start, bool followHierarchy);
std::vector<int> bottomUpSubgraph(const Graph& graph, int start);

/// Adds the messages of the dump to the graph's.
void dumpAsGraphviz(const Graph* graph);

} // namespace Oracle

#endif
