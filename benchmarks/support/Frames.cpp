// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "support/Frames.h"

#include <utility>

namespace OrvBench {

using Kestrin::Orv::Renderer;
using Kestrin::Orv::RenderPass;

namespace {

std::size_t at(int index)
{
    return static_cast<std::size_t>(index);
}

} // namespace

MixPass::MixPass(int seed, int numInputs, int numOutputs)
    : ownSeed(static_cast<uint>(seed))
{
    for (int i = 0; i < numInputs; ++i)
        addInput(QStringLiteral("input%1").arg(i), 1u);
    for (int i = 0; i < numOutputs; ++i)
        addOutput(QStringLiteral("output%1").arg(i));
}

void MixPass::start(Kestrin::Orv::RenderCallbacks*)
{
    uint mix = ownSeed;
    for (const auto& input : qAsConst(inputs)) {
        mix = (mix ^ input.value.toUInt()) * 2654435769u;
        mix ^= mix >> 15;
    }
    outputs[0].value = mix;
}

HandWrittenFrame::HandWrittenFrame(const Shape& shape, Renderer& renderer)
    : parameter(0u)
{
    const Feeds feeds(shape);
    const std::vector<int> order = passOrder(shape, feeds);
    std::vector<int> positions(shape.nodes.size(), -1);
    const auto resolve = [&](const Feed& feed) {
        if (feed.node < 0)
            return Input{nullptr, -1, false, -1};
        if (feed.node == 0)
            return Input{nullptr, feed.port, true, -1};
        return Input{renderer.renderPass(feed.node), feed.port, false, positions[at(feed.node)]};
    };
    for (const int node : order) {
        steps.push_back({renderer.renderPass(node), inputs.size()});
        for (int input = 0; input < shape.node(node).numInputs; ++input)
            inputs.push_back(resolve(feeds.ofInput(node, input)));
        positions[at(node)] = static_cast<int>(steps.size()) - 1;
    }
    for (int output = 0; output < shape.node(0).numOutputs; ++output)
        outputFeeds.push_back(resolve(feeds.ofOutput(0, output)));
    outputs.resize(outputFeeds.size());
    started.resize(steps.size());
}

bool HandWrittenFrame::run(const Step& step, bool start)
{
    RenderPass* pass = step.pass;
    const int numInputs = pass->numInputs();
    for (int i = 0; i < numInputs; ++i) {
        const Input& input = inputs[step.firstInput + at(i)];
        if (input.producer)
            pass->setInput(i, input.producer->output(input.port));
        else if (input.isParameter)
            pass->setInput(i, parameter);
        else
            pass->setInput(i, pass->defaultValue(i));
    }
    pass->clearErrorCode();
    pass->beginFrame(nullptr);
    if (start)
        pass->start(nullptr);
    else
        pass->skip(nullptr);
    while (!pass->isFinished()) { }
    pass->endFrame(nullptr);
    return pass->errorCode() == 0;
}

bool HandWrittenFrame::render()
{
    bool succeeded = true;
    for (const Step& step : steps) {
        succeeded = run(step, true);
        if (!succeeded)
            break;
    }
    collectOutputs();
    return succeeded;
}

bool HandWrittenFrame::renderStaggered()
{
    bool succeeded = true;
    bool newStarted = false;
    for (std::size_t i = 0; i < steps.size() && succeeded; ++i) {
        succeeded = run(steps[i], !newStarted);
        if (!newStarted && !started[i]) {
            started[i] = true;
            newStarted = true;
        }
    }
    collectOutputs();
    return succeeded;
}

void HandWrittenFrame::collectOutputs()
{
    for (std::size_t i = 0; i < outputFeeds.size(); ++i)
        outputs[i] = outputFeeds[i].producer->output(outputFeeds[i].port);
}

std::vector<int> HandWrittenFrame::producers(int position) const
{
    const std::size_t first = steps[at(position)].firstInput;
    const std::size_t end =
        at(position) + 1 < steps.size() ? steps[at(position) + 1].firstInput : inputs.size();
    std::vector<int> result;
    for (std::size_t i = first; i < end; ++i) {
        if (inputs[i].producer)
            result.push_back(inputs[i].producerPosition);
    }
    return result;
}

RebuiltFrame::RebuiltFrame(HandWrittenFrame& frameToRun)
    : frame(frameToRun)
{
    for (int position = 0; position < frame.numPasses(); ++position)
        declaredReads.push_back(frame.producers(position));
}

void RebuiltFrame::clear()
{
    passes.clear();
    reads.clear();
    readers.clear();
    order.clear();
}

void RebuiltFrame::addPass(const std::vector<int>& passReads, std::function<bool()> execute)
{
    passes.push_back({std::move(execute), static_cast<int>(reads.size()),
                      static_cast<int>(passReads.size()), static_cast<int>(passReads.size()), 0,
                      0});
    reads.insert(reads.end(), passReads.begin(), passReads.end());
}

void RebuiltFrame::sort()
{
    for (const int read : reads)
        ++passes[at(read)].numReaders;
    int next = 0;
    for (Pass& pass : passes) {
        pass.firstReader = next;
        next += std::exchange(pass.numReaders, 0);
    }
    readers.resize(reads.size());
    for (int position = 0; position < static_cast<int>(passes.size()); ++position) {
        const Pass& pass = passes[at(position)];
        for (int i = 0; i < pass.numReads; ++i) {
            Pass& producer = passes[at(reads[at(pass.firstRead + i)])];
            readers[at(producer.firstReader + producer.numReaders++)] = position;
        }
        if (pass.numReads == 0)
            order.push_back(position);
    }
    for (std::size_t head = 0; head < order.size(); ++head) {
        const Pass& pass = passes[at(order[head])];
        for (int i = 0; i < pass.numReaders; ++i) {
            const int reader = readers[at(pass.firstReader + i)];
            if (--passes[at(reader)].waitingFor == 0)
                order.push_back(reader);
        }
    }
}

bool RebuiltFrame::render()
{
    clear();
    for (int position = 0; position < frame.numPasses(); ++position) {
        addPass(declaredReads[at(position)], [this, position] { return frame.runPass(position); });
    }
    sort();
    bool succeeded = true;
    for (const int position : order) {
        succeeded = passes[at(position)].execute();
        if (!succeeded)
            break;
    }
    frame.collectOutputs();
    return succeeded;
}

} // namespace OrvBench
