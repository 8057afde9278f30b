// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include <Kestrin/Orv/Graph.h>

#include <gtest/gtest.h>

#include <dlfcn.h>

using Kestrin::Orv::Graph;

namespace {

/// What a host that was built before sees behind a constant's symbol.
const int* constantByName(const char* mangledName)
{
    return static_cast<const int*>(dlsym(RTLD_DEFAULT, mangledName));
}

} // namespace

TEST(AbiConstants, ServeAsConstantExpressions)
{
    static_assert(Graph::kRootNodeRef == 0, "");
    static_assert(Graph::kInvalidNodeRef == -1, "");
    static_assert(Graph::kInvalidEdgeRef == -1, "");
    static_assert(Graph::kInvalidGroupRef == -1, "");
}

#if !defined(ORV_CORE_STATIC)
TEST(AbiConstants, AreDataSymbolsOfTheLibrary)
{
    const std::pair<const char*, const int*> constants[] = {
        {"_ZN7Kestrin3Orv5Graph12kRootNodeRefE", &Graph::kRootNodeRef},
        {"_ZN7Kestrin3Orv5Graph15kInvalidNodeRefE", &Graph::kInvalidNodeRef},
        {"_ZN7Kestrin3Orv5Graph15kInvalidEdgeRefE", &Graph::kInvalidEdgeRef},
        {"_ZN7Kestrin3Orv5Graph16kInvalidGroupRefE", &Graph::kInvalidGroupRef},
    };
    for (const auto& constant : constants) {
        const int* symbol = constantByName(constant.first);
        ASSERT_NE(symbol, nullptr) << constant.first;
        EXPECT_EQ(symbol, constant.second) << constant.first;
    }
    EXPECT_EQ(*constantByName("_ZN7Kestrin3Orv5Graph12kRootNodeRefE"), 0);
    EXPECT_EQ(*constantByName("_ZN7Kestrin3Orv5Graph15kInvalidNodeRefE"), -1);
    EXPECT_EQ(*constantByName("_ZN7Kestrin3Orv5Graph15kInvalidEdgeRefE"), -1);
    EXPECT_EQ(*constantByName("_ZN7Kestrin3Orv5Graph16kInvalidGroupRefE"), -1);
}
#endif
