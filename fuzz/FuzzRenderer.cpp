// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "FuzzTarget.h"

#include "oracle/RendererHistory.h"

// Any calls on a renderer, on its graph and by its passes, compared with the oracle.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    expectNothingWrong(runRendererHistory(decodeRendererSteps(data, size, 100)));
    return 0;
}
