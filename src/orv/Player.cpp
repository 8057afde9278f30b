// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Player.h"

#include "Arguments.h"
#include "Names.h"
#include "ParameterValue.h"
#include "Trouble.h"

#include <Kestrin/Orv/Inspect/BuildRenderer.h>
#include <Kestrin/Orv/Inspect/StandInPass.h>
#include <Kestrin/Orv/Inspect/TracedPass.h>

#include <functional>

namespace Kestrin::Orv::Program {

using Inspect::NodeRecord;
using Inspect::Paths;
using Inspect::Problem;
using Inspect::StandInPass;

/// A stand-in that tells the player of its calls, and takes its time without blocking.
class Player::PlayedPass : public StandInPass
{
public:
    PlayedPass(Player& owner, int ref, const NodeRecord& record, const Behaviour& behaviour)
        : StandInPass(record)
        , player(owner)
        , node(ref)
        , milliseconds(behaviour.milliseconds)
    {
        setFailure(behaviour.errorCode);
    }

    void setup(RenderCallbacks* callbacks) override
    {
        player.record(node, QStringLiteral("setup"));
        StandInPass::setup(callbacks);
    }
    void beginFrame(RenderCallbacks* callbacks) override
    {
        player.record(node, QStringLiteral("beginFrame"));
        StandInPass::beginFrame(callbacks);
    }
    void start(RenderCallbacks* callbacks) override
    {
        player.record(node, QStringLiteral("start"));
        StandInPass::start(callbacks);
        if (milliseconds > 0)
            running.start();
    }
    void skip(RenderCallbacks* callbacks) override
    {
        player.record(node, QStringLiteral("skip"));
        StandInPass::skip(callbacks);
    }
    bool isFinished() const override
    {
        if (!running.isValid() || running.hasExpired(milliseconds))
            return true;
        if (player.recorded.last().calls.last() != QLatin1String("wait"))
            player.record(node, QStringLiteral("wait"));
        return false;
    }
    void endFrame(RenderCallbacks* callbacks) override
    {
        running.invalidate();
        player.record(node, QStringLiteral("endFrame"));
        StandInPass::endFrame(callbacks);
        player.recorded.last().errorCode = errorCode();
        if (errorCode() != 0 && !player.failedNodes.contains(node))
            player.failedNodes.append(node);
    }
    void teardown(RenderCallbacks* callbacks) override
    {
        player.record(node, QStringLiteral("teardown"));
        StandInPass::teardown(callbacks);
    }

private:
    Player& player;
    int node;
    int milliseconds;
    QElapsedTimer running;
};

void Player::WatchedRenderer::setup(RenderCallbacks* callbacks)
{
    isSetUp = true;
    Renderer::setup(callbacks);
}

QVector<Option> Player::options()
{
    return {
        {QStringLiteral("slow"),
         QStringLiteral("PASS=MS"),
         QStringLiteral("PASS takes MS milliseconds"),
         {}},
        {QStringLiteral("fail"),
         QStringLiteral("PASS[=CODE]"),
         QStringLiteral("PASS ends with an error code, 1 if not told"),
         {}},
        {QStringLiteral("disable"), QStringLiteral("PASS"), QStringLiteral("PASS is disabled"), {}},
        {QStringLiteral("parameter"),
         QStringLiteral("NAME=VALUE"),
         QStringLiteral("the parameter has this value"),
         {}},
        {QStringLiteral("staggered"), {}, QStringLiteral("frames start one new pass at most"), {}}};
}

Player::Player(const Arguments& arguments, const Document& document, Inspect::Trace* traceOrNull)
    : played(document.snapshot)
    , trace(traceOrNull)
{
    readOptions(arguments, document);

    const auto makePass = [this](const Inspect::PassRequest& request) -> RenderPass* {
        // The refs of a document are those of the renderer that is built from it.
        auto* pass =
            new PlayedPass(*this, request.ref, request.node, behaviours.value(request.ref));
        if (!trace)
            return pass;
        return new Inspect::TracedPass(*trace, request.path, pass);
    };
    Inspect::PassFactory factory;
    factory.setFallback(makePass);
    const QVector<Problem> problems =
        Inspect::buildRenderer(played, renderer, factory, document.places);
    if (!problems.isEmpty())
        throw BadInput(document.name, problems);
}

void Player::readOptions(const Arguments& arguments, const Document& document)
{
    const Paths paths(document.snapshot);
    const Names names(document.name, document.snapshot, paths);

    for (const QString& word : arguments.values("slow")) {
        const int equals = word.lastIndexOf(QLatin1Char('='));
        bool isNumber = false;
        const int milliseconds = word.mid(equals + 1).toInt(&isNumber);
        if (equals < 0 || !isNumber || milliseconds < 0)
            throw Misuse(QLatin1String("takes PASS=MS for --slow, not ") + word);
        behaviours[names.pass(word.left(equals))].milliseconds = milliseconds;
    }
    for (const QString& word : arguments.values("fail")) {
        const int equals = word.lastIndexOf(QLatin1Char('='));
        bool isNumber = equals < 0;
        const unsigned int code = equals < 0 ? 1 : word.mid(equals + 1).toUInt(&isNumber);
        if (!isNumber || code == 0)
            throw Misuse(
                QLatin1String("takes PASS or PASS=CODE for --fail, with a code from 1 on, not ")
                + word);
        behaviours[names.pass(word.left(equals))].errorCode = code;
    }
    for (const QString& word : arguments.values("disable"))
        played.nodes[names.pass(word)].enabled = false;
    for (const QString& word : arguments.values("parameter")) {
        const int equals = word.indexOf(QLatin1Char('='));
        if (equals < 0)
            throw Misuse(QLatin1String("takes NAME=VALUE for --parameter, not ") + word);
        const int parameter = names.parameter(word.left(equals));
        QVariant& value = played.parameters[parameter];
        const QVariant given = parameterValue(word.mid(equals + 1), value);
        if (!given.isValid())
            throw BadInput(document.name, "bad-value",
                           paths.input(0, parameter) + QLatin1String(" takes a value of type ")
                               + QLatin1String(value.typeName()) + QLatin1String(", not \"")
                               + word.mid(equals + 1) + QLatin1Char('"'));
        value = given;
    }
    if (arguments.has("staggered")) {
        const QString name = QStringLiteral("Orv_bool_staggeredFirstFrame");
        int index = 0;
        while (index < played.parameters.size() && played.input(0, index).name != name)
            ++index;
        if (index == played.parameters.size()) {
            Inspect::PortRecord port;
            port.name = name;
            played.nodes[0].inputs.append(port);
            played.parameters.append(QVariant());
        }
        played.parameters[index] = true;
    }
}

void Player::record(int node, const QString& call)
{
    if (recorded.isEmpty() || recorded.last().node != node)
        recorded.append({node, {}, 0});
    recorded.last().calls.append(call);
}

QVector<PassCalls> Player::takeCalls()
{
    QVector<PassCalls> calls;
    calls.swap(recorded);
    return calls;
}

QVector<PassCalls> Player::setup()
{
    // Passes that are disabled from the start make the first frame set up all passes again; that is
    // taken care of here, at once.
    renderer.beginFrame(nullptr);
    if (!renderer.isSetUp)
        renderer.setup(nullptr);
    return takeCalls();
}

QVector<PassCalls> Player::frame()
{
    if (trace)
        trace->beginFrame();
    wentWell = renderer.render(nullptr);
    if (trace)
        trace->endFrame();
    return takeCalls();
}

QVector<PassCalls> Player::teardown()
{
    renderer.teardown(nullptr);
    return takeCalls();
}

} // namespace Kestrin::Orv::Program
