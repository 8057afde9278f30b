// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

// Two passes form a group. The rest of the graph sees the group as one node.

//! [group]
#include "Passes.h"

int main()
{
    Renderer renderer;
    const int time = renderer.addParameter(QStringLiteral("time"), 0);
    const int picture = renderer.addOutput(QStringLiteral("picture"));
    Graph* graph = renderer.getGraph();

    const int sprite = renderer.addGroup(QStringLiteral("sprite"), 0, 0, Graph::kRootNodeRef);
    graph->addInput(sprite, QStringLiteral("position"), Graph::kInvalidGroupRef);
    graph->addOutput(sprite, QStringLiteral("color"), Graph::kInvalidGroupRef);
    const int ball = renderer.addPass(QStringLiteral("ball"), new BallPass, sprite);
    const int trail = renderer.addPass(QStringLiteral("trail"), new TrailPass, sprite);
    const int over = renderer.addPass(QStringLiteral("over"), new OverPass, Graph::kRootNodeRef);
    //! [group]

    //! [inside]
    graph->connectDownByName(ball);    // the group's "position" feeds the ball's
    graph->connectByName(ball, trail); // the ball's "color" feeds the trail's
    graph->connectUpByName(trail);     // the trail's "color" feeds the group's
    //! [inside]

    //! [outside]
    graph->addDownEdgeByName(QStringLiteral("time"), sprite, QStringLiteral("position"));
    graph->addEdgeByName(sprite, QStringLiteral("color"), over, QStringLiteral("foreground"));
    graph->addUpEdgeByName(QStringLiteral("picture"), over, QStringLiteral("color"));
    //! [outside]

    //! [frames]
    renderer.setup(nullptr);
    for (int frame = 0; frame < 3; ++frame) {
        renderer.setParameter(time, 3 + frame);
        renderer.render(nullptr);
        show(renderer.output(picture));
    }
    //! [frames]

    //! [find]
    std::printf("at the top: %d\n", renderer.findPass(QStringLiteral("ball")));
    std::printf("in the group: %d\n", graph->findNode(QStringLiteral("ball"), sprite));
    int node = over;
    int port = 0;
    graph->walkToSourceNode(node, port);
    std::printf("\"over\" reads from: %s\n", qPrintable(graph->nodeName(node)));
    renderer.teardown(nullptr);
}
//! [find]
