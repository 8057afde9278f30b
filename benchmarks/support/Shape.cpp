// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "support/Shape.h"

#include "support/Rows.h"

#include <Kestrin/Orv/Graph.h>

#include <algorithm>
#include <random>

namespace OrvBench {

using Kestrin::Orv::Graph;

namespace {

std::size_t at(int index)
{
    return static_cast<std::size_t>(index);
}

Shape withRoot(int numOutputs)
{
    Shape shape;
    shape.nodes.push_back({-1, 1, numOutputs, true, QString()});
    return shape;
}

int addNode(Shape& shape, int parent, int numInputs, int numOutputs, bool isGroup)
{
    const int ref = shape.numNodes();
    shape.nodes.push_back(
        {parent, numInputs, numOutputs, isGroup, QStringLiteral("node%1").arg(ref)});
    return ref;
}

/// Calls `connect` for the layers 1 to numLayers - 1, in the given order.
template<typename Connect>
void forLayers(int numLayers, Order order, Connect connect)
{
    if (order == Order::SourceFirst) {
        for (int layer = 1; layer < numLayers; ++layer)
            connect(layer);
    } else {
        for (int layer = numLayers - 1; layer > 0; --layer)
            connect(layer);
    }
}

} // namespace

Shape chain(int numNodes, Order order)
{
    Shape shape = withRoot(1);
    shape.connections.reserve(at(numNodes) + 1);
    for (int i = 0; i < numNodes; ++i)
        addNode(shape, Graph::kRootNodeRef, 1, 1, false);
    forLayers(numNodes, order, [&](int i) {
        shape.connections.push_back({Shape::Kind::Regular, i, 0, i + 1, 0});
    });
    shape.connections.push_back({Shape::Kind::Down, 0, 0, 1, 0});
    shape.connections.push_back({Shape::Kind::Up, numNodes, 0, 0, 0});
    return shape;
}

Shape fan(int numNodes, Order order)
{
    Shape shape = withRoot(1);
    const int numBlades = numNodes - 2;
    addNode(shape, Graph::kRootNodeRef, 1, 1, false);
    for (int i = 0; i < numBlades; ++i)
        addNode(shape, Graph::kRootNodeRef, 1, 1, false);
    const int sink = addNode(shape, Graph::kRootNodeRef, numBlades, 1, false);
    forLayers(3, order, [&](int layer) {
        for (int i = 0; i < numBlades; ++i) {
            if (layer == 1)
                shape.connections.push_back({Shape::Kind::Regular, 1, 0, i + 2, 0});
            else
                shape.connections.push_back({Shape::Kind::Regular, i + 2, 0, sink, i});
        }
    });
    shape.connections.push_back({Shape::Kind::Down, 0, 0, 1, 0});
    shape.connections.push_back({Shape::Kind::Up, sink, 0, 0, 0});
    return shape;
}

Shape layered(int numLayers, int width, Order order)
{
    constexpr int numInputs = 4;
    Shape shape = withRoot(width);
    for (int i = 0; i < numLayers * width; ++i)
        addNode(shape, Graph::kRootNodeRef, numInputs, 1, false);

    std::mt19937 random(1);
    std::vector<int> offsets(at(numLayers * numInputs));
    for (int& offset : offsets)
        offset = static_cast<int>(random() % static_cast<unsigned>(width));

    const auto ref = [width](int layer, int position) { return 1 + layer * width + position; };
    forLayers(numLayers, order, [&](int layer) {
        for (int position = 0; position < width; ++position) {
            for (int input = 0; input < numInputs; ++input) {
                const int source = (position + offsets[at(layer * numInputs + input)]) % width;
                shape.connections.push_back(
                    {Shape::Kind::Regular, ref(layer - 1, source), 0, ref(layer, position), input});
            }
        }
    });
    for (int position = 0; position < width; ++position) {
        shape.connections.push_back({Shape::Kind::Down, 0, 0, ref(0, position), 0});
        shape.connections.push_back(
            {Shape::Kind::Up, ref(numLayers - 1, position), 0, 0, position});
    }
    return shape;
}

Shape tree(int numNodes)
{
    Shape shape = withRoot(0);
    for (int i = 0; i < numNodes; ++i)
        addNode(shape, i / 10, 0, 0, true);
    return shape;
}

int wrappedRef(int flatRef)
{
    return 3 * flatRef;
}

Shape wrapped(const Shape& flat)
{
    Shape shape = withRoot(flat.node(0).numOutputs);
    for (int ref = 1; ref < flat.numNodes(); ++ref) {
        const Shape::Node& node = flat.node(ref);
        const int outer =
            addNode(shape, Graph::kRootNodeRef, node.numInputs, node.numOutputs, true);
        const int inner = addNode(shape, outer, node.numInputs, node.numOutputs, true);
        const int pass = addNode(shape, inner, node.numInputs, node.numOutputs, false);
        requireEqual(pass, wrappedRef(ref), "the number of a wrapped node");
        for (int i = 0; i < node.numInputs; ++i) {
            shape.connections.push_back({Shape::Kind::Down, outer, i, inner, i});
            shape.connections.push_back({Shape::Kind::Down, inner, i, pass, i});
        }
        for (int i = 0; i < node.numOutputs; ++i) {
            shape.connections.push_back({Shape::Kind::Up, pass, i, inner, i});
            shape.connections.push_back({Shape::Kind::Up, inner, i, outer, i});
        }
    }
    const auto outerOf = [](int ref) { return ref == 0 ? 0 : wrappedRef(ref) - 2; };
    for (Shape::Connection connection : flat.connections) {
        connection.srcNode = outerOf(connection.srcNode);
        connection.dstNode = outerOf(connection.dstNode);
        shape.connections.push_back(connection);
    }
    return shape;
}

Ends endsOf(const Shape& shape)
{
    std::vector<bool> fed(shape.nodes.size());
    std::vector<bool> feeds(shape.nodes.size());
    for (const Shape::Connection& connection : shape.connections) {
        if (connection.kind == Shape::Kind::Regular) {
            feeds[at(connection.srcNode)] = true;
            fed[at(connection.dstNode)] = true;
        }
    }
    Ends ends;
    for (int ref = 1; ref < shape.numNodes(); ++ref) {
        if (shape.node(ref).parent != Graph::kRootNodeRef)
            continue;
        if (!fed[at(ref)])
            ends.sources.push_back(ref);
        if (!feeds[at(ref)])
            ends.sinks.push_back(ref);
    }
    return ends;
}

Feeds::Feeds(const Shape& shape)
{
    for (const Shape::Node& node : shape.nodes) {
        nodes.push_back({std::vector<Feed>(at(node.numInputs)),
                         std::vector<Feed>(at(node.numOutputs)),
                         std::vector<bool>(at(node.numInputs))});
    }
    for (const Shape::Connection& connection : shape.connections) {
        Ports& ports = nodes[at(connection.dstNode)];
        const Feed feed{connection.srcNode, connection.srcPort};
        if (connection.kind == Shape::Kind::Up) {
            ports.outputs[at(connection.dstPort)] = feed;
        } else {
            ports.inputs[at(connection.dstPort)] = feed;
            ports.fromParent[at(connection.dstPort)] = connection.kind == Shape::Kind::Down;
        }
    }
}

Feed Feeds::ofOutput(int node, int output) const
{
    Feed position{node, output};
    for (;;) {
        const Feed inner = nodes[at(position.node)].outputs[at(position.port)];
        if (inner.node < 0)
            return position;
        position = inner;
    }
}

Feed Feeds::ofInput(int node, int input) const
{
    for (;;) {
        const Ports& ports = nodes[at(node)];
        const Feed feed = ports.inputs[at(input)];
        if (feed.node < 0)
            return feed;
        if (!ports.fromParent[at(input)])
            return ofOutput(feed.node, feed.port);
        if (feed.node == Graph::kRootNodeRef)
            return feed;
        node = feed.node;
        input = feed.port;
    }
}

std::vector<int> passOrder(const Shape& shape, const Feeds& feeds)
{
    struct Step
    {
        int node;
        int nextInput;
    };
    std::vector<int> order;
    std::vector<bool> visited(shape.nodes.size());
    std::vector<Step> path;
    const auto visit = [&](int node) {
        if (node <= 0 || visited[at(node)])
            return;
        visited[at(node)] = true;
        path.push_back({node, 0});
    };
    for (int output = 0; output < shape.node(0).numOutputs; ++output) {
        visit(feeds.ofOutput(0, output).node);
        while (!path.empty()) {
            Step& top = path.back();
            if (top.nextInput < shape.node(top.node).numInputs) {
                visit(feeds.ofInput(top.node, top.nextInput++).node);
            } else {
                order.push_back(top.node);
                path.pop_back();
            }
        }
    }
    return order;
}

void build(const Shape& shape, Graph& graph)
{
    const Shape::Node& root = shape.node(0);
    for (int i = 0; i < root.numInputs; ++i)
        graph.addInput(Graph::kRootNodeRef, QString(), Graph::kInvalidGroupRef);
    for (int i = 0; i < root.numOutputs; ++i)
        graph.addOutput(Graph::kRootNodeRef, QString(), Graph::kInvalidGroupRef);
    for (int ref = 1; ref < shape.numNodes(); ++ref) {
        const Shape::Node& node = shape.node(ref);
        graph.addNode(node.name, node.numInputs, node.numOutputs, node.parent);
    }
    connect(shape, graph);
}

void connect(const Shape& shape, Graph& graph)
{
    for (const Shape::Connection& c : shape.connections) {
        int edge = Graph::kInvalidEdgeRef;
        switch (c.kind) {
        case Shape::Kind::Regular:
            edge = graph.addEdge(c.srcNode, c.srcPort, c.dstNode, c.dstPort);
            break;
        case Shape::Kind::Down:
            edge = graph.addDownEdge(c.srcPort, c.dstNode, c.dstPort);
            break;
        case Shape::Kind::Up:
            edge = graph.addUpEdge(c.dstPort, c.srcNode, c.srcPort);
            break;
        }
        requireSame(edge != Graph::kInvalidEdgeRef, "a connection that was to be accepted");
    }
}

} // namespace OrvBench
