// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include <Kestrin/Orv/OrvCore.h>

#include "GraphTables.h"
#include "RendererImpl.h"
#include "WalkFrame.h"

#include <gtest/gtest.h>

#include <type_traits>

using namespace Kestrin::Orv;

/// Skips a test of offsets and sizes that are on record for 64 bits, as releases are built.
#define ORV_ONLY_WITH_64_BITS()                                                                    \
    if (sizeof(void*) != 8)                                                                        \
    GTEST_SKIP() << "on record are the layouts of 64 bits"

namespace {

/// How far a member lies behind the start of its object.
template<typename Object, typename Member>
std::ptrdiff_t offset(const Object& object, const Member& member)
{
    return reinterpret_cast<const char*>(&member) - reinterpret_cast<const char*>(&object);
}

struct OpenPassHelper : RenderPassHelper
{
    void expectOrder() const
    {
        const std::ptrdiff_t offsets[] = {
            offset(*this, inputs),       offset(*this, defaultValues), offset(*this, outputs),
            offset(*this, outputUsers),  offset(*this, timer),         offset(*this, reservedInt),
            offset(*this, reservedWide), offset(*this, reservedSlots), offset(*this, error),
        };
        const std::ptrdiff_t expected[] = {8, 16, 24, 32, 40, 56, 64, 72, 872};
        for (std::size_t i = 0; i < std::size(expected); ++i)
            EXPECT_EQ(offsets[i], expected[i]) << "member " << i;
    }
};

struct OpenHistogram : HistogramFrameTimes
{
    void expectOrder() const
    {
        const std::ptrdiff_t offsets[] = {
            offset(*this, mutex),       offset(*this, buckets),   offset(*this, frameCount),
            offset(*this, totalTimeUS), offset(*this, minTimeUS), offset(*this, peakBucketUS),
            offset(*this, peakCount),
        };
        const std::ptrdiff_t expected[] = {8, 16, 24, 28, 32, 36, 40};
        for (std::size_t i = 0; i < std::size(expected); ++i)
            EXPECT_EQ(offsets[i], expected[i]) << "member " << i;
    }
};

} // namespace

TEST(AbiLayout, OwnersHoldOnePointerToTheirPrivateData)
{
    EXPECT_EQ(sizeof(Graph), sizeof(void*));
    EXPECT_EQ(sizeof(Renderer), 2 * sizeof(void*));
    EXPECT_EQ(sizeof(MemoryMappedFile), 2 * sizeof(void*));
}

TEST(AbiLayout, InterfacesHoldNothingButTheirVirtualTable)
{
    EXPECT_EQ(sizeof(RenderPass), sizeof(void*));
    EXPECT_EQ(sizeof(Memory), sizeof(void*));
    EXPECT_TRUE(std::is_empty<ProfilerHelper>::value);
}

TEST(AbiLayout, RawMemoryHoldsItsBufferAndThenItsSize)
{
    ORV_ONLY_WITH_64_BITS();
    EXPECT_EQ(sizeof(RawMemory), 24U);
    auto* bytes = new unsigned char[5];
    const RawMemory memory(bytes, 5);
    const auto* words = reinterpret_cast<const quintptr*>(&memory);
    EXPECT_EQ(words[1], reinterpret_cast<quintptr>(bytes));
    EXPECT_EQ(words[2], 5U);
}

TEST(AbiLayout, PassHelperMembersStandInOrder)
{
    ORV_ONLY_WITH_64_BITS();
    EXPECT_EQ(sizeof(RenderPassHelper), 880U);
    OpenPassHelper().expectOrder();
}

TEST(AbiLayout, HistogramFieldsStandInOrder)
{
    ORV_ONLY_WITH_64_BITS();
    EXPECT_EQ(sizeof(HistogramFrameTimes), 48U);
    OpenHistogram().expectOrder();
}

TEST(AbiLayout, WalkersKeepTheirSizes)
{
    ORV_ONLY_WITH_64_BITS();
    EXPECT_EQ(sizeof(BottomUpInputWalker), 32U);
    EXPECT_EQ(sizeof(BottomUpSubgraphWalker), 16U);
    EXPECT_EQ(sizeof(BreadthFirstInputWalker), 40U);
}

TEST(AbiLayout, WalkerFieldsStandInOrder)
{
    Graph graph;
    const int node = graph.addNode(QStringLiteral("n"), 0, 0, Graph::kRootNodeRef);

    const BottomUpInputWalker input(graph, node, true);
    const auto* inputWords = reinterpret_cast<void* const*>(&input);
    EXPECT_EQ(inputWords[0], &graph);
    EXPECT_EQ(*reinterpret_cast<const bool*>(&inputWords[1]), true);
    EXPECT_EQ(static_cast<const unsigned char*>(inputWords[2])[0], 0) << "visited";
    EXPECT_EQ(static_cast<const WalkFrame*>(inputWords[3])->node, node) << "stack";

    const BottomUpSubgraphWalker subgraph(graph, node);
    const auto* subgraphWords = reinterpret_cast<void* const*>(&subgraph);
    EXPECT_EQ(subgraphWords[0], &graph);
    EXPECT_EQ(static_cast<const WalkFrame*>(subgraphWords[1])->node, node) << "stack";

    const BreadthFirstInputWalker breadth(graph, node, true);
    const auto* breadthWords = reinterpret_cast<void* const*>(&breadth);
    EXPECT_EQ(breadthWords[0], &graph);
    EXPECT_EQ(*reinterpret_cast<const bool*>(&breadthWords[1]), true);
    EXPECT_EQ(static_cast<const unsigned char*>(breadthWords[2])[node], 1) << "visited";
    EXPECT_EQ(static_cast<const int*>(breadthWords[3])[0], node) << "queue";
    EXPECT_EQ(reinterpret_cast<const int*>(&breadthWords[4])[0], 0) << "head";
    EXPECT_EQ(reinterpret_cast<const int*>(&breadthWords[4])[1], 1) << "tail";
}

TEST(AbiLayout, GraphRecordsStandInOrder)
{
    ORV_ONLY_WITH_64_BITS();
    EXPECT_EQ(sizeof(Node), 64U);
    EXPECT_EQ(offsetof(Node, name), 0U);
    EXPECT_EQ(offsetof(Node, parent), 8U);
    EXPECT_EQ(offsetof(Node, value), 12U);
    EXPECT_EQ(offsetof(Node, inputs), 16U);
    EXPECT_EQ(offsetof(Node, outputs), 24U);
    EXPECT_EQ(offsetof(Node, inputGroups), 32U);
    EXPECT_EQ(offsetof(Node, outputGroups), 40U);
    EXPECT_EQ(offsetof(Node, children), 48U);
    EXPECT_EQ(offsetof(Node, removed), 56U);
    EXPECT_EQ(offsetof(Node, numSourceEdges), 60U);

    EXPECT_EQ(sizeof(Port), 32U);
    EXPECT_EQ(offsetof(Port, name), 0U);
    EXPECT_EQ(offsetof(Port, source), 8U);
    EXPECT_EQ(offsetof(Port, destinations), 16U);
    EXPECT_EQ(offsetof(Port, group), 24U);

    EXPECT_EQ(sizeof(Edge), 20U);
    EXPECT_EQ(offsetof(Edge, srcNode), 0U);
    EXPECT_EQ(offsetof(Edge, srcIndex), 4U);
    EXPECT_EQ(offsetof(Edge, dstNode), 8U);
    EXPECT_EQ(offsetof(Edge, dstIndex), 12U);
    EXPECT_EQ(offsetof(Edge, removed), 16U);

    EXPECT_EQ(offsetof(WalkFrame, node), 0U);
    EXPECT_EQ(offsetof(WalkFrame, nextIndex), 4U);
    EXPECT_EQ(offsetof(WalkFrame, below), 8U);
}

TEST(AbiLayout, RecordsAreMovableToQt)
{
    EXPECT_FALSE(QTypeInfo<Node>::isStatic);
    EXPECT_FALSE(QTypeInfo<Port>::isStatic);
    EXPECT_FALSE(QTypeInfo<Edge>::isStatic);
    EXPECT_FALSE(QTypeInfo<NamedValue<QVariant>>::isStatic);
}

TEST(AbiLayout, OwnersAreNeitherCopiedNorAssigned)
{
    const auto expectUnique = [](auto* null) {
        using T = std::remove_pointer_t<decltype(null)>;
        EXPECT_FALSE(std::is_copy_constructible<T>::value) << typeid(T).name();
        EXPECT_FALSE(std::is_copy_assignable<T>::value) << typeid(T).name();
        EXPECT_FALSE(std::is_move_constructible<T>::value) << typeid(T).name();
        EXPECT_FALSE(std::is_move_assignable<T>::value) << typeid(T).name();
    };
    expectUnique(static_cast<Graph*>(nullptr));
    expectUnique(static_cast<Renderer*>(nullptr));
    expectUnique(static_cast<BottomUpInputWalker*>(nullptr));
    expectUnique(static_cast<BottomUpSubgraphWalker*>(nullptr));
    expectUnique(static_cast<BreadthFirstInputWalker*>(nullptr));
    expectUnique(static_cast<HistogramFrameTimes*>(nullptr));
    expectUnique(static_cast<MemoryMappedFile*>(nullptr));
    expectUnique(static_cast<RawMemory*>(nullptr));
    expectUnique(static_cast<ProfilerHelper*>(nullptr));
}

TEST(AbiLayout, ClassesArePolymorphicOnlyWhereTheyHaveVirtualOperations)
{
    EXPECT_FALSE(std::is_polymorphic<Graph>::value);
    EXPECT_FALSE(std::is_polymorphic<BottomUpInputWalker>::value);
    EXPECT_FALSE(std::is_polymorphic<BottomUpSubgraphWalker>::value);
    EXPECT_FALSE(std::is_polymorphic<BreadthFirstInputWalker>::value);
    EXPECT_FALSE(std::is_polymorphic<ProfilerHelper>::value);
    EXPECT_TRUE(std::has_virtual_destructor<RenderPass>::value);
    EXPECT_TRUE(std::has_virtual_destructor<Renderer>::value);
    EXPECT_TRUE(std::has_virtual_destructor<HistogramFrameTimes>::value);
    EXPECT_TRUE(std::has_virtual_destructor<Memory>::value);
}
