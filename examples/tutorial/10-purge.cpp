// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

// Purging frees the slots of removed nodes and edges.

//! [find]
#include "Passes.h"

/// The node of a pass, found by the pass's index, which a purge does not change.
int nodeOfPass(const Graph& graph, int passIndex)
{
    for (int slot = 0; slot < graph.numNodesGlobal(); ++slot) {
        if (graph.isValidNode(slot) && graph.nodeValue(slot) == passIndex)
            return graph.getNodeGlobal(slot);
    }
    return Graph::kInvalidNodeRef;
}
//! [find]

//! [remove]
int main()
{
    Renderer renderer;
    const int trail = renderer.addPass(QStringLiteral("trail"), new TrailPass, Graph::kRootNodeRef);
    int ball = renderer.addPass(QStringLiteral("ball"), new BallPass, Graph::kRootNodeRef);
    int over = renderer.addPass(QStringLiteral("over"), new OverPass, Graph::kRootNodeRef);
    const int time = renderer.addParameter(QStringLiteral("time"), 3);
    const int picture = renderer.addOutput(QStringLiteral("picture"));

    Graph* graph = renderer.getGraph();
    graph->addDownEdgeByName(QStringLiteral("time"), ball, QStringLiteral("position"));
    graph->addEdgeByName(ball, QStringLiteral("color"), trail, QStringLiteral("color"));
    graph->addEdgeByName(trail, QStringLiteral("color"), over, QStringLiteral("foreground"));
    graph->addUpEdgeByName(QStringLiteral("picture"), over, QStringLiteral("color"));

    const int ballPass = graph->nodeValue(ball);
    const int overPass = graph->nodeValue(over);
    graph->removeNode(trail);
    graph->addEdgeByName(ball, QStringLiteral("color"), over, QStringLiteral("foreground"));
    std::printf("slots: %d nodes, %d edges; \"over\" is node %d\n", graph->numNodesGlobal(),
                graph->numEdgesGlobal(), over);
    //! [remove]

    //! [purge]
    graph->purge();
    ball = nodeOfPass(*graph, ballPass);
    over = nodeOfPass(*graph, overPass);
    std::printf("slots: %d nodes, %d edges; \"over\" is node %d\n", graph->numNodesGlobal(),
                graph->numEdgesGlobal(), over);

    renderer.setup(nullptr);
    for (int frame = 0; frame < 2; ++frame) {
        renderer.setParameter(time, 3 + frame);
        renderer.render(nullptr);
        show(renderer.output(picture));
    }
    //! [purge]

    //! [hierarchy]
    std::printf("found by name: %d\n", renderer.findPass(QStringLiteral("over")));
    std::printf("first child of the root: %d\n", graph->getNode(0, Graph::kRootNodeRef));
    renderer.teardown(nullptr);
}
//! [hierarchy]
