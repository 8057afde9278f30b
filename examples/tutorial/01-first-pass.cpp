// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

// One pass, one output of the renderer, one frame.

#include "Passes.h"

int main()
{
    Renderer renderer;
    const int ball = renderer.addPass(QStringLiteral("ball"), new BallPass, Graph::kRootNodeRef);
    const int picture = renderer.addOutput(QStringLiteral("picture"));

    Graph* graph = renderer.getGraph();
    graph->addUpEdgeByName(QStringLiteral("picture"), ball, QStringLiteral("color"));

    renderer.setup(nullptr);
    renderer.render(nullptr);
    show(renderer.output(picture));
    renderer.teardown(nullptr);
}
