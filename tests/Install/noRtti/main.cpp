// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

// A host that was compiled without run-time type information, as many engines are: its passes
// derive from the library's classes and cannot be asked for their type. All of libOrvInspect that
// looks at passes works with them.

#include <Kestrin/Orv/Inspect/Document.h>
#include <Kestrin/Orv/Inspect/Explain.h>
#include <Kestrin/Orv/Inspect/Snapshot.h>
#include <Kestrin/Orv/Inspect/StandInPass.h>
#include <Kestrin/Orv/Inspect/Trace.h>
#include <Kestrin/Orv/Inspect/TracedPass.h>
#include <Kestrin/Orv/OrvCore.h>

#include <cstdio>

#ifdef __cpp_rtti
#    error "This host is to be compiled with -fno-rtti."
#endif

using namespace Kestrin::Orv;

// First something else, so that the pass's table is not the first one of the object.
class Named
{
public:
    virtual ~Named() = default;
    virtual const char* name() const { return "named"; }
};

class AddPass : public Named, public RenderPassHelper
{
public:
    AddPass()
    {
        addInput(QStringLiteral("value"), 0);
        addOutput(QStringLiteral("sum"));
    }

    void start(RenderCallbacks*) override { outputs[0].value = inputs[0].value.toInt() + 1; }
};

int main()
{
    Renderer renderer;
    Inspect::Trace trace(100);
    auto* const bare = new AddPass;
    auto* const behind = new AddPass;
    auto* const traced = new Inspect::TracedPass(trace, QStringLiteral("traced"), behind);
    const int first = renderer.addPass(QStringLiteral("first"), bare, Graph::kRootNodeRef);
    const int second = renderer.addPass(QStringLiteral("second"), traced, Graph::kRootNodeRef);
    renderer.addOutput(QStringLiteral("result"));
    renderer.getGraph()->addEdge(first, 0, second, 0);
    renderer.getGraph()->addUpEdge(0, second, 0);

    Inspect::Trace::namePasses(renderer);
    renderer.setup(nullptr);
    trace.beginFrame();
    const bool succeeded = renderer.render(nullptr);
    std::printf("frame %s, result %d\n", succeeded ? "ok" : "failed", renderer.output(0).toInt());
    trace.endFrame();
    std::printf("recorded %s\n", qPrintable(trace.passName(0)));

    std::printf("behind a TracedPass: %s\n",
                Inspect::TracedPass::innermost(traced) == behind ? "its pass" : "not its pass");
    std::printf("behind a pass of the host: %s\n",
                Inspect::TracedPass::innermost(bare) == bare ? "itself" : "another");

    int asked = 0;
    Inspect::Snapshot snapshot = Inspect::Snapshot::of(renderer, [&](const RenderPass& pass) {
        asked += &pass == bare || &pass == behind;
        return QStringLiteral("Add");
    });
    std::printf("types asked for %d\n", asked);
    const Inspect::Explainer explainer(snapshot);
    std::printf("second %s\n",
                explainer.node(second).state == Inspect::NodeExplanation::Scheduled
                    ? "runs"
                    : "does not run");

    Inspect::NodeRecord record = snapshot.nodes[second];
    renderer.addPass(QStringLiteral("third"), new Inspect::StandInPass(record),
                     Graph::kRootNodeRef);
    snapshot = Inspect::Snapshot::of(renderer);
    std::printf("a stand-in's type: %s\n", qPrintable(snapshot.nodes.last().type));
    renderer.teardown(nullptr);
}
