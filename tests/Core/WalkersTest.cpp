// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include <Kestrin/Orv/Graph.h>
#include <Kestrin/Orv/Walkers.h>

#include "support/GraphLists.h"
#include "support/GraphSnapshot.h"
#include "support/MessageRecorder.h"
#include "support/SampleGraph.h"
#include "support/SmallStack.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <climits>
#include <cstddef>
#include <cstring>
#include <map>
#include <new>
#include <set>
#include <type_traits>
#include <utility>

using Kestrin::Orv::BottomUpInputWalker;
using Kestrin::Orv::BottomUpSubgraphWalker;
using Kestrin::Orv::BreadthFirstInputWalker;
using Kestrin::Orv::Graph;

namespace {

const int kRoot = Graph::kRootNodeRef;

Refs bottomUp(const Graph& graph, int node, bool followHierarchy)
{
    return walk(BottomUpInputWalker(graph, node, followHierarchy));
}
Refs breadthFirst(const Graph& graph, int node, bool followHierarchy)
{
    return walk(BreadthFirstInputWalker(graph, node, followHierarchy));
}
Refs subgraph(const Graph& graph, int node)
{
    return walk(BottomUpSubgraphWalker(graph, node));
}

int addPass(Graph& graph, int parent = kRoot)
{
    return graph.addNode(QString(), 3, 1, parent);
}

//     w -> x -> z.0
//     w -> y -> z.1
struct Diamond
{
    Diamond(Graph& graph, const std::array<char, 4>& order, int parent)
    {
        for (const char name : order)
            node[name] = addPass(graph, parent);
        graph.addEdge(node['w'], 0, node['x'], 0);
        graph.addEdge(node['w'], 0, node['y'], 0);
        graph.addEdge(node['x'], 0, node['z'], 0);
        graph.addEdge(node['y'], 0, node['z'], 1);
    }
    Refs refs(const char* names)
    {
        Refs result;
        for (; *names; ++names)
            result.push_back(node[*names]);
        return result;
    }
    std::map<char, int> node;
};

// The group's input runs through k straight to its output, which the cycle test does not see
// through:
//     s -> g( k ) -> s
struct Cycle
{
    Graph graph;
    const int g = graph.addNode(QString(), 1, 1, kRoot);
    const int s = graph.addNode(QString(), 1, 1, kRoot);
    const int k = graph.addNode(QString(), 1, 1, g);
    const int gToK = graph.addDownEdge(0, k, 0);
    const int kToG = graph.addUpEdge(0, k, 0);
    const int gToS = graph.addEdge(g, 0, s, 0);
    const int sToG = graph.addEdge(s, 0, g, 0);
};

const int kOutside[] = {INT_MIN, -2, 1000, INT_MAX};

} // namespace

TEST(Walkers, AreNeitherCopiedNorAssignedNorVirtual)
{
    EXPECT_FALSE(std::is_copy_constructible<BottomUpInputWalker>::value);
    EXPECT_FALSE(std::is_copy_assignable<BottomUpInputWalker>::value);
    EXPECT_FALSE(std::is_polymorphic<BottomUpInputWalker>::value);
    EXPECT_FALSE(std::is_copy_constructible<BottomUpSubgraphWalker>::value);
    EXPECT_FALSE(std::is_copy_assignable<BottomUpSubgraphWalker>::value);
    EXPECT_FALSE(std::is_polymorphic<BottomUpSubgraphWalker>::value);
    EXPECT_FALSE(std::is_copy_constructible<BreadthFirstInputWalker>::value);
    EXPECT_FALSE(std::is_copy_assignable<BreadthFirstInputWalker>::value);
    EXPECT_FALSE(std::is_polymorphic<BreadthFirstInputWalker>::value);
}

#if QT_POINTER_SIZE == 8
namespace {

/// Makes a walker at the start of a buffer of `poison`, walks to its end, and says whether a byte
/// from `size` on has changed. \return the number of nodes walked; -1 when a byte was touched.
template<typename Walker, std::size_t size, typename... Arguments>
int stepsInPoison(int poison, Arguments&&... arguments)
{
    alignas(std::max_align_t) std::array<unsigned char, size + 64> buffer;
    buffer.fill(static_cast<unsigned char>(poison));
    auto* walker = new (buffer.data()) Walker(std::forward<Arguments>(arguments)...);
    int steps = 0;
    for (; walker->valid(); walker->next())
        ++steps;
    walker->~Walker();
    const bool touched = std::any_of(buffer.begin() + size, buffer.end(),
                                     [poison](unsigned char byte) { return byte != poison; });
    return touched ? -1 : steps;
}

} // namespace

// Hosts built against the library have set aside just so much.
TEST(Walkers, TouchNothingBehindTheirSize)
{
    Graph graph;
    const int group = graph.addNode(QString(), 1, 1, kRoot);
    const int producer = addPass(graph, group);
    const int reader = addPass(graph);
    graph.addUpEdge(0, producer, 0);
    graph.addEdge(group, 0, reader, 0);
    for (const int poison : {0x00, 0xa5, 0xff}) {
        EXPECT_EQ((stepsInPoison<BottomUpInputWalker, 32>(poison, graph, reader, true)), 2);
        EXPECT_EQ((stepsInPoison<BottomUpSubgraphWalker, 16>(poison, graph, kRoot)), 4);
        EXPECT_EQ((stepsInPoison<BreadthFirstInputWalker, 40>(poison, graph, reader, true)), 2);
    }
    graph.purge();
    for (const int poison : {0x00, 0xa5, 0xff})
        EXPECT_EQ((stepsInPoison<BottomUpSubgraphWalker, 16>(poison, graph, kRoot)), 2);
}

// A host may look at the marks in a debugger, or copy the class's declaration.
TEST(Walkers, TheirMarksAreZeroOrOne)
{
    Graph graph;
    std::array<int, 4> readers;
    for (int& reader : readers)
        reader = addPass(graph);
    const int group = graph.addNode(QString(), 0, 2, kRoot);
    for (const int output : {0, 1})
        graph.addUpEdge(output, addPass(graph, group), 0);
    for (std::size_t i = 1; i < readers.size(); ++i) {
        graph.addEdge(readers[i], 0, readers[0], static_cast<int>(i) - 1);
        graph.addEdge(group, 0, readers[i], 0);
        graph.addEdge(group, 1, readers[i], 1);
    }
    const auto expectFlags = [](const void* walker, int count) {
        const unsigned char* visited;
        std::memcpy(&visited, static_cast<const char*>(walker) + 16, sizeof visited);
        for (int i = 0; i < count; ++i)
            EXPECT_LE(visited[i], 1) << i;
    };
    BottomUpInputWalker bottomUpWalker(graph, readers[0], true);
    BreadthFirstInputWalker breadthFirstWalker(graph, readers[0], true);
    while (breadthFirstWalker.valid()) {
        expectFlags(&bottomUpWalker, graph.numNodes(kRoot));
        expectFlags(&breadthFirstWalker, graph.numNodesGlobal());
        bottomUpWalker.next();
        breadthFirstWalker.next();
    }
}
#endif

TEST(Walkers, ChangeNothingInTheGraph)
{
    const SampleGraph sample;
    const std::string before = graphSnapshot(sample.graph);
    bottomUp(sample.graph, sample.b, true);
    breadthFirst(sample.graph, sample.b, true);
    subgraph(sample.graph, kRoot);
    EXPECT_EQ(graphSnapshot(sample.graph), before);
}

// BottomUpInputWalker

TEST(BottomUpInputWalker, YieldsADiamondSourcesFirstInEveryOrderOfCreation)
{
    std::array<char, 4> order = {'w', 'x', 'y', 'z'};
    do {
        for (const int depth : {0, 1, 3}) {
            Graph graph;
            int parent = kRoot;
            for (int i = 0; i < depth; ++i)
                parent = addPass(graph, parent);
            Diamond diamond(graph, order, parent);
            EXPECT_EQ(bottomUp(graph, diamond.node['z'], false), diamond.refs("wxyz"));
            EXPECT_EQ(bottomUp(graph, diamond.node['z'], true), diamond.refs("wxyz"));
            EXPECT_EQ(breadthFirst(graph, diamond.node['z'], false), diamond.refs("zxyw"));
            EXPECT_EQ(breadthFirst(graph, diamond.node['z'], true), diamond.refs("zxyw"));
        }
    } while (std::next_permutation(order.begin(), order.end()));
}

TEST(BottomUpInputWalker, TakesInputsInAscendingOrder)
{
    Graph graph;
    const int z = graph.addNode(QString(), 4, 0, kRoot);
    const int a = addPass(graph);
    const int b = addPass(graph);
    const int c = addPass(graph);
    graph.addEdge(a, 0, z, 3);
    graph.addEdge(b, 0, z, 0);
    graph.addEdge(c, 0, z, 2);
    EXPECT_EQ(bottomUp(graph, z, false), (Refs{b, c, a, z}));
    EXPECT_EQ(breadthFirst(graph, z, false), (Refs{z, b, c, a}));
}

TEST(BottomUpInputWalker, YieldsAStartWithoutInputsAlone)
{
    Graph graph;
    const int node = graph.addNode(QString(), 0, 1, kRoot);
    for (const bool followHierarchy : {false, true}) {
        EXPECT_EQ(bottomUp(graph, node, followHierarchy), Refs{node});
        EXPECT_EQ(bottomUp(graph, kRoot, followHierarchy), Refs{kRoot});
    }
}

TEST(BottomUpInputWalker, YieldsAStartWithUnfedInputsAlone)
{
    Graph graph;
    const int node = addPass(graph);
    EXPECT_EQ(bottomUp(graph, node, true), Refs{node});
}

TEST(BottomUpInputWalker, YieldsANodeThatFeedsTwoInputsOnce)
{
    Graph graph;
    const int a = addPass(graph);
    const int z = addPass(graph);
    for (int i = 0; i < 3; ++i)
        graph.addEdge(a, 0, z, i);
    EXPECT_EQ(bottomUp(graph, z, false), (Refs{a, z}));
    EXPECT_EQ(breadthFirst(graph, z, false), (Refs{z, a}));
}

TEST(BottomUpInputWalker, IsInvalidForNoNode)
{
    const Graph graph;
    BottomUpInputWalker walker(graph, Graph::kInvalidNodeRef, true);
    EXPECT_FALSE(walker.valid());
    EXPECT_EQ(walker.node(), -1);
    walker.next();
    EXPECT_FALSE(walker.valid());
}

TEST(BottomUpInputWalker, YieldsAStartOutsideTheTableAlone)
{
    const SampleGraph sample;
    for (const bool followHierarchy : {false, true}) {
        for (const int node : kOutside)
            EXPECT_EQ(bottomUp(sample.graph, node, followHierarchy), Refs{node});
        const int end = sample.graph.numNodesGlobal();
        EXPECT_EQ(bottomUp(sample.graph, end, followHierarchy), Refs{end});
    }
}

TEST(BottomUpInputWalker, YieldsARemovedStartAlone)
{
    SampleGraph sample;
    sample.graph.removeNode(sample.b);
    EXPECT_EQ(bottomUp(sample.graph, sample.b, true), Refs{sample.b});
    EXPECT_EQ(breadthFirst(sample.graph, sample.b, true), Refs{sample.b});
}

TEST(BottomUpInputWalker, StaysAtItsEnd)
{
    const SampleGraph sample;
    BottomUpInputWalker walker(sample.graph, sample.a, true);
    EXPECT_EQ(walker.node(), sample.a);
    for (int i = 0; i < 3; ++i) {
        walker.next();
        EXPECT_FALSE(walker.valid());
        EXPECT_EQ(walker.node(), -1);
    }
}

TEST(BottomUpInputWalker, FlatTakesTheGroupAndNotWhatIsInside)
{
    const SampleGraph sample;
    EXPECT_EQ(bottomUp(sample.graph, sample.b, false), (Refs{sample.a, sample.g, sample.b}));
    EXPECT_EQ(bottomUp(sample.graph, sample.y, false), (Refs{sample.x, sample.y}));
}

TEST(BottomUpInputWalker, FollowingTheHierarchyTakesTheProducersAndNotTheGroup)
{
    const SampleGraph sample;
    EXPECT_EQ(bottomUp(sample.graph, sample.b, true),
              (Refs{sample.a, sample.x, sample.y, sample.b}));
    EXPECT_EQ(bottomUp(sample.graph, sample.g, true), (Refs{sample.a, sample.g}));
}

TEST(BottomUpInputWalker, OnlyFollowingTheHierarchyLeavesAGroupThroughItsInputs)
{
    const SampleGraph sample;
    EXPECT_EQ(bottomUp(sample.graph, sample.x, false), Refs{sample.x});
    EXPECT_EQ(bottomUp(sample.graph, sample.x, true), (Refs{sample.a, sample.x}));
}

TEST(BottomUpInputWalker, EndsAtTheInputsOfTheRoot)
{
    Graph graph;
    graph.addInput(kRoot, QStringLiteral("parameter"), -1);
    const int a = addPass(graph);
    graph.addDownEdge(0, a, 0);
    EXPECT_EQ(bottomUp(graph, a, true), Refs{a});
    EXPECT_EQ(breadthFirst(graph, a, true), Refs{a});
}

TEST(BottomUpInputWalker, YieldsTheStartOfACycleTwice)
{
    const Cycle sample;
    ASSERT_NE(sample.sToG, -1);
    EXPECT_EQ(bottomUp(sample.graph, sample.k, true), (Refs{sample.k, sample.s, sample.k}));
    EXPECT_EQ(bottomUp(sample.graph, sample.s, true), (Refs{sample.s, sample.k, sample.s}));
    EXPECT_EQ(bottomUp(sample.graph, sample.g, true), (Refs{sample.k, sample.s, sample.g}));
}

TEST(BottomUpInputWalker, YieldsEachNodeOfALadderOfDiamondsOnce)
{
    constexpr std::size_t count = 64;
    Graph graph;
    const int group = addPass(graph);
    std::array<int, 3 * count + 1> node;
    for (int& ref : node)
        ref = addPass(graph, group);
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t from = 3 * i;
        graph.addEdge(node[from], 0, node[from + 1], 0);
        graph.addEdge(node[from], 0, node[from + 2], 0);
        graph.addEdge(node[from + 1], 0, node[from + 3], 0);
        graph.addEdge(node[from + 2], 0, node[from + 3], 1);
    }
    const Refs expected(node.begin(), node.end());
    EXPECT_EQ(bottomUp(graph, node.back(), false), expected);
    EXPECT_EQ(bottomUp(graph, node.back(), true), expected);
    EXPECT_EQ(std::set<int>(expected.begin(), expected.end()).size(), expected.size());
    EXPECT_EQ(breadthFirst(graph, node.back(), true).size(), expected.size());
}

TEST(BottomUpInputWalker, YieldsEachNodeOnceWhereRefsLieOnBothSidesOfTheRootsChildCount)
{
    Graph graph;
    const int g = addPass(graph);
    std::array<int, 6> inner;
    for (int& ref : inner)
        ref = addPass(graph, g);
    const int last = addPass(graph);
    graph.addUpEdge(0, inner[5], 0);
    graph.addEdge(inner[0], 0, inner[4], 0);
    graph.addEdge(inner[1], 0, inner[4], 1);
    graph.addEdge(inner[0], 0, inner[5], 0);
    graph.addEdge(inner[4], 0, inner[5], 1);
    graph.addEdge(inner[1], 0, inner[5], 2);
    graph.addEdge(g, 0, last, 0);
    EXPECT_EQ(bottomUp(graph, last, true), (Refs{inner[0], inner[1], inner[4], inner[5], last}));
}

// A host must not edit the graph meanwhile; if it does, the walk stays inside what it knows.
TEST(BottomUpInputWalker, DoesNotReachNodesThatAreAddedMeanwhile)
{
    Graph graph;
    const int sink = addPass(graph);
    const int group = graph.addNode(QString(), 0, 2, kRoot);
    graph.addUpEdge(0, addPass(graph, group), 0);
    graph.addEdge(group, 0, sink, 0);
    BottomUpInputWalker walker(graph, sink, true); // has marks for the four nodes now
    for (int i = 0; i < 100; ++i)
        addPass(graph, group);
    graph.addUpEdge(1, graph.numNodesGlobal() - 1, 0);
    graph.addEdge(group, 1, sink, 1);
    EXPECT_EQ(walk(walker), (Refs{3, sink}));
}

TEST(BottomUpInputWalker, MayBeDestroyedAtAnyNode)
{
    const SampleGraph sample;
    for (int steps = 0; steps < 6; ++steps) {
        BottomUpInputWalker walker(sample.graph, sample.b, true);
        for (int i = 0; i < steps; ++i)
            walker.next();
        EXPECT_EQ(walker.valid(), steps < 4);
    }
}

TEST(BottomUpInputWalker, DepthIsNoLimit)
{
    const int count = 20000;
    Graph graph;
    for (int i = 0; i < count; ++i)
        graph.addNode(QString(), 1, 1, kRoot);
    for (int node = count; node > 1; --node)
        graph.addEdge(node - 1, 0, node, 0);
    Refs refs;
    runOnSmallStack([&] { refs = bottomUp(graph, count, true); });
    Refs expected;
    for (int node = 1; node <= count; ++node)
        expected.push_back(node);
    EXPECT_EQ(refs, expected);
    std::reverse(expected.begin(), expected.end());
    EXPECT_EQ(breadthFirst(graph, count, false), expected);
}

// BreadthFirstInputWalker

TEST(BreadthFirstInputWalker, YieldsLevelByLevel)
{
    // a -> b -> d.0,  c -> d.1,  a -> d.2
    Graph graph;
    const int a = addPass(graph);
    const int b = addPass(graph);
    const int c = addPass(graph);
    const int d = addPass(graph);
    const int e = addPass(graph);
    graph.addEdge(a, 0, b, 0);
    graph.addEdge(e, 0, c, 0);
    graph.addEdge(b, 0, d, 0);
    graph.addEdge(c, 0, d, 1);
    EXPECT_EQ(breadthFirst(graph, d, false), (Refs{d, b, c, a, e}));
    EXPECT_EQ(bottomUp(graph, d, false), (Refs{a, b, e, c, d}));
}

TEST(BreadthFirstInputWalker, FlatTakesTheGroupAndNotWhatIsInside)
{
    const SampleGraph sample;
    EXPECT_EQ(breadthFirst(sample.graph, sample.b, false), (Refs{sample.b, sample.g, sample.a}));
    EXPECT_EQ(breadthFirst(sample.graph, sample.x, false), Refs{sample.x});
}

TEST(BreadthFirstInputWalker, FollowingTheHierarchyTakesTheProducersAndNotTheGroup)
{
    const SampleGraph sample;
    EXPECT_EQ(breadthFirst(sample.graph, sample.b, true),
              (Refs{sample.b, sample.y, sample.x, sample.a}));
    EXPECT_EQ(breadthFirst(sample.graph, sample.x, true), (Refs{sample.x, sample.a}));
}

TEST(BreadthFirstInputWalker, YieldsAStartWithoutInputsAlone)
{
    Graph graph;
    const int node = graph.addNode(QString(), 0, 1, kRoot);
    EXPECT_EQ(breadthFirst(graph, node, false), Refs{node});
    EXPECT_EQ(breadthFirst(graph, kRoot, true), Refs{kRoot});
}

TEST(BreadthFirstInputWalker, YieldsTheNodesOfACycleOnce)
{
    const Cycle sample;
    EXPECT_EQ(breadthFirst(sample.graph, sample.k, true), (Refs{sample.k, sample.s}));
    EXPECT_EQ(breadthFirst(sample.graph, sample.s, true), (Refs{sample.s, sample.k}));
}

TEST(BreadthFirstInputWalker, IsInvalidForNoNode)
{
    const Graph graph;
    BreadthFirstInputWalker walker(graph, Graph::kInvalidNodeRef, false);
    EXPECT_FALSE(walker.valid());
    EXPECT_EQ(walker.node(), -1);
    walker.next();
    EXPECT_FALSE(walker.valid());
}

TEST(BreadthFirstInputWalker, YieldsAStartOutsideTheTableAlone)
{
    const SampleGraph sample;
    for (const bool followHierarchy : {false, true}) {
        for (const int node : kOutside)
            EXPECT_EQ(breadthFirst(sample.graph, node, followHierarchy), Refs{node});
        const int end = sample.graph.numNodesGlobal();
        EXPECT_EQ(breadthFirst(sample.graph, end, followHierarchy), Refs{end});
    }
}

TEST(BreadthFirstInputWalker, StaysAtItsEnd)
{
    const SampleGraph sample;
    BreadthFirstInputWalker walker(sample.graph, sample.a, true);
    EXPECT_EQ(walker.node(), sample.a);
    for (int i = 0; i < 3; ++i) {
        walker.next();
        EXPECT_FALSE(walker.valid());
        EXPECT_EQ(walker.node(), -1);
    }
}

TEST(BreadthFirstInputWalker, DoesNotReachNodesThatAreAddedMeanwhile)
{
    Graph graph;
    const int sink = addPass(graph);
    const int source = addPass(graph);
    graph.addEdge(source, 0, sink, 0);
    BreadthFirstInputWalker walker(graph, sink, true);
    for (int i = 0; i < 100; ++i)
        addPass(graph);
    graph.addEdge(graph.numNodesGlobal() - 1, 0, sink, 1);
    EXPECT_EQ(walk(walker), (Refs{sink, source}));
}

TEST(BreadthFirstInputWalker, HoldsEveryNodeOfTheGraph)
{
    const int count = 300;
    Graph graph;
    const int sink = graph.addNode(QString(), count, 0, kRoot);
    Refs expected = {sink};
    for (int i = 0; i < count; ++i) {
        expected.push_back(addPass(graph));
        graph.addEdge(expected.back(), 0, sink, i);
    }
    EXPECT_EQ(breadthFirst(graph, sink, false), expected);
}

// BottomUpSubgraphWalker

TEST(BottomUpSubgraphWalker, YieldsChildrenBeforeTheirParent)
{
    Graph graph;
    const int r = addPass(graph);
    const int a = addPass(graph, r);
    const int b = addPass(graph, r);
    const int a1 = addPass(graph, a);
    EXPECT_EQ(subgraph(graph, r), (Refs{a1, a, b, r}));
    EXPECT_EQ(subgraph(graph, a), (Refs{a1, a}));
}

TEST(BottomUpSubgraphWalker, YieldsALeafAlone)
{
    const SampleGraph sample;
    EXPECT_EQ(subgraph(sample.graph, sample.x), Refs{sample.x});
}

TEST(BottomUpSubgraphWalker, FromTheRootYieldsEveryListedNodeTheRootLast)
{
    const SampleGraph sample;
    EXPECT_EQ(subgraph(sample.graph, kRoot),
              (Refs{sample.a, sample.x, sample.y, sample.g, sample.b, kRoot}));
}

TEST(BottomUpSubgraphWalker, OfANewGraphYieldsTheRoot)
{
    const Graph graph;
    EXPECT_EQ(subgraph(graph, kRoot), Refs{kRoot});
}

TEST(BottomUpSubgraphWalker, IsInvalidForWhatIsNoValidNode)
{
    SampleGraph sample;
    sample.graph.removeNode(sample.g);
    for (const int node :
         {-1, INT_MIN, INT_MAX, sample.graph.numNodesGlobal(), sample.g, sample.x}) {
        BottomUpSubgraphWalker walker(sample.graph, node);
        EXPECT_FALSE(walker.valid()) << node;
        EXPECT_EQ(walker.node(), -1);
        walker.next();
        EXPECT_FALSE(walker.valid()) << node;
    }
}

TEST(BottomUpSubgraphWalker, YieldsARemovedNodeThatIsStillListed)
{
    SampleGraph sample;
    sample.graph.removeChildNode(sample.g);
    EXPECT_EQ(subgraph(sample.graph, kRoot), (Refs{sample.a, sample.g, sample.b, kRoot}));
}

TEST(BottomUpSubgraphWalker, PassesOverARemovedNodeThatIsListedNoMore)
{
    SampleGraph sample;
    sample.graph.removeNode(sample.g);
    EXPECT_EQ(subgraph(sample.graph, kRoot), (Refs{sample.a, sample.b, kRoot}));
}

TEST(BottomUpSubgraphWalker, StaysAtItsEnd)
{
    const Graph graph;
    BottomUpSubgraphWalker walker(graph, kRoot);
    EXPECT_TRUE(walker.valid());
    for (int i = 0; i < 3; ++i) {
        walker.next();
        EXPECT_FALSE(walker.valid());
        EXPECT_EQ(walker.node(), -1);
    }
}

TEST(BottomUpSubgraphWalker, MayBeDestroyedAtAnyNode)
{
    const SampleGraph sample;
    for (int steps = 0; steps < 8; ++steps) {
        BottomUpSubgraphWalker walker(sample.graph, kRoot);
        for (int i = 0; i < steps; ++i)
            walker.next();
        EXPECT_EQ(walker.valid(), steps < 6);
    }
}

TEST(BottomUpSubgraphWalker, DoesNotReachNodesThatAreAddedMeanwhileWhereChildrenAreNoTree)
{
    Graph graph;
    const int group = graph.addNode(QString(), 0, 0, kRoot);
    addPass(graph, group);
    graph.purge(); // the root lists itself, and so does the group
    BottomUpSubgraphWalker walker(graph, kRoot);
    for (int i = 0; i < 100; ++i)
        addPass(graph);
    EXPECT_EQ(walk(walker), Refs{kRoot});
}

TEST(BottomUpSubgraphWalker, DepthIsNoLimit)
{
    const int depth = 100000;
    Graph graph;
    int parent = kRoot;
    for (int i = 0; i < depth; ++i)
        parent = graph.addNode(QString(), 0, 0, parent);
    Refs refs;
    runOnSmallStack([&] { refs = subgraph(graph, kRoot); });
    Refs expected;
    for (int node = depth; node >= 0; --node)
        expected.push_back(node);
    EXPECT_EQ(refs, expected);
}
