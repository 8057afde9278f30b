// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include <Kestrin/Orv/Inspect/TracedPass.h>

#include "Runtime/PassCast.h"
#include "Runtime/Recording.h"

#include <Kestrin/Orv/RenderPassHelper.h>

namespace Kestrin {
namespace Orv {
namespace Inspect {

struct TracedPass::Impl
{
    class Call;
    class Question;

    Impl(std::shared_ptr<Recording> shared, const QString& name, std::unique_ptr<RenderPass>& taken)
        : recording(std::move(shared))
        , pass(std::move(taken))
        , index(static_cast<int>(recording->passes.size()))
    {
        if (!pass)
            pass = std::make_unique<RenderPassHelper>();
        recording->passes.push_back({name, {}});
    }

    void startWaiting()
    {
        waiting = {recording->nextId(), recording->lastTime, recording->numBegun, false};
    }
    /// Gives the wait up if something else has been called since.
    void goOnWaiting()
    {
        if (waiting.numBegun != recording->numBegun)
            waiting.position = Recording::kNone;
    }
    void answered(bool finished)
    {
        if (finished) {
            if (waiting.asked)
                recording->insert(waiting.position, TraceEvent::Wait, index, waiting.beginNs);
            return;
        }
        waiting.numBegun = recording->numBegun;
        waiting.asked = true;
    }

    std::shared_ptr<Recording> recording;
    std::unique_ptr<RenderPass> pass;
    int index;

    /// The wait since start() or skip() has returned, as long as nothing but isFinished() is
    /// called.
    struct Waiting
    {
        Recording::Id position = Recording::kNone; // where its event goes
        qint64 beginNs = 0;
        quint64 numBegun = 0; // the recording's, unless something else has been called
        bool asked = false;
    } waiting;
    /// The last EndFrame, until errorCode() has been asked.
    Recording::Id endFrameEvent = Recording::kNone;
};

/// A call that is under way. It ends with this, also when the pass throws.
class TracedPass::Impl::Call
{
public:
    Call(const Impl& pass, TraceEvent::Kind kind)
        : recording(*pass.recording)
        , event(recording.beginCall(pass.index, kind))
    {
    }
    ~Call() { recording.endCall(event); }
    Call(const Call&) = delete;
    Call& operator=(const Call&) = delete;

    Recording::Id id() const { return event; }

private:
    Recording& recording;
    Recording::Id event;
};

/// The question whether a pass is finished. The wait for it ends with the answer yes, or with an
/// exception.
class TracedPass::Impl::Question
{
public:
    explicit Question(Impl& asked)
        : pass(asked)
    {
        pass.goOnWaiting();
    }
    ~Question() { pass.answered(finished); }
    Question(const Question&) = delete;
    Question& operator=(const Question&) = delete;

    bool finished = true;

private:
    Impl& pass;
};

TracedPass::TracedPass(Trace& trace, const QString& name, RenderPass* pass)
{
    std::unique_ptr<RenderPass> taken(pass);
    impl = std::make_unique<Impl>(trace.recording, name, taken);
}

TracedPass::~TracedPass()
{
    const Impl::Call call(*impl, TraceEvent::Destructor);
    impl->pass.reset();
}

RenderPass* TracedPass::pass() const
{
    return impl->pass.get();
}

const RenderPass* TracedPass::innermost(const RenderPass* pass)
{
    while (const auto* traced = passCast<TracedPass>(pass))
        pass = traced->pass();
    return pass;
}

RenderPass* TracedPass::innermost(RenderPass* pass)
{
    return const_cast<RenderPass*>(innermost(static_cast<const RenderPass*>(pass)));
}

int TracedPass::index() const
{
    return impl->index;
}

void TracedPass::setName(const QString& name)
{
    impl->recording->passes[static_cast<std::size_t>(impl->index)].name = name;
}

void TracedPass::start(RenderCallbacks* callbacks)
{
    {
        const Impl::Call call(*impl, TraceEvent::Start);
        impl->pass->start(callbacks);
    }
    impl->startWaiting();
}

void TracedPass::skip(RenderCallbacks* callbacks)
{
    {
        const Impl::Call call(*impl, TraceEvent::Skip);
        impl->pass->skip(callbacks);
    }
    impl->startWaiting();
}

bool TracedPass::isFinished() const
{
    Impl::Question question(*impl);
    const Impl::Call call(*impl, TraceEvent::IsFinished);
    question.finished = impl->pass->isFinished();
    return question.finished;
}

void TracedPass::beginFrame(RenderCallbacks* callbacks)
{
    const Impl::Call call(*impl, TraceEvent::BeginFrame);
    impl->endFrameEvent = Recording::kNone;
    impl->pass->beginFrame(callbacks);
}

void TracedPass::endFrame(RenderCallbacks* callbacks)
{
    const Impl::Call call(*impl, TraceEvent::EndFrame);
    impl->endFrameEvent = call.id();
    impl->pass->endFrame(callbacks);
}

unsigned int TracedPass::errorCode() const
{
    const Impl::Call call(*impl, TraceEvent::ErrorCode);
    const unsigned int code = impl->pass->errorCode();
    impl->recording->setErrorCode(impl->endFrameEvent, impl->index, code);
    impl->endFrameEvent = Recording::kNone;
    return code;
}

void TracedPass::setup(RenderCallbacks* callbacks)
{
    const Impl::Call call(*impl, TraceEvent::Setup);
    impl->pass->setup(callbacks);
}

void TracedPass::teardown(RenderCallbacks* callbacks)
{
    const Impl::Call call(*impl, TraceEvent::Teardown);
    impl->pass->teardown(callbacks);
}

void TracedPass::teardownContextData(RenderCallbacks* callbacks)
{
    const Impl::Call call(*impl, TraceEvent::TeardownContextData);
    impl->pass->teardownContextData(callbacks);
}

int TracedPass::numInputs() const
{
    const Impl::Call call(*impl, TraceEvent::NumInputs);
    return impl->pass->numInputs();
}

int TracedPass::numOutputs() const
{
    const Impl::Call call(*impl, TraceEvent::NumOutputs);
    return impl->pass->numOutputs();
}

QString TracedPass::inputName(int index) const
{
    const Impl::Call call(*impl, TraceEvent::InputName);
    return impl->pass->inputName(index);
}

QString TracedPass::outputName(int index) const
{
    const Impl::Call call(*impl, TraceEvent::OutputName);
    return impl->pass->outputName(index);
}

void TracedPass::setInput(int index, const QVariant& value)
{
    const Impl::Call call(*impl, TraceEvent::SetInput);
    impl->pass->setInput(index, value);
}

QVariant TracedPass::defaultValue(int index) const
{
    const Impl::Call call(*impl, TraceEvent::DefaultValue);
    return impl->pass->defaultValue(index);
}

void TracedPass::setDefaultValue(int index, const QVariant& value)
{
    const Impl::Call call(*impl, TraceEvent::SetDefaultValue);
    impl->pass->setDefaultValue(index, value);
}

QVariant TracedPass::output(int index) const
{
    const Impl::Call call(*impl, TraceEvent::Output);
    return impl->pass->output(index);
}

void TracedPass::setNumOutputUsers(int index, int users)
{
    const Impl::Call call(*impl, TraceEvent::SetNumOutputUsers);
    impl->pass->setNumOutputUsers(index, users);
}

void TracedPass::resetNumOutputUsers()
{
    const Impl::Call call(*impl, TraceEvent::ResetNumOutputUsers);
    impl->pass->resetNumOutputUsers();
}

void TracedPass::clearErrorCode()
{
    const Impl::Call call(*impl, TraceEvent::ClearErrorCode);
    impl->pass->clearErrorCode();
}

void TracedPass::setErrorCode(unsigned int code)
{
    const Impl::Call call(*impl, TraceEvent::SetErrorCode);
    impl->pass->setErrorCode(code);
}

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin
