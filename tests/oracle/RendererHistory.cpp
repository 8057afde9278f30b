// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "RendererHistory.h"

#include "MessageSink.h"
#include "RendererOracle.h"
#include "ScriptedPass.h"

#include <Kestrin/Orv/Renderer.h>

#include <algorithm>
#include <memory>

namespace {

struct RendererCall
{
    RendererOp op;
    int ints[4];
    QString string;
    GraphCall graphCall;

    std::string text() const;
};

struct Info
{
    const char* name;
    const char* roles;
};

const Info kInfo[] = {
#define ORV_INFO(name, roles, expression) {#name, roles},
    ORV_RENDERER_CALLS(ORV_INFO)
#undef ORV_INFO
};

QString staggered()
{
    return QStringLiteral("Orv_bool_staggeredFirstFrame");
}

/// Any number makes a pointer that nobody looks at.
Kestrin::Orv::RenderCallbacks* callbacksOf(int number)
{
    return reinterpret_cast<Kestrin::Orv::RenderCallbacks*>(static_cast<qintptr>(number));
}

/// What a pass does when it calls back. What comes from `Setup` on leaves open what the rest of the
/// frame is like.
enum class CallBack {
    SetEnabled,
    SetDisabled,
    SetTarget,
    SetParameter,
    Setup,
    Teardown,
    Render,
    AddPass,
    RemoveNode,
    Purge
};
const int kNumCallBacks = static_cast<int>(CallBack::Purge) + 1;

/// One of the two renderers with its passes.
template<typename R>
struct Side
{
    std::vector<PassEvent> events;
    std::vector<ScriptedPass*> passes; // owned by the renderer
    std::unique_ptr<R> renderer = std::make_unique<R>();
    bool open = false;
    bool isModel = false;
    int numPasses = 0;

    int addPass(const QString& name, int numInputs, int numOutputs, int parent)
    {
        passes.push_back(new ScriptedPass(events, numPasses++, numInputs, numOutputs));
        return renderer->addPass(name, passes.back(), parent);
    }

    ScriptedPass& pass(int index)
    {
        if (passes.empty()) // a place to write to
            addPass(QString(), 0, 0, 0);
        return *passes[static_cast<std::size_t>(index) % passes.size()];
    }

    int indexOf(const Kestrin::Orv::RenderPass* pass_) const
    {
        const auto found = std::find(passes.begin(), passes.end(), pass_);
        return pass_ && found != passes.end() ? static_cast<int>(found - passes.begin()) : -1;
    }

    void callBack(int index, int at, int action, int node)
    {
        ScriptedPass& caller = pass(index);
        caller.callsBackAt = at;
        caller.callback = [this, action, node] {
            R& r = *renderer;
            if (action >= static_cast<int>(CallBack::Setup)) {
                open = true;
                if (isModel)
                    return;
            }
            switch (static_cast<CallBack>(action)) {
            case CallBack::SetEnabled:
                return r.setEnabled(node, true);
            case CallBack::SetDisabled:
                return r.setEnabled(node, false);
            case CallBack::SetTarget:
                return r.setTarget(node);
            case CallBack::SetParameter:
                return r.setParameter(node % 3, 77);
            case CallBack::Setup:
                return r.setup(nullptr);
            case CallBack::Teardown:
                return r.teardown(nullptr);
            case CallBack::Render:
                r.render(nullptr);
                return;
            case CallBack::AddPass:
                for (int i = 0; i < 20; ++i) // enough for lists to move
                    addPass(QString(), 1, 1, 0);
                return;
            case CallBack::RemoveNode:
                return r.getGraph()->removeNode(node);
            case CallBack::Purge:
                return r.getGraph()->purge();
            }
        };
    }
};

struct RendererOutcome : Outcome
{
    bool passFailure = false;

    using Outcome::operator=;
    RendererOutcome& operator=(const Outcome& outcome)
    {
        static_cast<Outcome&>(*this) = outcome;
        return *this;
    }
    bool operator==(const RendererOutcome& other) const
    {
        return Outcome::operator==(other) && passFailure == other.passFailure;
    }
};

template<typename R>
RendererOutcome performOn(Side<R>& side, const RendererCall& call)
{
    R& r = *side.renderer;
    const int(&a)[4] = call.ints;
    const QString& s = call.string;
    RendererOutcome out;
    try {
        switch (call.op) {
#define ORV_CASE(name, roles, expression)                                                          \
    case RendererOp::name:                                                                         \
        expression;                                                                                \
        break;
            ORV_RENDERER_CALLS(ORV_CASE)
#undef ORV_CASE
        }
    } catch (const PassFailure&) {
        out.passFailure = true;
    } catch (const std::bad_alloc&) {
        out.badAlloc = true;
    }
    return out;
}

std::string RendererCall::text() const
{
    const Info& info = kInfo[static_cast<int>(op)];
    if (!*info.roles && op >= RendererOp::graphCall)
        return graphCall.text();
    std::string arguments;
    int numInts = 0;
    for (const char* role = info.roles; *role; ++role) {
        arguments += role == info.roles ? "" : ", ";
        if (*role == 's')
            arguments += "QStringLiteral(\"" + string.left(40).toStdString() + "\")";
        else
            arguments += std::to_string(ints[numInts++]);
    }
    const bool ofSide = op == RendererOp::addPass
        || (op >= RendererOp::passFails && op <= RendererOp::passCallsBack);
    return (ofSide ? "side." : "renderer.") + std::string(info.name) + "(" + arguments + ");";
}

/// A call that feeds from a sibling, or from or to the parent.
GraphCall soundEdge(const RendererStep& step, const Oracle::Graph& graph)
{
    const std::uint8_t(&byte)[4] = step.graph.args;
    const auto pick = [](std::uint8_t b, int size) { return size > 0 ? b % size : 0; };
    const int node = pick(byte[0], graph.numNodesGlobal());
    const int parent = graph.parentNode(node);
    GraphCall call = {};
    if (static_cast<RendererOp>(step.op) == RendererOp::siblingEdge) {
        const int sibling = graph.getNode(pick(byte[2], graph.numNodes(parent)), parent);
        call.op = GraphOp::addEdge;
        call.ints[0] = node;
        call.ints[1] = pick(byte[1], graph.numOutputs(node));
        call.ints[2] = sibling;
        call.ints[3] = pick(byte[3], graph.numInputs(sibling));
    } else {
        const bool up = byte[3] & 1;
        call.op = up ? GraphOp::addUpEdge : GraphOp::addDownEdge;
        call.ints[0] = pick(byte[1], up ? graph.numOutputs(parent) : graph.numInputs(parent));
        call.ints[1] = node;
        call.ints[2] = pick(byte[2], up ? graph.numOutputs(node) : graph.numInputs(node));
    }
    return call;
}

RendererCall resolve(const RendererStep& step, const Oracle::Graph& graph)
{
    RendererCall call = {};
    call.op = static_cast<RendererOp>(step.op % kNumRendererOps);
    if (call.op == RendererOp::graphCall) {
        call.graphCall = resolve(step.graph, graph);
        return call;
    }
    if (call.op == RendererOp::siblingEdge || call.op == RendererOp::hierarchyEdge) {
        call.graphCall = soundEdge(step, graph);
        return call;
    }
    // The roles that graphs have too are resolved by way of a graph's call with the same role.
    const auto borrowed = [&graph](GraphOp op, std::uint8_t byte) {
        const GraphStep lender = {static_cast<std::uint8_t>(op), {byte, byte, byte, byte}};
        return resolve(lender, graph);
    };
    const std::uint8_t* byte = step.graph.args;
    int* next = call.ints;
    for (const char* role = kInfo[static_cast<int>(call.op)].roles; *role; ++role, ++byte) {
        switch (*role) {
        case 's':
            call.string = borrowed(GraphOp::setNodeName, *byte).strings[0];
            break;
        case 'n':
            *next++ = borrowed(GraphOp::removeNode, *byte).ints[0];
            break;
        case 'i':
            *next++ = borrowed(GraphOp::getNode, *byte).ints[0];
            break;
        case 'c':
            *next++ = borrowed(GraphOp::addNode, *byte).ints[0];
            break;
        case 'v':
            *next++ = borrowed(GraphOp::getNodeGlobal, *byte).ints[0];
            break;
        case 'b':
            *next++ = *byte & 1;
            break;
        case 'f':
            *next++ = *byte < 0xF8 ? *byte % 4 : -1;
            break;
        case 'x':
            *next++ = *byte % kNumPassCalls;
            break;
        case 'y':
            *next++ = *byte % kNumCallBacks;
            break;
        case 'u':
            *next++ = *byte % 5;
            break;
        default:
            *next++ = *byte;
        }
    }
    return call;
}

std::string print(const std::vector<PassEvent>& events)
{
    std::string text;
    for (const PassEvent& event : events)
        text += "\n    " + event.print();
    return text;
}

} // namespace

std::string runRendererHistory(const std::vector<RendererStep>& steps)
{
    const MessageSink sink; // the graph's messages are compared elsewhere
    Side<Kestrin::Orv::Renderer> library;
    Side<Oracle::Renderer> model;
    model.isModel = true;
    std::vector<RendererCall> calls;
    bool open = false;

    const auto failure = [&calls](const std::string& what) {
        std::string text = what + "\nRenderer renderer; Graph& graph = *renderer.getGraph();\n";
        for (const RendererCall& call : calls)
            text += call.text() + "\n";
        return text;
    };
    const auto eventsDiffer = [&library, &model] {
        return "the passes received" + print(library.events) + "\n  instead of"
            + print(model.events);
    };

    for (const RendererStep& step : steps) {
        const Oracle::Graph& graph = *model.renderer->getGraph();
        calls.push_back(resolve(step, graph));
        if (open) {
            performOn(library, calls.back());
            continue;
        }
        const RendererOutcome expected = performOn(model, calls.back());
        const RendererOutcome answered = performOn(library, calls.back());
        open = graph.open || model.open;
        if (open)
            continue;
        if (!(answered == expected))
            return failure("answered " + answered.print() + " instead of " + expected.print());
        if (library.events != model.events)
            return failure(eventsDiffer());
        library.events.clear();
        model.events.clear();
    }

    if (!open) {
        const std::string found =
            difference(*library.renderer->getGraph(), *model.renderer->getGraph());
        if (!found.empty())
            return failure(found);
        library.renderer.reset();
        model.renderer.reset();
        if (library.events != model.events)
            return failure(eventsDiffer());
        return std::string();
    }
    // The oracle no longer tells what is right, but each pass is deleted once, whatever happened.
    library.events.clear();
    library.renderer.reset();
    if (static_cast<int>(library.events.size()) != library.numPasses)
        return failure("not each pass was deleted once");
    return std::string();
}

std::vector<RendererStep> decodeRendererSteps(const std::uint8_t* data, std::size_t size,
                                              std::size_t atMost)
{
    std::vector<RendererStep> steps;
    for (std::size_t at = 0; at < size && steps.size() < atMost; at += 6) {
        RendererStep step = {};
        const int first = data[at];
        const int wiring = static_cast<int>(RendererOp::graphCall);
        step.op = static_cast<std::uint8_t>(first < 80        ? first % 6 // what registers
                                                : first < 150 ? wiring + first % 3
                                                              : first % kNumRendererOps);
        std::uint8_t rest[5] = {};
        std::copy_n(data + at + 1, std::min<std::size_t>(5, size - at - 1), rest);
        // Mostly edits of the graph.
        step.graph.op = static_cast<std::uint8_t>(rest[4] < 200 ? rest[4] % kNumGraphEdits
                                                                : rest[4] % kNumGraphOps);
        std::copy_n(rest, 4, step.graph.args);
        steps.push_back(step);
    }
    return steps;
}
