// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

// A pass works on its own thread while the renderer waits for it.

//! [stars]
#include "Passes.h"

#include <chrono>
#include <future>
#include <thread>

/// Draws a starry sky, on another thread.
class StarsPass : public RenderPassHelper
{
public:
    StarsPass() { addOutput(QStringLiteral("color")); }

    void start(RenderCallbacks*) override
    {
        result = std::async(std::launch::async, [] {
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
            QString row(width, QLatin1Char(' '));
            for (int x = 1; x < width; x += 4)
                row[x] = QLatin1Char('*');
            return row;
        });
    }

    bool isFinished() const override
    {
        return !result.valid()
            || result.wait_for(std::chrono::seconds(0)) == std::future_status::ready;
    }

    void endFrame(RenderCallbacks*) override
    {
        if (result.valid())
            outputs[0].value = result.get();
    }

private:
    std::future<QString> result;
};
//! [stars]

//! [main]
int main()
{
    Renderer renderer;
    const int stars = renderer.addPass(QStringLiteral("stars"), new StarsPass, Graph::kRootNodeRef);
    const int ball = renderer.addPass(QStringLiteral("ball"), new BallPass, Graph::kRootNodeRef);
    const int over = renderer.addPass(QStringLiteral("over"), new OverPass, Graph::kRootNodeRef);
    const int picture = renderer.addOutput(QStringLiteral("picture"));

    Graph* graph = renderer.getGraph();
    graph->addEdgeByName(stars, QStringLiteral("color"), over, QStringLiteral("background"));
    graph->addEdgeByName(ball, QStringLiteral("color"), over, QStringLiteral("foreground"));
    graph->addUpEdgeByName(QStringLiteral("picture"), over, QStringLiteral("color"));

    renderer.setup(nullptr);
    renderer.render(nullptr);
    show(renderer.output(picture));
    renderer.teardown(nullptr);
}
//! [main]
