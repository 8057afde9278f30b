// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "FuzzTarget.h"

#include "oracle/GraphHistory.h"

// Any calls with any arguments, compared with the oracle.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const GraphHistory history;
    expectNothingWrong(history.run(decodeGraphSteps(data, size, 120)));
    return 0;
}
