// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

// The first frames start the passes one by one.

//! [register]
#include "Passes.h"

int main()
{
    Renderer renderer;
    const int ball = renderer.addPass(QStringLiteral("ball"), new Announced<BallPass>("ball"),
                                      Graph::kRootNodeRef);
    const int trail = renderer.addPass(QStringLiteral("trail"), new Announced<TrailPass>("trail"),
                                       Graph::kRootNodeRef);
    const int over = renderer.addPass(QStringLiteral("over"), new Announced<OverPass>("over"),
                                      Graph::kRootNodeRef);
    renderer.addParameter(QStringLiteral("Orv_bool_staggeredFirstFrame"), true);
    const int picture = renderer.addOutput(QStringLiteral("picture"));

    Graph* graph = renderer.getGraph();
    graph->addEdgeByName(ball, QStringLiteral("color"), trail, QStringLiteral("color"));
    graph->addEdgeByName(trail, QStringLiteral("color"), over, QStringLiteral("foreground"));
    graph->addUpEdgeByName(QStringLiteral("picture"), over, QStringLiteral("color"));
    //! [register]

    //! [frames]
    renderer.setup(nullptr);
    for (int frame = 1; frame <= 3; ++frame) {
        std::printf("frame %d\n", frame);
        renderer.render(nullptr);
        std::printf("  mode %d\n", renderer.getGraphProcessingMode());
    }
    show(renderer.output(picture));
    renderer.teardown(nullptr);
}
//! [frames]
