// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef ORV_TESTS_STEPS_H
#define ORV_TESTS_STEPS_H

#include "oracle/GraphCalls.h"

#include <rapidcheck.h>

#include <cstdlib>

/// More cases than RapidCheck's hundred, unless the environment has a mind of its own.
static const int kMoreCases = setenv("RC_PARAMS", "max_success=1000", 0);

/// Any byte, shrinking towards 0, and all of them from the start: RapidCheck's own bytes grow with
/// its size parameter, and the odd arguments stand for the large ones.
inline rc::Gen<std::uint8_t> anyByte()
{
    return rc::gen::resize(100, rc::gen::arbitrary<std::uint8_t>());
}

/// A step of one of the operations from `first` up to, not including, `last`.
inline rc::Gen<GraphStep> graphStep(int first, int last)
{
    return rc::gen::map(
        rc::gen::tuple(rc::gen::inRange(first, last), anyByte(), anyByte(), anyByte(), anyByte()),
        [](const std::tuple<int, std::uint8_t, std::uint8_t, std::uint8_t, std::uint8_t>& t) {
            return GraphStep{static_cast<std::uint8_t>(std::get<0>(t)),
                             {std::get<1>(t), std::get<2>(t), std::get<3>(t), std::get<4>(t)}};
        });
}

inline rc::Gen<GraphStep> graphStep(GraphOp op)
{
    return graphStep(static_cast<int>(op), static_cast<int>(op) + 1);
}

inline void showValue(const GraphStep& step, std::ostream& os)
{
    os << int(step.op);
}

#endif
