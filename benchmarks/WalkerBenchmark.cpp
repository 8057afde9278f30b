// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "support/FlatGraph.h"
#include "support/PortGraph.h"
#include "support/Rows.h"
#include "support/Shape.h"

#include <Kestrin/Orv/Graph.h>
#include <Kestrin/Orv/Walkers.h>

#include <boost/graph/breadth_first_search.hpp>
#include <boost/graph/depth_first_search.hpp>
#include <boost/graph/reverse_graph.hpp>

#include <memory>
#include <vector>

// Complete walks. Every subject allocates its working state for each walk and calls `visit` with
// each node. Boost.Graph walks with its own algorithms.

using namespace OrvBench;
using namespace Kestrin::Orv;

namespace {

std::size_t at(int index)
{
    return static_cast<std::size_t>(index);
}

// Walks over inputs

template<typename Visit>
void walkBottomUp(const Graph& graph, int start, bool follow, Visit visit)
{
    for (BottomUpInputWalker walker(graph, start, follow); walker.valid(); walker.next())
        visit(walker.node());
}

template<typename Visit>
void walkBreadthFirst(const Graph& graph, int start, bool follow, Visit visit)
{
    for (BreadthFirstInputWalker walker(graph, start, follow); walker.valid(); walker.next())
        visit(walker.node());
}

/// Calls `visit` for the output of each pass.
template<typename Visit, typename Base>
class PassVisitor : public Base
{
public:
    PassVisitor(const PortGraph& portGraph, Visit& visitPass)
        : ports(&portGraph)
        , visit(&visitPass)
    {
    }

protected:
    void reach(PortGraph::Vertex vertex) const
    {
        const PortGraph::Port& port = ports->port(vertex);
        if (!port.isInput && !ports->node(port.node).isGroup)
            (*visit)(port.node);
    }

private:
    const PortGraph* ports;
    Visit* visit;
};

template<typename Visit>
class FinishVisitor : public PassVisitor<Visit, boost::default_dfs_visitor>
{
public:
    using PassVisitor<Visit, boost::default_dfs_visitor>::PassVisitor;
    template<typename G>
    void finish_vertex(PortGraph::Vertex vertex, const G&) const
    {
        this->reach(vertex);
    }
};

template<typename Visit>
class DiscoverVisitor : public PassVisitor<Visit, boost::default_bfs_visitor>
{
public:
    using PassVisitor<Visit, boost::default_bfs_visitor>::PassVisitor;
    template<typename G>
    void discover_vertex(PortGraph::Vertex vertex, const G&) const
    {
        this->reach(vertex);
    }
};

using Colors = std::vector<boost::default_color_type>;

template<typename Visit>
void walkBottomUp(const PortGraph& ports, int start, Visit visit)
{
    const auto reversed = boost::make_reverse_graph(ports.vertices());
    Colors colors(num_vertices(reversed));
    boost::depth_first_visit(
        reversed, ports.node(start).outputs.front(), FinishVisitor<Visit>(ports, visit),
        boost::make_iterator_property_map(colors.begin(), get(boost::vertex_index, reversed)));
}

template<typename Visit>
void walkBreadthFirst(const PortGraph& ports, int start, Visit visit)
{
    const auto reversed = boost::make_reverse_graph(ports.vertices());
    Colors colors(num_vertices(reversed));
    boost::queue<PortGraph::Vertex> queue;
    boost::breadth_first_visit(
        reversed, ports.node(start).outputs.front(), queue, DiscoverVisitor<Visit>(ports, visit),
        boost::make_iterator_property_map(colors.begin(), get(boost::vertex_index, reversed)));
}

template<typename Visit>
void walkBottomUp(const FlatGraph& flat, int start, Visit visit)
{
    using Edges = boost::graph_traits<FlatGraph::Nodes>::in_edge_iterator;
    struct Frame
    {
        FlatGraph::Vertex node;
        Edges next;
        Edges end;
    };
    const FlatGraph::Nodes& nodes = flat.nodes();
    std::vector<unsigned char> visited(num_vertices(nodes));
    std::vector<Frame> stack;
    const auto push = [&](FlatGraph::Vertex node) {
        visited[node] = 1;
        const auto entering = in_edges(node, nodes);
        stack.push_back({node, entering.first, entering.second});
    };
    push(static_cast<FlatGraph::Vertex>(start));
    while (!stack.empty()) {
        Frame& top = stack.back();
        if (top.next == top.end) {
            visit(static_cast<int>(top.node));
            stack.pop_back();
            continue;
        }
        const FlatGraph::Vertex source = boost::source(*top.next++, nodes);
        if (!visited[source])
            push(source);
    }
}

template<typename Visit>
void walkBreadthFirst(const FlatGraph& flat, int start, Visit visit)
{
    const FlatGraph::Nodes& nodes = flat.nodes();
    std::vector<unsigned char> visited(num_vertices(nodes));
    std::vector<FlatGraph::Vertex> queue;
    queue.reserve(num_vertices(nodes));
    visited[at(start)] = 1;
    queue.push_back(static_cast<FlatGraph::Vertex>(start));
    for (std::size_t head = 0; head < queue.size(); ++head) {
        visit(static_cast<int>(queue[head]));
        const auto entering = in_edges(queue[head], nodes);
        for (auto edge = entering.first; edge != entering.second; ++edge) {
            const FlatGraph::Vertex source = boost::source(*edge, nodes);
            if (!visited[source]) {
                visited[source] = 1;
                queue.push_back(source);
            }
        }
    }
}

/// The nodes of a walk, in its order. `walk` takes a function that it calls with each node.
template<typename Walk>
std::vector<int> listed(Walk walk)
{
    std::vector<int> nodes;
    walk([&nodes](int node) { nodes.push_back(node); });
    return nodes;
}

template<typename Walk>
void timeWalk(benchmark::State& state, Walk walk)
{
    for (auto _ : state) {
        int sum = 0;
        walk([&sum](int node) { sum += node; });
        benchmark::DoNotOptimize(sum);
    }
}

struct Subjects
{
    Subjects(const Shape& flatShape, bool nested)
        : shape(nested ? wrapped(flatShape) : flatShape)
        , isNested(nested)
        , ports(shape)
        , flat(flatShape)
    {
        build(shape, graph);
        // The node with the most nodes upstream: the last sink.
        flatStart = endsOf(flatShape).sinks.back();
        start = ref(flatStart);

        std::vector<int> expected =
            listed([&](auto visit) { walkBottomUp(flat, flatStart, visit); });
        for (int& node : expected)
            node = ref(node);
        requireSame(expected.size() > 1, "a walk that goes somewhere");
        requireEqual(expected, listed([&](auto visit) { walkBottomUp(graph, start, true, visit); }),
                     "bottom up");
        requireEqual(expected, listed([&](auto visit) { walkBottomUp(ports, start, visit); }),
                     "bottom up over the port graph");
        if (!nested) {
            requireEqual(expected,
                         listed([&](auto visit) { walkBottomUp(graph, start, false, visit); }),
                         "bottom up among siblings");
        }
        expected = listed([&](auto visit) { walkBreadthFirst(flat, flatStart, visit); });
        for (int& node : expected)
            node = ref(node);
        requireEqual(expected,
                     listed([&](auto visit) { walkBreadthFirst(graph, start, true, visit); }),
                     "breadth first");
        requireEqual(expected, listed([&](auto visit) { walkBreadthFirst(ports, start, visit); }),
                     "breadth first over the port graph");
        if (!nested) {
            requireEqual(expected,
                         listed([&](auto visit) { walkBreadthFirst(graph, start, false, visit); }),
                         "breadth first among siblings");
        }
    }

    int ref(int flatRef) const { return isNested ? wrappedRef(flatRef) : flatRef; }

    Shape shape;
    bool isNested;
    Graph graph;
    PortGraph ports;
    FlatGraph flat;
    int flatStart;
    int start;
};

const Subjects& subjects(const std::string& shape, int size, bool nested)
{
    static Cache<Subjects> cache;
    return cache.get(shape + std::to_string(size) + (nested ? "n" : "f"), [&] {
        return std::make_unique<Subjects>(shape == "chain"
                                              ? chain(size, Order::SinkFirst)
                                              : layered(20, size / 20, Order::SinkFirst),
                                          nested);
    });
}

void addInputWalks(const std::string& shape, int size, bool nested)
{
    const std::string where = shape + (nested ? " in nested groups" : "");
    const auto add = [&](const std::string& work, const char* subject, auto walk) {
        addRow("walker", work + ", " + where, subject, size, [=](benchmark::State& state) {
            const Subjects& s = subjects(shape, size, nested);
            timeWalk(state, [&](auto visit) { walk(s, visit); });
        });
    };
    add("bottom-up inputs", "orv",
        [](const Subjects& s, auto visit) { walkBottomUp(s.graph, s.start, true, visit); });
    add("bottom-up inputs", "boost",
        [](const Subjects& s, auto visit) { walkBottomUp(s.ports, s.start, visit); });
    add("bottom-up inputs", "flat",
        [](const Subjects& s, auto visit) { walkBottomUp(s.flat, s.flatStart, visit); });
    add("breadth-first inputs", "orv",
        [](const Subjects& s, auto visit) { walkBreadthFirst(s.graph, s.start, true, visit); });
    add("breadth-first inputs", "boost",
        [](const Subjects& s, auto visit) { walkBreadthFirst(s.ports, s.start, visit); });
    add("breadth-first inputs", "flat",
        [](const Subjects& s, auto visit) { walkBreadthFirst(s.flat, s.flatStart, visit); });
    if (nested)
        return;
    for (const char* work :
         {"bottom-up inputs among siblings", "breadth-first inputs among siblings"}) {
        const bool bottomUp = work[1] == 'o';
        add(work, "orv", [bottomUp](const Subjects& s, auto visit) {
            bottomUp ? walkBottomUp(s.graph, s.start, false, visit)
                     : walkBreadthFirst(s.graph, s.start, false, visit);
        });
        add(work, "boost", [bottomUp](const Subjects& s, auto visit) {
            bottomUp ? walkBottomUp(s.ports, s.start, visit)
                     : walkBreadthFirst(s.ports, s.start, visit);
        });
        add(work, "flat", [bottomUp](const Subjects& s, auto visit) {
            bottomUp ? walkBottomUp(s.flat, s.flatStart, visit)
                     : walkBreadthFirst(s.flat, s.flatStart, visit);
        });
    }
}

// Walks over the hierarchy

using BoostTree = boost::adjacency_list<boost::vecS, boost::vecS, boost::directedS>;
using Children = std::vector<std::vector<int>>; // by node

template<typename Visit>
class TreeVisitor : public boost::default_dfs_visitor
{
public:
    explicit TreeVisitor(Visit& visitNode)
        : visit(&visitNode)
    {
    }
    void finish_vertex(BoostTree::vertex_descriptor node, const BoostTree&) const
    {
        (*visit)(static_cast<int>(node));
    }

private:
    Visit* visit;
};

template<typename Visit>
void walkSubgraph(const BoostTree& tree, Visit visit)
{
    Colors colors(num_vertices(tree));
    boost::depth_first_visit(
        tree, BoostTree::vertex_descriptor(0), TreeVisitor<Visit>(visit),
        boost::make_iterator_property_map(colors.begin(), get(boost::vertex_index, tree)));
}

template<typename Visit>
void walkSubgraph(const Children& children, Visit visit)
{
    struct Frame
    {
        int node;
        std::size_t next;
    };
    std::vector<Frame> stack{{0, 0}};
    while (!stack.empty()) {
        Frame& top = stack.back();
        const std::vector<int>& below = children[at(top.node)];
        if (top.next < below.size()) {
            stack.push_back({below[top.next++], 0});
        } else {
            visit(top.node);
            stack.pop_back();
        }
    }
}

template<typename Visit>
void walkSubgraph(const Graph& graph, Visit visit)
{
    for (BottomUpSubgraphWalker walker(graph, Graph::kRootNodeRef); walker.valid(); walker.next())
        visit(walker.node());
}

struct Trees
{
    explicit Trees(const Shape& shape)
        : boostTree(shape.nodes.size())
        , children(shape.nodes.size())
    {
        build(shape, graph);
        for (int ref = 1; ref < shape.numNodes(); ++ref) {
            const int parent = shape.node(ref).parent;
            add_edge(static_cast<BoostTree::vertex_descriptor>(parent),
                     static_cast<BoostTree::vertex_descriptor>(ref), boostTree);
            children[at(parent)].push_back(ref);
        }
        const std::vector<int> expected =
            listed([&](auto visit) { walkSubgraph(children, visit); });
        requireEqual(expected.size(), shape.nodes.size(), "a walk over all nodes");
        requireEqual(expected, listed([&](auto visit) { walkSubgraph(graph, visit); }),
                     "the subgraph walk");
        requireEqual(expected, listed([&](auto visit) { walkSubgraph(boostTree, visit); }),
                     "the subgraph walk over Boost.Graph");
    }

    Graph graph;
    BoostTree boostTree;
    Children children;
};

void addSubgraphWalks(int size)
{
    const auto add = [size](const char* subject, auto walk) {
        addRow("walker", "bottom-up subgraph", subject, size, [=](benchmark::State& state) {
            static Cache<Trees> cache;
            const Trees& trees = cache.get(std::to_string(size),
                                           [size] { return std::make_unique<Trees>(tree(size)); });
            timeWalk(state, [&](auto visit) { walk(trees, visit); });
        });
    };
    add("orv", [](const Trees& trees, auto visit) { walkSubgraph(trees.graph, visit); });
    add("boost", [](const Trees& trees, auto visit) { walkSubgraph(trees.boostTree, visit); });
    add("vectors", [](const Trees& trees, auto visit) { walkSubgraph(trees.children, visit); });
}

const bool registered = [] {
    for (const int size : {200, 2000, 20000}) {
        addInputWalks("layered", size, false);
        addInputWalks("layered", size, true);
    }
    for (const int size : {1000, 10000})
        addInputWalks("chain", size, false);
    for (const int size : {100, 1000, 10000})
        addSubgraphWalks(size);
    return true;
}();

} // namespace
