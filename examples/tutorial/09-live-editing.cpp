// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

// The graph is edited between frames.

//! [mirror]
#include "Passes.h"

#include <algorithm>

/// Turns a picture around.
class MirrorPass : public RenderPassHelper
{
public:
    MirrorPass()
    {
        addInput(QStringLiteral("color"), QString());
        addOutput(QStringLiteral("color"));
    }

    void start(RenderCallbacks*) override
    {
        QString row = inputs[0].value.toString();
        std::reverse(row.begin(), row.end());
        outputs[0].value = row;
    }
};
//! [mirror]

//! [handler]
/// Prints the library's messages without the position in its sources.
void printMessage(QtMsgType, const QMessageLogContext&, const QString& text)
{
    std::printf("log: %s\n", qPrintable(text.mid(text.indexOf(QLatin1String("] ")) + 2)));
}
//! [handler]

//! [start]
int main()
{
    qInstallMessageHandler(printMessage);

    Renderer renderer;
    const int ball = renderer.addPass(QStringLiteral("ball"), new Announced<BallPass>("ball"),
                                      Graph::kRootNodeRef);
    const int trail = renderer.addPass(QStringLiteral("trail"), new Announced<TrailPass>("trail"),
                                       Graph::kRootNodeRef);
    const int time = renderer.addParameter(QStringLiteral("time"), 3);
    const int picture = renderer.addOutput(QStringLiteral("picture"));

    Graph* graph = renderer.getGraph();
    graph->addDownEdgeByName(QStringLiteral("time"), ball, QStringLiteral("position"));
    graph->addEdgeByName(ball, QStringLiteral("color"), trail, QStringLiteral("color"));
    graph->addUpEdgeByName(QStringLiteral("picture"), trail, QStringLiteral("color"));

    renderer.setup(nullptr);
    renderer.render(nullptr);
    show(renderer.output(picture));
    //! [start]

    //! [insert]
    const int mirror = renderer.addPass(QStringLiteral("mirror"),
                                        new Announced<MirrorPass>("mirror"), Graph::kRootNodeRef);
    const int input = graph->findInput(trail, QStringLiteral("color"));
    graph->disconnectInput(trail, input);
    graph->addEdgeByName(ball, QStringLiteral("color"), mirror, QStringLiteral("color"));
    graph->addEdgeByName(mirror, QStringLiteral("color"), trail, QStringLiteral("color"));

    renderer.setup(nullptr);
    renderer.setParameter(time, 4);
    renderer.render(nullptr);
    show(renderer.output(picture));
    //! [insert]

    //! [refuse]
    std::printf(
        "fed already: %d\n",
        graph->addEdgeByName(ball, QStringLiteral("color"), trail, QStringLiteral("color")));
    graph->disconnectInput(mirror, graph->findInput(mirror, QStringLiteral("color")));
    std::printf("a cycle: %d\n", graph->addEdge(mirror, 0, mirror, 0));
    std::printf(
        "misspelt: %d\n",
        graph->addEdgeByName(ball, QStringLiteral("colour"), mirror, QStringLiteral("color")));
    graph->addEdgeByName(ball, QStringLiteral("color"), mirror, QStringLiteral("color"));
    //! [refuse]

    //! [remove]
    graph->removeNode(trail);
    graph->addUpEdgeByName(QStringLiteral("picture"), mirror, QStringLiteral("color"));

    renderer.setup(nullptr);
    renderer.setParameter(time, 5);
    renderer.render(nullptr);
    show(renderer.output(picture));
    //! [remove]

    //! [target]
    const int probe = renderer.addPass(QStringLiteral("probe"), new Announced<TrailPass>("probe"),
                                       Graph::kRootNodeRef);
    graph->addEdgeByName(ball, QStringLiteral("color"), probe, QStringLiteral("color"));
    renderer.setTarget(probe);

    renderer.setup(nullptr);
    renderer.render(nullptr);
    show(renderer.renderPass(probe)->output(0));
    renderer.teardown(nullptr);
}
//! [target]
