// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Strings.h"

#include <Kestrin/Orv/OrvCore.h>

using namespace Kestrin::Orv;

namespace {

// No string of the plugin's own is a literal: that would lie in unloaded memory, too.
QString own(const char* text)
{
    return QString::fromUtf8(text);
}

void takePaths(Strings& strings)
{
    strings.take("executablePath", executablePath());
    strings.take("resourcesPath", resourcesPath());
    strings.take("CoreVersions::getVersion", CoreVersions::getVersion());
    strings.take("CoreVersions::getGitHash", CoreVersions::getGitHash());
    strings.take("CoreVersions::getMd5Sum", CoreVersions::getMd5Sum());
}

void takeNames(Strings& strings, const Graph& graph)
{
    for (int node = -1; node <= graph.numNodesGlobal(); ++node) {
        strings.take("nodeName", graph.nodeName(node));
        for (int port = -1; port <= graph.numInputs(node); ++port)
            strings.take("inputName", graph.inputName(node, port));
        for (int port = -1; port <= graph.numOutputs(node); ++port)
            strings.take("outputName", graph.outputName(node, port));
        for (int group = -1; group <= graph.numInputGroups(node); ++group) {
            strings.take("inputGroupName", graph.inputGroupName(node, group));
            strings.take("outputGroupName", graph.outputGroupName(node, group));
        }
    }
}

void takeGraph(Strings& strings)
{
    Graph graph;
    const int a = graph.addNode(own("a"), 1, 1, Graph::kRootNodeRef);
    const int b = graph.addNode(own("b"), 1, 1, Graph::kRootNodeRef);
    const int c = graph.addNode(own("c"), 1, 1, b);
    graph.setInputName(b, 0, own("in"));
    graph.setOutputName(a, 0, own("out"));
    graph.addInputGroup(a, own("inputs"));
    graph.addOutputGroup(a, own("outputs"));
    graph.addEdge(a, 0, b, 0);
    takeNames(strings, graph);
    dumpAsGraphviz(&graph); // messages
    // Messages about names that are not found.
    graph.addEdgeByName(a, own("lost"), b, own("nowhere"));
    graph.addDownEdgeByName(own("lost"), c, own("nowhere"));
    graph.addUpEdgeByName(own("lost"), c, own("nowhere"));
    graph.addDownEdgeByName(own("lost"), -1, own("nowhere"));
    graph.removeNode(c);
    graph.purge();
    takeNames(strings, graph);
}

void takeRenderer(Strings& strings)
{
    Renderer renderer;
    auto* pass = new RenderPassHelper;
    pass->addInput(own("value"), own("default"));
    pass->addOutput(own("result"));
    pass->skip(nullptr); // a message
    const int node = renderer.addPass(own("pass"), pass, Graph::kRootNodeRef);
    renderer.addParameter(own("Orv_bool_staggeredFirstFrame"), true);
    renderer.addParameter(own("parameter"), own("text"));
    renderer.addOutput(own("output"));
    renderer.getGraph()->addUpEdge(0, node, 0);
    renderer.setup(nullptr);
    renderer.render(nullptr);
    for (int i = -1; i <= 2; ++i) {
        strings.take("RenderPassHelper::inputName", pass->inputName(i));
        strings.take("RenderPassHelper::outputName", pass->outputName(i));
        strings.take("RenderPassHelper::defaultValue", pass->defaultValue(i).toString());
        strings.take("RenderPassHelper::output", pass->output(i).toString());
        strings.take("parameterValue", renderer.parameterValue(i).toString());
        strings.take("output", renderer.output(i).toString());
    }
    takeNames(strings, *renderer.getGraph());
}

void takeHistogram()
{
    HistogramFrameTimes histogram;
    histogram.addFrameTimeUS(1000);
    histogram.addFrameTimeUS(2000);
    histogram.dump(); // messages
}

} // namespace

extern "C" Q_DECL_EXPORT bool takeStrings(Strings& strings, const char*)
{
    takePaths(strings);
    takeGraph(strings);
    takeRenderer(strings);
    takeHistogram();
    return true;
}

/// What the host must notice.
extern "C" Q_DECL_EXPORT bool takeLiteral(Strings& strings, const char*)
{
    strings.take("the plugin's own", QStringLiteral("a literal"));
    return true;
}
