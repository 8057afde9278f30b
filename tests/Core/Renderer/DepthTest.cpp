// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

// Depth is no limit: everything here runs on a stack of 8 MiB.

#include "support/LightPass.h"

#include <Kestrin/Orv/Graph.h>
#include <Kestrin/Orv/Renderer.h>

#include <QtCore/QVector>

#include <gtest/gtest.h>

#include <functional>

#include <pthread.h>

using namespace Kestrin::Orv;

namespace {

void* runFunction(void* function)
{
    (*static_cast<std::function<void()>*>(function))();
    return nullptr;
}

/// Runs \p function on a thread of its own, so that the stack has this size whatever the limits of
/// the process are.
void onSmallStack(std::function<void()> function)
{
    pthread_attr_t attributes;
    ASSERT_EQ(pthread_attr_init(&attributes), 0);
    ASSERT_EQ(pthread_attr_setstacksize(&attributes, 8 * 1024 * 1024), 0);
    pthread_t thread;
    ASSERT_EQ(pthread_create(&thread, &attributes, &runFunction, &function), 0);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
}

} // namespace

TEST(Depth, ChainOfAMillionPassesSetsUpAndRenders)
{
    onSmallStack([] {
        const int length = 1000000;
        Renderer renderer;
        Graph& graph = *renderer.getGraph();
        const int first = renderer.addPass(QString(), new LightPass(1, 1), 0);
        for (int i = 1; i < length; ++i)
            renderer.addPass(QString(), new LightPass(1, 1), 0);
        // The test for cycles searches upstream of the source, so the sink comes first.
        graph.addUpEdge(renderer.addOutput(QString()), first + length - 1, 0);
        for (int node = first + length - 1; node > first; --node)
            graph.addEdge(node - 1, 0, node, 0);

        renderer.setup(nullptr);
        EXPECT_TRUE(renderer.render(nullptr));
        EXPECT_EQ(renderer.getNumPasses(), length);
        EXPECT_EQ(renderer.output(0), QVariant(length)) << "each pass ran after its source";
        renderer.teardown(nullptr);
    });
}

TEST(Depth, PassInsideAHundredThousandGroupsSetsUpAndRenders)
{
    onSmallStack([] {
        const int depth = 100000;
        Renderer renderer;
        Graph& graph = *renderer.getGraph();
        renderer.addParameter(QString(), 41);
        renderer.addOutput(QString());
        int parent = Graph::kRootNodeRef;
        for (int i = 0; i < depth; ++i) {
            parent = renderer.addGroup(QString(), 1, 1, parent);
            graph.addDownEdge(0, parent, 0);
            graph.addUpEdge(0, parent, 0);
        }
        const int pass = renderer.addPass(QString(), new LightPass(1, 1), parent);
        graph.addDownEdge(0, pass, 0);
        graph.addUpEdge(0, pass, 0);

        renderer.setup(nullptr);
        EXPECT_TRUE(renderer.render(nullptr));
        EXPECT_EQ(renderer.getNumPasses(), 1);
        EXPECT_EQ(renderer.output(0), QVariant(42));
    });
}

TEST(Depth, ChainThroughNestedGroupsSetsUpAndRenders)
{
    // Each group holds a pass and the next group, which the pass feeds.
    onSmallStack([] {
        const int depth = 5000;
        Renderer renderer;
        Graph& graph = *renderer.getGraph();
        renderer.addOutput(QString());
        QVector<int> passes;
        QVector<int> groups;
        int parent = Graph::kRootNodeRef;
        for (int i = 0; i < depth; ++i) {
            passes.append(renderer.addPass(QString(), new LightPass(1, 1), parent));
            groups.append(renderer.addGroup(QString(), 1, 1, parent));
            parent = groups.last();
        }
        passes.append(renderer.addPass(QString(), new LightPass(1, 1), parent));
        graph.addUpEdge(0, passes.last(), 0);
        for (int i = depth - 1; i >= 0; --i) {
            graph.addUpEdge(0, groups[i], 0);
            graph.addDownEdge(0, passes[i + 1], 0);
            graph.addEdge(passes[i], 0, groups[i], 0);
        }

        renderer.setup(nullptr);
        EXPECT_TRUE(renderer.render(nullptr));
        EXPECT_EQ(renderer.getNumPasses(), depth + 1);
        EXPECT_EQ(renderer.output(0), QVariant(depth + 1));
    });
}

TEST(Depth, WideFanOutIsCountedAndRun)
{
    onSmallStack([] {
        const int width = 100000;
        Renderer renderer;
        Graph& graph = *renderer.getGraph();
        const int source = renderer.addPass(QString(), new LightPass(0, 1), 0);
        for (int i = 0; i < width; ++i) {
            const int pass = renderer.addPass(QString(), new LightPass(1, 1), 0);
            graph.addEdge(source, 0, pass, 0);
            graph.addUpEdge(renderer.addOutput(QString()), pass, 0);
        }
        renderer.setup(nullptr);
        EXPECT_TRUE(renderer.render(nullptr));
        EXPECT_EQ(renderer.getNumPasses(), width + 1);
        EXPECT_EQ(renderer.output(width - 1), QVariant(2));
    });
}
