// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

// A pass fails, and the frame ends with it.

#include "Passes.h"

//! [strict]
/// A ball that refuses to leave the picture.
class StrictBallPass : public Announced<BallPass>
{
public:
    StrictBallPass()
        : Announced("ball")
    {
    }

    void start(RenderCallbacks* callbacks) override
    {
        Announced::start(callbacks);
        if (inputs[0].value.toInt() >= width)
            setErrorCode(7);
    }
};
//! [strict]

int main()
{
    Renderer renderer;
    const int ball =
        renderer.addPass(QStringLiteral("ball"), new StrictBallPass, Graph::kRootNodeRef);
    const int trail = renderer.addPass(QStringLiteral("trail"), new Announced<TrailPass>("trail"),
                                       Graph::kRootNodeRef);
    const int time = renderer.addParameter(QStringLiteral("time"), 0);
    const int picture = renderer.addOutput(QStringLiteral("picture"));

    Graph* graph = renderer.getGraph();
    graph->addDownEdgeByName(QStringLiteral("time"), ball, QStringLiteral("position"));
    graph->addEdgeByName(ball, QStringLiteral("color"), trail, QStringLiteral("color"));
    graph->addUpEdgeByName(QStringLiteral("picture"), trail, QStringLiteral("color"));

    //! [frames]
    renderer.setup(nullptr);
    for (const int position : {15, 16, 14}) {
        renderer.setParameter(time, position);
        const bool succeeded = renderer.render(nullptr);
        show(renderer.output(picture));
        if (succeeded)
            continue;
        for (int i = 0; i < graph->numNodes(Graph::kRootNodeRef); ++i) {
            const int node = graph->getNode(i, Graph::kRootNodeRef);
            const RenderPass* pass = renderer.renderPass(node);
            if (pass && pass->errorCode() != 0) {
                std::printf("pass \"%s\" failed with code %u after %d pass(es)\n",
                            qPrintable(graph->nodeName(node)), pass->errorCode(),
                            renderer.getNumPasses());
            }
        }
    }
    //! [frames]
    renderer.teardown(nullptr);
}
