// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include <Kestrin/Orv/Inspect/Trace.h>
#include <Kestrin/Orv/Inspect/TracedPass.h>

#include "support/Growth.h"
#include "support/LightPass.h"

#include <gtest/gtest.h>

#include <memory>
#include <vector>

using namespace Kestrin::Orv;
using namespace Kestrin::Orv::Inspect;

namespace {

/// So many passes in one frame.
struct WideFrame
{
    explicit WideFrame(int size)
    {
        for (int i = 0; i < size; ++i)
            passes.push_back(
                std::make_unique<TracedPass>(trace, QStringLiteral("A"), new LightPass(0, 0)));
        trace.beginFrame();
        for (const auto& pass : passes) {
            pass->start(nullptr);
            pass->isFinished();
        }
        trace.endFrame();
    }

    Trace trace;
    std::vector<std::unique_ptr<TracedPass>> passes;
};

} // namespace

TEST(TraceGrowth, SummariesGrowWithTheEvents)
{
    expectLinear<WideFrame>(100000, [](WideFrame& frame) {
        const QVector<TraceSummary> passes = frame.trace.passes();
        EXPECT_EQ(passes.last().count, 1);
    });
}

TEST(TraceGrowth, FileGrowsWithTheEvents)
{
    expectLinear<WideFrame>(
        100000, [](WideFrame& frame) { EXPECT_GT(frame.trace.toTraceEvents().size(), 3000000); });
}
