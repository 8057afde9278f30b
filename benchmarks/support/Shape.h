// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef ORV_BENCHMARKS_SHAPE_H
#define ORV_BENCHMARKS_SHAPE_H

#include <QtCore/QString>

#include <vector>

namespace Kestrin {
namespace Orv {
class Graph;
}
} // namespace Kestrin

namespace OrvBench {

/// The description of a graph as plain data. Every subject builds its own graph from it. Nodes have
/// the same numbers as in the library: the root is 0, the others follow in order.
struct Shape
{
    enum class Kind { Regular, Down, Up };

    struct Node
    {
        int parent;
        int numInputs;
        int numOutputs;
        bool isGroup;
        QString name;
    };
    struct Connection
    {
        Kind kind;
        int srcNode;
        int srcPort;
        int dstNode;
        int dstPort;
    };

    std::vector<Node> nodes;             // the root first
    std::vector<Connection> connections; // in the order in which they are made

    int numNodes() const { return static_cast<int>(nodes.size()); }
    const Node& node(int ref) const { return nodes[static_cast<std::size_t>(ref)]; }
};

/// The order in which connections are made. Source first, the cycle test of each connection
/// searches all nodes upstream. Sink first, there are no nodes upstream yet.
enum class Order { SourceFirst, SinkFirst };

/// Every shape feeds the root's input into its sources and its sinks into the root's outputs.
/// Each node feeds the next one.
Shape chain(int numNodes, Order order);
/// One node feeds all others except the last one, which they feed.
Shape fan(int numNodes, Order order);
/// Each node of a layer reads four nodes of the layer before, chosen at random so that each of
/// those is read four times.
Shape layered(int numLayers, int width, Order order);
/// A tree of groups, each with ten children; no connections.
Shape tree(int numNodes);

/// The same shape with every node in its own group inside a group. wrappedRef() returns the node of
/// the result for a node of the original.
Shape wrapped(const Shape& flat);
int wrappedRef(int flatRef);

/// The nodes that no edge of the shape feeds from a sibling, and the like.
/// Both are node refs in ascending order.
struct Ends
{
    std::vector<int> sources;
    std::vector<int> sinks;
};
Ends endsOf(const Shape& shape);

/// The final source of an input: a node's output, an input of the root, or nothing.
struct Feed
{
    int node = -1; // 0 is the root: then `port` is one of its inputs
    int port = -1;
};

/// The feeds of all inputs and outputs, computed from the connections alone.
class Feeds
{
public:
    explicit Feeds(const Shape& shape);
    Feed ofInput(int node, int input) const;
    Feed ofOutput(int node, int output) const;

private:
    struct Ports
    {
        std::vector<Feed> inputs;     // the direct connections
        std::vector<Feed> outputs;    // the direct connections
        std::vector<bool> fromParent; // whether the input's feed is an input too
    };
    std::vector<Ports> nodes;
};

/// The passes in execution order, as a search from the root's outputs finds them: each one after
/// all passes that feed it.
std::vector<int> passOrder(const Shape& shape, const Feeds& feeds);

/// Builds the shape with the library. Aborts when a connection is refused.
void build(const Shape& shape, Kestrin::Orv::Graph& graph);
/// The second half of build(), for a graph that already has the nodes.
void connect(const Shape& shape, Kestrin::Orv::Graph& graph);

} // namespace OrvBench

#endif
