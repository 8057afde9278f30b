// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Rules/StronglyConnected.h"

#include <gtest/gtest.h>

#include <random>

using namespace Kestrin::Orv::Inspect;

namespace {

using Matrix = std::vector<std::vector<bool>>;

/// Which vertex reaches which, by Warshall's algorithm.
Matrix closureOf(Matrix reaches)
{
    for (std::size_t via = 0; via < reaches.size(); ++via) {
        for (std::size_t from = 0; from < reaches.size(); ++from) {
            for (std::size_t to = 0; to < reaches.size(); ++to)
                reaches[from][to] = reaches[from][to] || (reaches[from][via] && reaches[via][to]);
        }
    }
    return reaches;
}

bool isSame(const StronglyConnected& found, std::size_t a, std::size_t b)
{
    return found.components[a] >= 0 && found.components[a] == found.components[b];
}

} // namespace

TEST(StronglyConnected, PutsTogetherWhatReachesEachOther)
{
    std::mt19937 random(1);
    for (int repetition = 0; repetition < 2000; ++repetition) {
        const int numVertices = 1 + static_cast<int>(random() % 9);
        const auto size = static_cast<std::size_t>(numVertices);
        Arcs arcs(numVertices);
        Matrix matrix(size, std::vector<bool>(size, false));
        for (unsigned left = random() % 16; left > 0; --left) {
            const std::size_t from = random() % size;
            const std::size_t to = random() % size;
            arcs.add(static_cast<int>(from), static_cast<int>(to));
            matrix[from][to] = true;
        }
        arcs.sort();
        const StronglyConnected found(arcs);
        const Matrix reaches = closureOf(matrix);
        for (std::size_t a = 0; a < size; ++a) {
            bool isAlone = true;
            for (std::size_t b = 0; b < size; ++b) {
                const bool isTogether = a != b && reaches[a][b] && reaches[b][a];
                isAlone = isAlone && !isTogether;
                if (a != b) {
                    ASSERT_EQ(isSame(found, a, b), isTogether) << repetition;
                }
                // The search leaves what a vertex reaches before the vertex itself.
                if (found.components[a] < 0 && a != b && reaches[a][b]) {
                    ASSERT_GT(found.finished[a], found.finished[b]) << repetition;
                }
            }
            ASSERT_EQ(found.components[a] < 0, isAlone) << repetition;
        }
    }
}

TEST(StronglyConnected, TakesAPathOfAnyLength)
{
    const int length = 200000;
    Arcs arcs(length);
    for (int i = 0; i < length; ++i)
        arcs.add(i, (i + 1) % length);
    arcs.sort();
    const StronglyConnected found(arcs);
    EXPECT_EQ(found.components, tableOf(length, 0));
}
