// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "DryRun.h"

#include "Errors.h"

#include <Kestrin/Orv/Inspect/BuildRenderer.h>
#include <Kestrin/Orv/Inspect/StandInPass.h>
#include <Kestrin/Orv/Inspect/TracedPass.h>

#include <QtCore/QElapsedTimer>

namespace Kestrin::Orv::Program {

using Inspect::NodeRecord;
using Inspect::StandInPass;

/// A stand-in that records its calls in the dry run. A slow one takes its time without blocking.
class DryRun::RecordedPass : public StandInPass
{
public:
    RecordedPass(DryRun& owner, int ref, const NodeRecord& record, const PassBehaviour& behaviour)
        : StandInPass(record)
        , dryRun(owner)
        , node(ref)
        , milliseconds(behaviour.milliseconds)
    {
        setFailure(behaviour.errorCode);
    }

    void setup(RenderCallbacks* callbacks) override
    {
        dryRun.record(node, QStringLiteral("setup"));
        StandInPass::setup(callbacks);
    }
    void beginFrame(RenderCallbacks* callbacks) override
    {
        dryRun.record(node, QStringLiteral("beginFrame"));
        StandInPass::beginFrame(callbacks);
    }
    void start(RenderCallbacks* callbacks) override
    {
        dryRun.record(node, QStringLiteral("start"));
        StandInPass::start(callbacks);
        if (milliseconds > 0)
            running.start();
    }
    void skip(RenderCallbacks* callbacks) override
    {
        dryRun.record(node, QStringLiteral("skip"));
        StandInPass::skip(callbacks);
    }
    bool isFinished() const override
    {
        if (!running.isValid() || running.hasExpired(milliseconds))
            return true;
        if (dryRun.recorded.last().calls.last() != QLatin1String("wait"))
            dryRun.record(node, QStringLiteral("wait"));
        return false;
    }
    void endFrame(RenderCallbacks* callbacks) override
    {
        running.invalidate();
        dryRun.record(node, QStringLiteral("endFrame"));
        StandInPass::endFrame(callbacks);
        dryRun.recorded.last().errorCode = errorCode();
        if (errorCode() != 0 && !dryRun.failed.contains(node))
            dryRun.failed.append(node);
    }
    void teardown(RenderCallbacks* callbacks) override
    {
        dryRun.record(node, QStringLiteral("teardown"));
        StandInPass::teardown(callbacks);
    }

private:
    DryRun& dryRun;
    int node;
    int milliseconds;
    QElapsedTimer running;
};

void DryRun::SetupAwareRenderer::setup(RenderCallbacks* callbacks)
{
    isSetUp = true;
    Renderer::setup(callbacks);
}

DryRun::DryRun(const DryRunSetup& setup, Inspect::Trace* traceOrNull)
    : graph(setup.document.snapshot)
    , trace(traceOrNull)
{
    const auto makePass = [this, &setup](const Inspect::PassRequest& request) -> RenderPass* {
        // The nodes of the document and of the renderer have the same numbers.
        auto* pass =
            new RecordedPass(*this, request.ref, request.node, setup.behaviours.value(request.ref));
        if (!trace)
            return pass;
        return new Inspect::TracedPass(*trace, request.path, pass);
    };
    Inspect::PassFactory factory;
    factory.setFallback(makePass);
    const QVector<Inspect::Problem> problems =
        Inspect::buildRenderer(graph, renderer, factory, setup.document.places);
    if (!problems.isEmpty())
        throw InputError(setup.document.name, problems);
}

void DryRun::record(int node, const QString& call)
{
    if (recorded.isEmpty() || recorded.last().node != node)
        recorded.append({node, {}, 0});
    recorded.last().calls.append(call);
}

QVector<PassCalls> DryRun::takeCalls()
{
    QVector<PassCalls> calls;
    calls.swap(recorded);
    return calls;
}

QVector<PassCalls> DryRun::setup()
{
    // A pass that is disabled from the start makes the first frame set up all passes again. This
    // call sets them up now, so that the first frame shows the calls of a frame alone.
    renderer.beginFrame(nullptr);
    if (!renderer.isSetUp)
        renderer.setup(nullptr);
    return takeCalls();
}

QVector<PassCalls> DryRun::runFrame()
{
    if (trace)
        trace->beginFrame();
    lastFrameSucceeded = renderer.render(nullptr);
    if (trace)
        trace->endFrame();
    return takeCalls();
}

QVector<PassCalls> DryRun::teardown()
{
    renderer.teardown(nullptr);
    return takeCalls();
}

} // namespace Kestrin::Orv::Program
