// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include <Kestrin/Orv/OrvCore.h>

#include <cstdio>

using namespace Kestrin::Orv;

// A pass with one input and one output. It adds a number to the value of its input.
class AddPass : public RenderPassHelper
{
public:
    explicit AddPass(int number)
        : added(number)
    {
        addInput(QStringLiteral("value"), 0); // 0 is the default value
        addOutput(QStringLiteral("sum"));
    }

    void start(RenderCallbacks*) override { outputs[0].value = inputs[0].value.toInt() + added; }

private:
    int added;
};

int main()
{
    Renderer renderer;
    const int first =
        renderer.addPass(QStringLiteral("first"), new AddPass(10), Graph::kRootNodeRef);
    const int second =
        renderer.addPass(QStringLiteral("second"), new AddPass(20), Graph::kRootNodeRef);
    const int offset = renderer.addParameter(QStringLiteral("offset"), 1);
    const int result = renderer.addOutput(QStringLiteral("result"));

    Graph* graph = renderer.getGraph();
    graph->addDownEdgeByName(QStringLiteral("offset"), first, QStringLiteral("value"));
    graph->addEdgeByName(first, QStringLiteral("sum"), second, QStringLiteral("value"));
    graph->addUpEdgeByName(QStringLiteral("result"), second, QStringLiteral("sum"));

    renderer.setup(nullptr);
    for (int frame = 1; frame <= 3; ++frame) {
        renderer.setParameter(offset, frame);
        const bool succeeded = renderer.render(nullptr);
        std::printf("frame %d: %s, result %d\n", frame, succeeded ? "ok" : "failed",
                    renderer.output(result).toInt());
    }
    renderer.teardown(nullptr);
}
