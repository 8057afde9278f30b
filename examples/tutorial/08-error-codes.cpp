// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

// A pass fails, and the frame ends after it.

//! [strict]
#include "Passes.h"

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

/// A trail that refuses a ball in the last column.
class StrictTrailPass : public Announced<TrailPass>
{
public:
    StrictTrailPass()
        : Announced("trail")
    {
    }

    void start(RenderCallbacks* callbacks) override
    {
        Announced::start(callbacks);
        if (inputs[0].value.toString().endsWith(QLatin1Char('O')))
            setErrorCode(3);
    }
};
//! [strict]

//! [report]
/// Renders a frame and prints which pass failed, if any.
void renderAndReport(Renderer& renderer)
{
    const Graph* graph = renderer.getGraph();
    for (int node = 0; node < graph->numNodesGlobal(); ++node) {
        if (RenderPass* pass = renderer.renderPass(node))
            pass->clearErrorCode(); // the renderer does this only for passes that it runs
    }
    if (renderer.render(nullptr))
        return;
    for (int node = 0; node < graph->numNodesGlobal(); ++node) {
        const RenderPass* pass = renderer.renderPass(node);
        if (pass && pass->errorCode() != 0) {
            std::printf("pass \"%s\" failed with code %u\n", qPrintable(graph->nodeName(node)),
                        pass->errorCode());
        }
    }
}
//! [report]

//! [wire]
int main()
{
    Renderer renderer;
    const int time = renderer.addParameter(QStringLiteral("time"), 0);
    const int picture = renderer.addOutput(QStringLiteral("picture"));
    Graph* graph = renderer.getGraph();

    const int sprite = renderer.addGroup(QStringLiteral("sprite"), 0, 0, Graph::kRootNodeRef);
    graph->addInput(sprite, QStringLiteral("position"), Graph::kInvalidGroupRef);
    graph->addOutput(sprite, QStringLiteral("color"), Graph::kInvalidGroupRef);
    const int ball = renderer.addPass(QStringLiteral("ball"), new StrictBallPass, sprite);
    const int trail = renderer.addPass(QStringLiteral("trail"), new StrictTrailPass, sprite);
    graph->connectDownByName(ball);
    graph->connectByName(ball, trail);
    graph->connectUpByName(trail);
    graph->addDownEdgeByName(QStringLiteral("time"), sprite, QStringLiteral("position"));
    graph->addUpEdgeByName(QStringLiteral("picture"), sprite, QStringLiteral("color"));
    //! [wire]

    //! [frames]
    renderer.setup(nullptr);
    for (const int position : {13, 15, 16, 14}) {
        renderer.setParameter(time, position);
        renderAndReport(renderer);
        show(renderer.output(picture));
    }
    renderer.teardown(nullptr);
}
//! [frames]
