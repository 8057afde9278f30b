// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

// A host that asks about its own graph.

#include <Kestrin/Orv/Inspect/Explain.h>
#include <Kestrin/Orv/Inspect/Snapshot.h>
#include <Kestrin/Orv/OrvCore.h>

#include <cstdio>

using namespace Kestrin::Orv;

class SourcePass : public RenderPassHelper
{
public:
    SourcePass() { addOutput(QStringLiteral("color")); }
};

int main()
{
    Renderer renderer;
    const int used = renderer.addPass(QStringLiteral("used"), new SourcePass, Graph::kRootNodeRef);
    renderer.addPass(QStringLiteral("unused"), new SourcePass, Graph::kRootNodeRef);
    renderer.addOutput(QStringLiteral("picture"));
    renderer.getGraph()->addUpEdge(0, used, 0);

    const Inspect::Snapshot snapshot = Inspect::Snapshot::of(renderer);
    const Inspect::Explainer explainer(snapshot);
    for (int node = 1; node < snapshot.nodes.size(); ++node) {
        const bool runs = explainer.node(node).state == Inspect::NodeExplanation::Scheduled;
        std::printf("%s %s\n", qPrintable(explainer.paths().node(node)),
                    runs ? "runs" : "does not run");
    }
}
