// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef ORV_TESTS_RENDERERORACLE_H
#define ORV_TESTS_RENDERERORACLE_H

#include "GraphOracle.h"

#include <Kestrin/Orv/RenderPass.h>

#include <QtCore/QVariant>

#include <vector>

namespace Oracle {

using Kestrin::Orv::RenderCallbacks;
using Kestrin::Orv::RenderPass;

/// The renderer, simple and slow, over the graph of the oracle. It calls passes as the library
/// does.
class Renderer
{
public:
    Renderer() = default;
    ~Renderer();
    Renderer(const Renderer&) = delete;
    Renderer& operator=(const Renderer&) = delete;

    void setup(RenderCallbacks* callbacks);
    bool render(RenderCallbacks* callbacks);
    void teardown(RenderCallbacks* callbacks);
    int getGraphProcessingMode() const;
    void beginFrame(RenderCallbacks* callbacks);

    int addPass(const QString& name, RenderPass* pass, int parent);
    int addGroup(const QString& name, int numInputs, int numOutputs, int parent);
    int addParameter(const QString& name, const QVariant& value);
    int addOutput(const QString& name);
    int findPass(const QString& name) const;
    int findParameter(const QString& name) const;
    int findOutput(const QString& name) const;
    int numParameters() const;
    QVariant::Type parameterType(int index) const;
    QVariant parameterValue(int index);
    void setParameter(int index, const QVariant& value);
    int numOutputs() const;
    QVariant::Type outputType(int index) const;
    QVariant output(int index) const;
    int getNumPasses() const;
    RenderPass* renderPass(int node) const;
    bool enabled(int node) const;
    void setEnabled(int node, bool enabled);
    void setTarget(int node);
    int getTarget() const;
    Graph* getGraph();

private:
    bool isPass(int index) const;
    void walk(int node, std::vector<bool>& visited);
    int activeOutputUsers(int node, int output, const std::vector<bool>& visited) const;
    void setInputs(int node);
    bool render(int node, RenderCallbacks* callbacks);

    std::vector<QVariant> parameters;
    std::vector<QVariant> outputs;
    std::vector<RenderPass*> passes;
    Graph graph;
    std::vector<bool> passEnabled;
    bool needsSetup = false;
    int target = -1;
    std::vector<int> executionOrder;
    int passesRendered = 0;
    std::vector<int> startedPasses;
    bool newPassStartedThisFrame = false;
    bool staggeredFirstFrame = false;
};

} // namespace Oracle

#endif
