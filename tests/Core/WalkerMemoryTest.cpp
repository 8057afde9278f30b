// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

// What the walkers take from the heap. This executable's own operators new and delete keep the
// books and fill fresh memory, so that a read of what was never written shows.

#include <Kestrin/Orv/Graph.h>
#include <Kestrin/Orv/Walkers.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <new>

using Kestrin::Orv::BottomUpInputWalker;
using Kestrin::Orv::BottomUpSubgraphWalker;
using Kestrin::Orv::BreadthFirstInputWalker;
using Kestrin::Orv::Graph;

namespace {

int blocks = 0;
std::size_t arraySizes[8];
int arrays = 0;
int fill = 0;

void* take(std::size_t size)
{
    const std::size_t numInts = size / sizeof(int) + 1;
    int* block = static_cast<int*>(std::malloc(numInts * sizeof(int)));
    if (!block)
        throw std::bad_alloc();
    std::fill_n(block, numInts, fill);
    ++blocks;
    return block;
}

void give(void* block)
{
    if (block)
        --blocks;
    std::free(block);
}

} // namespace

void* operator new(std::size_t size)
{
    return take(size);
}
void* operator new[](std::size_t size)
{
    arraySizes[arrays++ % 8] = size;
    return take(size);
}
void operator delete(void* block) noexcept
{
    give(block);
}
void operator delete[](void* block) noexcept
{
    give(block);
}
void operator delete(void* block, std::size_t) noexcept
{
    give(block);
}
void operator delete[](void* block, std::size_t) noexcept
{
    give(block);
}

namespace {

/// Three siblings, of which the second is fed by the others and the last holds another node.
struct WalkerMemory : testing::Test
{
    Graph graph;
    const int a = graph.addNode(QString(), 0, 1, Graph::kRootNodeRef);
    const int b = graph.addNode(QString(), 2, 1, Graph::kRootNodeRef);
    const int c = graph.addNode(QString(), 0, 1, Graph::kRootNodeRef);
    const int inner = graph.addNode(QString(), 0, 0, c);
    const int aToB = graph.addEdge(a, 0, b, 0);
    const int cToB = graph.addEdge(c, 0, b, 1);

    /// How many blocks are left after the walker took `steps` steps.
    template<typename Walker, typename... Arguments>
    int left(int steps, Arguments... arguments)
    {
        const int before = blocks;
        {
            Walker walker(graph, arguments...);
            EXPECT_GT(blocks, before);
            for (int i = 0; i < steps; ++i)
                walker.next();
        }
        return blocks - before;
    }
};

} // namespace

TEST_F(WalkerMemory, IsGivenBackWhereverTheWalkEnds)
{
    for (const int steps : {0, 1, 2, 3, 10}) {
        EXPECT_EQ((left<BottomUpInputWalker>(steps, b, true)), 0) << steps;
        EXPECT_EQ((left<BottomUpSubgraphWalker>(steps, Graph::kRootNodeRef)), 0) << steps;
        EXPECT_EQ((left<BreadthFirstInputWalker>(steps, b, true)), 0) << steps;
    }
}

TEST_F(WalkerMemory, TheBottomUpInputWalkerHasAByteForEachChildOfTheRoot)
{
    constexpr std::size_t head = 2 * sizeof(int) + sizeof(void*); // lengths, and marks elsewhere
    arrays = 0;
    const BottomUpInputWalker walker(graph, graph.addNode(QString(), 0, 0, inner), false);
    ASSERT_EQ(arrays, 1);
    EXPECT_EQ(arraySizes[0], head + 3);
}

TEST_F(WalkerMemory, TheBottomUpInputWalkerTakesMarksForAllNodesWhenItReachesOneBeyond)
{
    const int last = graph.addNode(QString(), 1, 0, Graph::kRootNodeRef);
    graph.addEdge(graph.addNode(QString(), 0, 1, Graph::kRootNodeRef), 0, last, 0);
    arrays = 0;
    const BottomUpInputWalker walker(graph, last, false);
    ASSERT_EQ(arrays, 2);
    EXPECT_EQ(arraySizes[1], static_cast<std::size_t>(graph.numNodesGlobal()));
}

TEST_F(WalkerMemory, TheBottomUpInputWalkerHasAFrameForEachNodeOnThePath)
{
    // Marks, frames and, from c on, whose ref is beyond the marks, the marks for all nodes.
    const int none = blocks;
    BottomUpInputWalker inputs(graph, b, false);
    const int onA = blocks - none;
    inputs.next();
    const int onC = blocks - none;
    inputs.next();
    const int onB = blocks - none;
    inputs.next();
    const int atEnd = blocks - none;
    EXPECT_EQ(onA, 1 + 2);
    EXPECT_EQ(onC, 1 + 2 + 1);
    EXPECT_EQ(onB, 1 + 1 + 1);
    EXPECT_EQ(atEnd, 1 + 0 + 1);
}

TEST_F(WalkerMemory, TheSubgraphWalkerHasAFrameForEachNodeOnThePathAndNothingElse)
{
    const int none = blocks;
    BottomUpSubgraphWalker subgraph(graph, c);
    const int onInner = blocks - none;
    subgraph.next();
    const int onC = blocks - none;
    subgraph.next();
    const int atEnd = blocks - none;
    EXPECT_EQ(onInner, 2);
    EXPECT_EQ(onC, 1);
    EXPECT_EQ(atEnd, 0);
}

TEST_F(WalkerMemory, TheSubgraphWalkerTakesMarksOnlyWhereChildrenAreNoTree)
{
    graph.purge(); // now the root's children are 0, 1, 2
    const int none = blocks;
    BottomUpSubgraphWalker walker(graph, Graph::kRootNodeRef);
    const int onNodeOne = blocks - none;
    while (walker.valid())
        walker.next();
    const int atEnd = blocks - none;
    EXPECT_GT(onNodeOne, 2) << "two frames, and marks";
    EXPECT_EQ(atEnd, 0);
}

TEST_F(WalkerMemory, TheBottomUpInputWalkerTakesNoneForNoNode)
{
    const int before = blocks;
    const BottomUpInputWalker walker(graph, Graph::kInvalidNodeRef, false);
    EXPECT_EQ(blocks, before);
}

TEST_F(WalkerMemory, TheBreadthFirstWalkerHasAByteAndAnIntForEachNodeAndTwoMore)
{
    arrays = 0;
    const BreadthFirstInputWalker walker(graph, b, false);
    ASSERT_EQ(arrays, 2);
    EXPECT_EQ(arraySizes[0], 5u);
    EXPECT_EQ(arraySizes[1], 7 * sizeof(int)); // a spare entry, and the length before them all
}

// Here the slot of the queue behind the last node happens to name a node with two sources.
TEST_F(WalkerMemory, TheBreadthFirstWalkDoesNotGoOnBehindItsEnd)
{
    fill = b;
    BreadthFirstInputWalker walker(graph, inner, false);
    fill = 0;
    walker.next();
    EXPECT_FALSE(walker.valid());
    walker.next();
    EXPECT_FALSE(walker.valid());
}
