// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

// A parameter feeds a pass, and that pass feeds another.

//! [register]
#include "Passes.h"

int main()
{
    Renderer renderer;
    const int trail = renderer.addPass(QStringLiteral("trail"), new TrailPass, Graph::kRootNodeRef);
    const int ball = renderer.addPass(QStringLiteral("ball"), new BallPass, Graph::kRootNodeRef);
    const int time = renderer.addParameter(QStringLiteral("time"), 0);
    const int picture = renderer.addOutput(QStringLiteral("picture"));
    //! [register]

    //! [wire]
    Graph* graph = renderer.getGraph();
    graph->addDownEdgeByName(QStringLiteral("time"), ball, QStringLiteral("position"));
    graph->addEdgeByName(ball, QStringLiteral("color"), trail, QStringLiteral("color"));
    graph->addUpEdgeByName(QStringLiteral("picture"), trail, QStringLiteral("color"));
    //! [wire]

    //! [frames]
    renderer.setup(nullptr);
    for (int frame = 0; frame < 4; ++frame) {
        renderer.setParameter(time, 3 + frame);
        renderer.render(nullptr);
        show(renderer.output(picture));
    }
    renderer.teardown(nullptr);
}
//! [frames]
