// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include <Kestrin/Orv/Inspect/Trace.h>
#include <Kestrin/Orv/Inspect/TracedPass.h>

#include <Kestrin/Orv/Graph.h>
#include <Kestrin/Orv/Renderer.h>

#include "Scale/Limits.h"
#include "support/LightPass.h"

#include <gtest/gtest.h>

using namespace Kestrin::Orv;
using namespace Kestrin::Orv::Inspect;

#ifndef ORV_SANITIZED

namespace {

long numAllocations = 0;

} // namespace

// The sanitizers replace it themselves.
extern "C" {
void* __libc_malloc(std::size_t size);

void* malloc(std::size_t size) noexcept
{
    ++numAllocations;
    return __libc_malloc(size);
}
}

TEST(TraceMemory, RecordingAllocatesNothing)
{
    long counts[2] = {0, 0};
    for (const bool traced : {false, true}) {
        Trace trace;
        trace.setDetail(Trace::EveryCall);
        Renderer renderer;
        for (int i = 0; i < 10; ++i) {
            RenderPass* pass = new LightPass(1, 1);
            if (traced)
                pass = new TracedPass(trace, QStringLiteral("A"), pass);
            const int node = renderer.addPass(QString(), pass, 0);
            if (i > 0)
                renderer.getGraph()->addEdge(node - 1, 0, node, 0);
            renderer.setTarget(node);
        }
        renderer.setup(nullptr);
        renderer.render(nullptr);
        const long before = numAllocations;
        for (int i = 0; i < 1000; ++i) {
            trace.beginFrame();
            renderer.render(nullptr);
            trace.endFrame();
        }
        counts[traced] = numAllocations - before;
        EXPECT_EQ(renderer.getNumPasses(), 10);
        EXPECT_EQ(trace.numDropped(), 0);
    }
    EXPECT_EQ(counts[true], counts[false]);
    const long before = numAllocations;
    QString(100, QLatin1Char(' '));
    EXPECT_EQ(numAllocations, before + 1);
}

#endif
