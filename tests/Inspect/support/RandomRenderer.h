// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef ORV_TESTS_RANDOMRENDERER_H
#define ORV_TESTS_RANDOMRENDERER_H

#include <Kestrin/Orv/Graph.h>
#include <Kestrin/Orv/Inspect/Paths.h>
#include <Kestrin/Orv/Inspect/Snapshot.h>
#include <Kestrin/Orv/RenderPass.h>
#include <Kestrin/Orv/Renderer.h>

#include <QtCore/QVector>

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

class SpyPass;

/// What a pass had been told when it was set up.
struct SetupCall
{
    const SpyPass* pass;
    QVector<int> users;
    QVector<QVariant> inputs;
};

/// Writes down what the renderer tells it. Every default and every output of every pass has a value
/// of its own.
class SpyPass : public Kestrin::Orv::RenderPass
{
public:
    using Callbacks = Kestrin::Orv::RenderCallbacks*;

    SpyPass(std::vector<SetupCall>& setupLog, int id, int inputs, int outputs)
        : log(setupLog)
        , number(id)
        , received(inputs)
        , users(outputs, -1)
    {
    }

    void setup(Callbacks) override { log.push_back({this, users, received}); }
    void beginFrame(Callbacks) override { }
    void start(Callbacks) override { }
    void skip(Callbacks) override { }
    void endFrame(Callbacks) override { }
    void teardown(Callbacks) override { }
    void teardownContextData(Callbacks) override { }
    int numInputs() const override { return received.size(); }
    int numOutputs() const override { return users.size(); }
    QString inputName(int index) const override { return QStringLiteral("i%1").arg(index % 3); }
    QString outputName(int index) const override { return QStringLiteral("o%1").arg(index % 3); }
    void setInput(int index, const QVariant& value) override { received[index] = value; }
    QVariant defaultValue(int index) const override { return -1000 * number - index - 1; }
    void setDefaultValue(int, const QVariant&) override { }
    QVariant output(int index) const override { return outputOf(number, index); }
    void setNumOutputUsers(int index, int count) override
    {
        if (index >= users.size()) // the node may have more outputs than its pass
            users.resize(index + 1);
        users[index] = count;
    }
    void resetNumOutputUsers() override { users.fill(0); }
    unsigned int errorCode() const override { return 0; }
    void clearErrorCode() override { }
    void setErrorCode(unsigned int) override { }

    static QVariant outputOf(int number, int index) { return 1000 * number + index; }

    std::vector<SetupCall>& log;
    int number;
    QVector<QVariant> received;
    QVector<int> users;
};

/// A renderer that a random history of calls has made, the same for the same seed. The parameters'
/// values are strings.
struct RandomRenderer
{
    enum Kind {
        Sound,  ///< wired as hosts wire it
        Edited, ///< nodes and edges removed since
        Odd     ///< whatever the graph's calls allow
    };

    RandomRenderer(unsigned seed, Kind howMade)
        : kind(howMade)
        , random(seed)
    {
        const int scale = 2 + below(12), parameters = below(3), outputs = below(4);
        for (int i = 0; i < parameters; ++i)
            renderer.addParameter(QStringLiteral("p"), QStringLiteral("parameter %1").arg(i));
        for (int i = 0; i < outputs; ++i)
            renderer.addOutput(QStringLiteral("out"));
        for (int i = 0; i < scale; ++i)
            addNode();
        for (int i = 0; i < 5 * scale; ++i)
            addSoundEdge();
        for (int i = 0; i < scale / 2; ++i)
            setEnabled();
        if (below(2) == 0)
            renderer.setTarget(anyNode());
        if (kind == Sound)
            return;
        for (int i = 0; i < scale; ++i)
            edit();
        if (kind == Edited)
            return;
        for (int i = 0; i < 4 * scale; ++i)
            beOdd();
    }

    int below(int count)
    {
        return count > 0 ? static_cast<int>(random() % static_cast<unsigned>(count)) : 0;
    }
    int anyNode() { return below(graph.numNodesGlobal()); }
    int anyEdge() { return below(graph.numEdgesGlobal()); }
    int anyInput(int node) { return below(graph.numInputs(node)); }
    int anyOutput(int node) { return below(graph.numOutputs(node)); }
    const SpyPass* pass(int node) const
    {
        return static_cast<const SpyPass*>(renderer.renderPass(node));
    }

    const Kind kind;
    std::vector<SetupCall> log;
    Kestrin::Orv::Renderer renderer;
    Kestrin::Orv::Graph& graph = *renderer.getGraph();
    std::mt19937 random;
    int numPasses = 0;

private:
    /// A group, more often than not the root.
    int anyParent()
    {
        const int node = below(2) == 0 ? 0 : anyNode();
        return renderer.renderPass(node) ? 0 : node;
    }
    // What draws several numbers draws them in statements of their own: the order in which
    // arguments are evaluated depends on the compiler.
    void addNode()
    {
        const bool isGroup = below(3) == 0;
        const int parent = anyParent();
        const int inputs = below(4), outputs = below(4);
        if (isGroup) {
            renderer.addGroup(QStringLiteral("Group"), inputs, outputs, parent);
            return;
        }
        const int number = ++numPasses;
        renderer.addPass(QStringLiteral("Pass%1").arg(number % 7),
                         new SpyPass(log, number, inputs, outputs), parent);
    }
    void connect(int from, int to)
    {
        const int output = anyOutput(from), input = anyInput(to);
        graph.addEdge(from, output, to, input);
    }
    void addSoundEdge()
    {
        const int node = anyNode();
        const int parent = graph.parentNode(node);
        const int way = below(5);
        if (way == 0) {
            const int parentOutput = anyOutput(parent), output = anyOutput(node);
            graph.addUpEdge(parentOutput, node, output);
        } else if (way == 1) {
            const int parentInput = anyInput(parent), input = anyInput(node);
            graph.addDownEdge(parentInput, node, input);
        } else {
            connect(node, graph.getNode(below(graph.numNodes(parent)), parent));
        }
    }
    void setEnabled()
    {
        const int node = anyNode();
        renderer.setEnabled(node, below(2) == 0);
    }
    void edit()
    {
        switch (below(8)) {
        case 0: {
            const int node = anyNode();
            if (node != 0)
                graph.removeNode(node);
            break;
        }
        case 1:
        case 2:
            graph.removeEdge(anyEdge());
            break;
        case 3:
            setEnabled();
            break;
        case 4:
            addNode();
            break;
        default:
            addSoundEdge();
        }
    }
    void beOdd()
    {
        const int node = anyNode();
        const int other = anyNode();
        switch (below(16)) {
        case 0:
            graph.removeChildNode(node == 0 && below(10) != 0 ? other : node);
            break;
        case 1:
            graph.removeInput(node, anyInput(node));
            break;
        case 2:
            graph.removeOutput(node, anyOutput(node));
            break;
        case 3:
            graph.addInput(node, QStringLiteral("added"), -1);
            break;
        case 4:
            graph.addOutput(node, QStringLiteral("added"), -1);
            break;
        case 5:
            if (below(3) == 0)
                graph.purge();
            break;
        case 6:
            graph.setNodeValue(node, below(numPasses + 3) - 1);
            break;
        case 7:
            renderer.addPass(QStringLiteral("Null"), nullptr, other);
            break;
        case 8:
            renderer.setTarget(below(graph.numNodesGlobal() + 2) - 1);
            break;
        case 9:
            renderer.addOutput(QStringLiteral("late"));
            break;
        case 10:
        case 11:
            connect(node, other);
            break;
        default:
            edit();
        }
    }
};

/// Calls `check` for many random renderers, until it fails.
template<typename Check>
void forRandomRenderers(Check check)
{
    for (unsigned seed = 0; seed < 1000; ++seed) {
        for (const RandomRenderer::Kind kind :
             {RandomRenderer::Sound, RandomRenderer::Edited, RandomRenderer::Odd}) {
            SCOPED_TRACE("seed " + std::to_string(seed) + ", kind " + std::to_string(kind));
            RandomRenderer random(seed, kind);
            check(random);
            if (testing::Test::HasFailure())
                return;
        }
    }
}

#endif
