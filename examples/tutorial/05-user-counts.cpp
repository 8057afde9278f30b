// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

// A pass skips the work for an output that nothing reads.

//! [lamp]
#include "Passes.h"

/// A ball that also glows, if something reads the glow.
class LampPass : public BallPass
{
public:
    LampPass() { glow = addOutput(QStringLiteral("glow")); }

    void setup(RenderCallbacks*) override
    {
        std::printf("color has %d users, glow has %d\n", outputUsers[0], outputUsers[glow]);
    }

    void start(RenderCallbacks* callbacks) override
    {
        BallPass::start(callbacks);
        if (outputUsers[glow] == 0)
            return; // nothing reads it: skip the expensive part
        std::printf("  compute the glow\n");
        QString row(width, QLatin1Char(' '));
        const int position = inputs[0].value.toInt();
        for (int x = qMax(0, position - 2); x <= qMin(width - 1, position + 2); ++x)
            row[x] = QLatin1Char('*');
        outputs[glow].value = row;
    }

private:
    int glow;
};
//! [lamp]

//! [main]
int main()
{
    Renderer renderer;
    const int lamp = renderer.addPass(QStringLiteral("lamp"), new LampPass, Graph::kRootNodeRef);
    const int over = renderer.addPass(QStringLiteral("over"), new OverPass, Graph::kRootNodeRef);
    const int picture = renderer.addOutput(QStringLiteral("picture"));

    Graph* graph = renderer.getGraph();
    graph->addEdgeByName(lamp, QStringLiteral("color"), over, QStringLiteral("foreground"));
    graph->addUpEdgeByName(QStringLiteral("picture"), over, QStringLiteral("color"));

    renderer.setup(nullptr);
    renderer.render(nullptr);
    show(renderer.output(picture));

    graph->addEdgeByName(lamp, QStringLiteral("glow"), over, QStringLiteral("background"));
    renderer.setup(nullptr);
    renderer.render(nullptr);
    show(renderer.output(picture));
    renderer.teardown(nullptr);
}
//! [main]
