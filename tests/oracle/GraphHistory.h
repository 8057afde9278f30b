// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef ORV_TESTS_GRAPHHISTORY_H
#define ORV_TESTS_GRAPHHISTORY_H

#include "GraphCalls.h"

#include <string>
#include <vector>

/// Carries a history of calls out on the library's graph and on the oracle's, and compares every
/// answer and every message, and the whole state at the end, or after each call.
/// \return nothing when all agreed; otherwise what did not, and the calls up to there as source.
struct GraphHistory
{
    bool compareStateAfterEachCall = false;
    /// As long as no call has been made that may break them; see GraphInvariants.
    bool checkInvariantsAfterEachCall = true;

    std::string run(const std::vector<GraphStep>& steps) const;
};

/// The steps that the bytes of a fuzzer's input stand for, at most so many.
std::vector<GraphStep> decodeGraphSteps(const std::uint8_t* data, std::size_t size,
                                        std::size_t atMost);

#endif
