// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef ORV_TESTS_LARGEGRAPHS_H
#define ORV_TESTS_LARGEGRAPHS_H

#include <Kestrin/Orv/Graph.h>
#include <Kestrin/Orv/Inspect/Snapshot.h>
#include <Kestrin/Orv/Renderer.h>

#include "support/Growth.h"
#include "support/LightPass.h"

// Snapshots of one size and of extreme shape, for the tests of growth. In each, one output of the
// renderer leads to all passes and the node `deepest` is the last that the renderer comes to.

struct LargeGraph
{
    int addPass(int inputs, int outputs, int parent = 0)
    {
        return renderer.addPass(QString(), new LightPass(inputs, outputs), parent);
    }
    void take() { snapshot = Kestrin::Orv::Inspect::Snapshot::of(renderer); }

    Kestrin::Orv::Renderer renderer;
    Kestrin::Orv::Graph& graph = *renderer.getGraph();
    int output = renderer.addOutput(QString());
    int deepest = -1;
    Kestrin::Orv::Inspect::Snapshot snapshot;
};

/// Passes that feed one another.
struct LargeChain : LargeGraph
{
    explicit LargeChain(int size)
    {
        for (int i = 0; i < size; ++i)
            addPass(1, 1);
        deepest = 1;
        graph.addUpEdge(output, size, 0);
        for (int node = size; node > 1; --node) // the graph looks for cycles upstream
            graph.addEdge(node - 1, 0, node, 0);
        take();
    }
};

/// A pass that feeds many, which all feed one.
struct LargeFan : LargeGraph
{
    explicit LargeFan(int size)
    {
        deepest = addPass(0, 1);
        const int sink = addPass(size, 1);
        graph.addUpEdge(output, sink, 0);
        for (int i = 0; i < size; ++i) {
            const int node = addPass(1, 1);
            graph.addEdge(deepest, 0, node, 0);
            graph.addEdge(node, 0, sink, i);
        }
        take();
    }
};

/// A group with many ports, through which a pass in front of it feeds one within, and that one
/// another behind.
struct LargeGroup : LargeGraph
{
    explicit LargeGroup(int size)
    {
        deepest = addPass(0, size);
        const int group = renderer.addGroup(QString(), 0, size, 0);
        const int inside = addPass(size, size, group);
        const int sink = addPass(size, 1);
        graph.addUpEdge(output, sink, 0);
        for (int i = 0; i < size; ++i)
            graph.addEdge(group, i, sink, i); // before the group has inputs to look for cycles in
        for (int i = 0; i < size; ++i) {
            graph.addInput(group, QString(), -1);
            graph.addDownEdge(i, inside, i);
            graph.addUpEdge(i, inside, i);
            graph.addEdge(deepest, i, group, i);
        }
        take();
    }
};

/// Groups in groups, with a pass in the innermost that is fed from outside and feeds the output.
struct LargeNest : LargeGraph
{
    explicit LargeNest(int size)
    {
        deepest = addPass(0, 1);
        int parent = 0;
        for (int i = 0; i < size; ++i) {
            const int group = renderer.addGroup(QString(), 1, 1, parent);
            if (parent == 0) {
                graph.addEdge(deepest, 0, group, 0);
                graph.addUpEdge(output, group, 0);
            } else {
                graph.addDownEdge(0, group, 0);
                graph.addUpEdge(0, group, 0);
            }
            parent = group;
        }
        const int inside = addPass(1, 1, parent);
        graph.addDownEdge(0, inside, 0);
        graph.addUpEdge(0, inside, 0);
        take();
    }
};

#endif
