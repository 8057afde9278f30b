// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Arguments.h"
#include "Command.h"
#include "Output.h"
#include "Player.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonObject>

namespace Kestrin::Orv::Program {

using Inspect::Paths;

namespace {

QString toText(const QVector<PassCalls>& passes, const Paths& paths)
{
    QString text;
    for (const PassCalls& pass : passes) {
        text += QLatin1String("  ") + paths.node(pass.node) + QLatin1String(": ")
            + pass.calls.join(QLatin1Char(' '));
        if (pass.errorCode != 0)
            text += QLatin1String(", error code ") + QString::number(pass.errorCode);
        text += QLatin1Char('\n');
    }
    return text;
}

QJsonArray toJson(const QVector<PassCalls>& passes, const Paths& paths)
{
    QJsonArray all;
    for (const PassCalls& pass : passes)
        all.append(QJsonObject{{QStringLiteral("pass"), paths.node(pass.node)},
                               {QStringLiteral("calls"), QJsonArray::fromStringList(pass.calls)},
                               {QStringLiteral("errorCode"), static_cast<qint64>(pass.errorCode)}});
    return all;
}

/// Plays a document and writes what happens, frame by frame.
class Script
{
public:
    Script(Player& played, Output& written)
        : player(played)
        , output(written)
        , paths(played.snapshot())
    {
    }

    /// \return whether all frames went well.
    bool write(int numFrames)
    {
        bool succeeded = true;
        output.write(QLatin1String("setup\n") + toText(player.setup(), paths));
        for (int frame = 1; frame <= numFrames; ++frame) {
            const QString calls = toText(player.frame(), paths);
            succeeded = succeeded && player.succeeded();
            output.write(QLatin1String("frame ") + QString::number(frame)
                         + QLatin1String(player.succeeded() ? "\n" : " failed\n") + calls
                         + outputsText());
            output.flush(); // somebody may be looking, or gone
        }
        output.write(QLatin1String("teardown\n") + toText(player.teardown(), paths));
        return succeeded;
    }

    bool writeJson(int numFrames)
    {
        bool succeeded = true;
        const QJsonArray setup = toJson(player.setup(), paths);
        QJsonArray frames;
        for (int frame = 1; frame <= numFrames; ++frame) {
            const QJsonArray calls = toJson(player.frame(), paths);
            succeeded = succeeded && player.succeeded();
            frames.append(QJsonObject{{QStringLiteral("frame"), frame},
                                      {QStringLiteral("succeeded"), player.succeeded()},
                                      {QStringLiteral("calls"), calls},
                                      {QStringLiteral("outputs"), outputsJson()}});
        }
        const QJsonArray teardown = toJson(player.teardown(), paths);
        output.write(QJsonObject{{QStringLiteral("setup"), setup},
                                 {QStringLiteral("frames"), frames},
                                 {QStringLiteral("teardown"), teardown}});
        return succeeded;
    }

private:
    QString outputsText() const
    {
        QString text;
        for (int i = 0; i < player.numOutputs(); ++i) {
            const QVariant value = player.output(i);
            text += QLatin1String("  ") + paths.output(0, i)
                + (value.isValid() ? QLatin1String(" = ") + value.toString()
                                   : QStringLiteral(" has no value"))
                + QLatin1Char('\n');
        }
        return text;
    }
    QJsonArray outputsJson() const
    {
        QJsonArray all;
        for (int i = 0; i < player.numOutputs(); ++i)
            all.append(
                QJsonObject{{QStringLiteral("output"), paths.output(0, i)},
                            {QStringLiteral("value"), QJsonValue::fromVariant(player.output(i))}});
        return all;
    }

    Player& player;
    Output& output;
    Paths paths;
};

int run(const Arguments& arguments, Output& output)
{
    const int numFrames = arguments.number("frames", 0, 1);
    const Document document = readInput(arguments.plain(0));
    Inspect::Trace trace;
    Player player(arguments, document, arguments.has("trace") ? &trace : nullptr);
    Script script(player, output);
    const bool succeeded = arguments.json() ? script.writeJson(numFrames) : script.write(numFrames);
    if (arguments.has("trace"))
        saveFile(arguments.value("trace"), trace.toTraceEvents());
    return succeeded ? kFine : kFound;
}

} // namespace

const Command& runCommand()
{
    static const Command command{
        QStringLiteral("run"),
        QStringLiteral("[FILE]"),
        QStringLiteral("Run frames with stand-ins in place of the passes, and show all calls"),
        QStringLiteral("A line for each pass with the calls that it receives, in their order. The "
                       "stand-ins put\n"
                       "out numbers that follow from their names and inputs; each frame ends with "
                       "the values of\n"
                       "the renderer's outputs.\n"),
        QVector<Option>{{QStringLiteral("frames"),
                         QStringLiteral("N"),
                         QStringLiteral("run N frames, 1 if not told"),
                         {}},
                        {QStringLiteral("trace"),
                         QStringLiteral("FILE"),
                         QStringLiteral("write the times of all calls to FILE, for Perfetto"),
                         {}}}
            + Player::options(),
        0,
        1,
        QStringLiteral("0 for frames that went well, 1 for one that failed"),
        QStringLiteral("$ orv run --fail Tone=3 clean.json\n"
                       "setup\n"
                       "  Geometry: setup\n"
                       "  Tone: setup\n"
                       "frame 1 failed\n"
                       "  Geometry: beginFrame start endFrame\n"
                       "  Tone: beginFrame start endFrame, error code 3\n"
                       "  Picture = 117849884\n"
                       "teardown\n"
                       "  Geometry: teardown\n"
                       "  Tone: teardown\n"),
        run};
    return command;
}

} // namespace Kestrin::Orv::Program
