// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

// Inputs without a live source take their defaults.

//! [register]
#include "Passes.h"

int main()
{
    Renderer renderer;
    const int ball = renderer.addPass(QStringLiteral("ball"), new BallPass, Graph::kRootNodeRef);
    const int trail = renderer.addPass(QStringLiteral("trail"), new TrailPass, Graph::kRootNodeRef);
    const int over = renderer.addPass(QStringLiteral("over"), new OverPass, Graph::kRootNodeRef);
    const int time = renderer.addParameter(QStringLiteral("time"), 0);
    const int picture = renderer.addOutput(QStringLiteral("picture"));

    Graph* graph = renderer.getGraph();
    graph->addDownEdgeByName(QStringLiteral("time"), ball, QStringLiteral("position"));
    graph->addEdgeByName(ball, QStringLiteral("color"), trail, QStringLiteral("color"));
    //! [register]

    //! [wire]
    graph->addEdgeByName(trail, QStringLiteral("color"), over, QStringLiteral("foreground"));
    graph->addUpEdgeByName(QStringLiteral("picture"), over, QStringLiteral("color"));
    //! [wire]

    //! [frames]
    renderer.setup(nullptr);
    for (int frame = 0; frame < 6; ++frame) {
        if (frame == 2)
            renderer.setEnabled(trail, false);
        if (frame == 4)
            renderer.setEnabled(trail, true);
        renderer.setParameter(time, 3 + frame);
        renderer.render(nullptr);
        show(renderer.output(picture));
    }
    renderer.teardown(nullptr);
}
//! [frames]
