// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Inspect/Lint/LintedHost.h"
#include "Inspect/support/Random.h"

#include <gtest/gtest.h>

#include <QtCore/QHash>
#include <QtCore/QSet>

using namespace Kestrin::Orv;
using namespace Kestrin::Orv::Inspect;

namespace {

/// Passes and groups at random, wired at random.
struct RandomHost : Host
{
    Random random;
    QVector<int> passes;

    explicit RandomHost(unsigned seed)
        : random(seed)
    {
        QVector<int> groups{0};
        for (int i = 0; i < 2; ++i) {
            parameter("p");
            output("o");
        }
        const char* const names[] = {"", "a", "a b", "a b c"};
        const int count = 3 + below(random, 12);
        for (int i = 0; i < count; ++i) {
            const int parent = groups.at(below(random, groups.size()));
            const char* inputs = names[below(random, 4)];
            const char* outputs = names[below(random, 4)];
            if (below(random, 3) == 0)
                groups.append(group("G", inputs, outputs, parent));
            else
                passes.append(pass("P", inputs, outputs, parent, QVariant()));
        }
        const int numNodes = graph.numNodesGlobal();
        for (int i = 0; i < 12 * count; ++i) {
            const int a = below(random, numNodes);
            const int b = below(random, numNodes);
            switch (below(random, 4)) {
            case 0:
                graph.addDownEdge(below(random, 3), b, below(random, 3));
                break;
            case 1:
                graph.addUpEdge(below(random, 3), b, below(random, 3));
                break;
            default:
                if (graph.parentNode(a) == graph.parentNode(b) || below(random, 40) == 0)
                    graph.addEdge(a, below(random, 3), b, below(random, 3));
            }
        }
        for (const int node : qAsConst(passes)) {
            if (below(random, 8) == 0)
                renderer.setEnabled(node, false);
        }
        if (below(random, 3) == 0)
            renderer.setTarget(below(random, numNodes));
    }

    /// Leaves the graph in a state that editing may lead to.
    void edit()
    {
        for (int i = below(random, 4); i > 0; --i) {
            const int node = 1 + below(random, graph.numNodesGlobal());
            switch (below(random, 6)) {
            case 0:
                graph.removeNode(node);
                break;
            case 1:
                graph.removeChildNode(node);
                break;
            case 2:
                graph.removeInput(node, 0);
                break;
            case 3:
                graph.removeOutput(node, 0);
                break;
            case 4:
                graph.purge();
                break;
            default:
                graph.removeEdge(below(random, 20));
            }
        }
    }

    bool hasCircularParents() const
    {
        for (int node = 0; node < graph.numNodesGlobal(); ++node) {
            int parent = node;
            int steps = graph.numNodesGlobal() + 1;
            while (parent >= 0 && steps-- > 0)
                parent = graph.parentNode(parent);
            if (parent >= 0)
                return true;
        }
        return false;
    }
};

QSet<QString> places(const Snapshot& snapshot, const char* code)
{
    QSet<QString> all;
    for (const Finding& finding : found(snapshot, code))
        all.insert(QString::number(finding.node) + QLatin1Char('.')
                   + QString::number(finding.port.index));
    return all;
}

QString place(int node, int index)
{
    return QString::number(node) + QLatin1Char('.') + QString::number(index);
}

void compareWithRenderer(RandomHost& host)
{
    Graph& graph = host.graph;
    Renderer& renderer = host.renderer;
    const Snapshot snapshot = host.snapshot();
    for (int node = 0; node < graph.numNodesGlobal(); ++node) {
        if (IdlePass* pass = host.idlePass(node))
            pass->isSetUp = false;
    }
    renderer.setup(nullptr);

    QSet<QString> unneeded;
    QSet<QString> invalid;
    QSet<QString> dead;
    QHash<QString, int> users;
    for (int index = 0; index < renderer.numOutputs(); ++index) {
        int node = 0;
        int port = index;
        if (graph.walkDown(node, port) && renderer.renderPass(node))
            ++users[place(node, port)];
        else if (index < graph.numOutputs(0) && graph.isValidNode(0))
            dead.insert(place(0, index));
    }
    for (int node = 1; node < graph.numNodesGlobal(); ++node) {
        if (!graph.isValidNode(node) || !renderer.renderPass(node) || !renderer.enabled(node))
            continue;
        if (!host.idlePass(node)->isSetUp)
            unneeded.insert(place(node, -1));
        for (int i = 0; i < graph.numInputs(node); ++i) {
            int source = node;
            int port = i;
            const bool up = graph.walkUp(source, port);
            if (up && source == 0)
                continue;
            if (graph.walkAcross(source, port)) {
                graph.walkDown(source, port);
                if (renderer.renderPass(source) && renderer.enabled(source)) {
                    if (host.idlePass(node)->isSetUp)
                        ++users[place(source, port)];
                    continue;
                }
            }
            invalid.insert(place(node, i));
        }
    }
    QSet<QString> uncounted;
    for (int node = 1; node < graph.numNodesGlobal(); ++node) {
        const IdlePass* pass = host.idlePass(node);
        if (!pass || !renderer.enabled(node) || !pass->isSetUp)
            continue;
        for (int i = 0; i < graph.numOutputs(node); ++i) {
            if (pass->users(i) < users.value(place(node, i)))
                uncounted.insert(place(node, i));
        }
    }
    EXPECT_EQ(places(snapshot, "unneeded-pass"), unneeded);
    EXPECT_EQ(places(snapshot, "invalid-default"), invalid);
    EXPECT_EQ(places(snapshot, "dead-output"), dead);
    EXPECT_EQ(places(snapshot, "uncounted-users"), uncounted);

    // Cycles: nodes that are upstream of themselves, one finding for those upstream of each other.
    const int numNodes = graph.numNodesGlobal();
    QVector<QVector<bool>> upstream(numNodes, QVector<bool>(numNodes, false));
    for (int node = 0; node < numNodes; ++node) {
        for (int i = 0; i < graph.numInputs(node); ++i) {
            int source = node;
            int port = i;
            if (graph.walkToSourceNode(source, port) && source >= 0)
                upstream[node][source] = true;
        }
    }
    for (int k = 0; k < numNodes; ++k) {
        for (int i = 0; i < numNodes; ++i) {
            for (int j = 0; j < numNodes; ++j)
                upstream[i][j] = upstream[i][j] || (upstream[i][k] && upstream[k][j]);
        }
    }
    QSet<int> cycles;
    for (int node = 1; node < numNodes; ++node) {
        int first = node;
        bool hasPass = false;
        for (int other = numNodes - 1; other > 0; --other) {
            if (upstream[node][other] && upstream[other][node]) {
                first = qMin(first, other);
                hasPass = hasPass || renderer.renderPass(other);
            }
        }
        if (upstream[node][node] && hasPass)
            cycles.insert(first);
    }
    QSet<int> reported;
    for (const Finding& finding : found(snapshot, "cycle-through-group"))
        reported.insert(finding.node);
    EXPECT_EQ(reported, cycles);
}

} // namespace

TEST(LintAgainstTheRenderer, RandomGraphsAgree)
{
    for (unsigned seed = 0; seed < 1500; ++seed) {
        RandomHost host(seed);
        compareWithRenderer(host);
        if (::testing::Test::HasFailure())
            FAIL() << "seed " << seed;
    }
}

TEST(LintAgainstTheRenderer, EditedGraphsAgree)
{
    int numCompared = 0;
    for (unsigned seed = 0; seed < 1500; ++seed) {
        RandomHost host(seed);
        host.edit();
        if (host.hasCircularParents()) {
            lint(host.snapshot()); // ends, whatever it says
            continue;
        }
        ++numCompared;
        compareWithRenderer(host);
        if (::testing::Test::HasFailure())
            FAIL() << "seed " << seed;
    }
    EXPECT_GT(numCompared, 500);
}
