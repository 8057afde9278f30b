// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Arguments.h"
#include "Command.h"
#include "CommandFunctions.h"
#include "DryRun.h"
#include "DryRunOptions.h"
#include "Input.h"
#include "Output.h"

#include <Kestrin/Orv/Inspect/Paths.h>

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

/// Writes the calls and the outputs of a dry run, frame by frame.
class Transcript
{
public:
    Transcript(DryRun& recorded, Output& written)
        : dryRun(recorded)
        , output(written)
        , paths(recorded.snapshot())
    {
    }

    /// \return whether all frames succeeded.
    bool write(int numFrames)
    {
        bool succeeded = true;
        output.write(QLatin1String("setup\n") + toText(dryRun.setup(), paths));
        for (int frame = 1; frame <= numFrames; ++frame) {
            const QString calls = toText(dryRun.runFrame(), paths);
            succeeded = succeeded && dryRun.succeeded();
            output.write(QLatin1String("frame ") + QString::number(frame)
                         + QLatin1String(dryRun.succeeded() ? "\n" : " failed\n") + calls
                         + outputsText());
            output.flush(); // a reader sees each frame at once; a closed pipe ends the run
        }
        output.write(QLatin1String("teardown\n") + toText(dryRun.teardown(), paths));
        return succeeded;
    }

    /// The same as one JSON object.
    bool writeJson(int numFrames)
    {
        bool succeeded = true;
        const QJsonArray setup = toJson(dryRun.setup(), paths);
        QJsonArray frames;
        for (int frame = 1; frame <= numFrames; ++frame) {
            const QJsonArray calls = toJson(dryRun.runFrame(), paths);
            succeeded = succeeded && dryRun.succeeded();
            frames.append(QJsonObject{{QStringLiteral("frame"), frame},
                                      {QStringLiteral("succeeded"), dryRun.succeeded()},
                                      {QStringLiteral("calls"), calls},
                                      {QStringLiteral("outputs"), outputsJson()}});
        }
        const QJsonArray teardown = toJson(dryRun.teardown(), paths);
        output.write(QJsonObject{{QStringLiteral("setup"), setup},
                                 {QStringLiteral("frames"), frames},
                                 {QStringLiteral("teardown"), teardown}});
        return succeeded;
    }

private:
    QString outputsText() const
    {
        QString text;
        for (int i = 0; i < dryRun.numOutputs(); ++i) {
            const QVariant value = dryRun.output(i);
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
        for (int i = 0; i < dryRun.numOutputs(); ++i)
            all.append(
                QJsonObject{{QStringLiteral("output"), paths.output(0, i)},
                            {QStringLiteral("value"), QJsonValue::fromVariant(dryRun.output(i))}});
        return all;
    }

    DryRun& dryRun;
    Output& output;
    Paths paths;
};

} // namespace

int runDryRun(const Arguments& arguments, Output& output)
{
    const int numFrames = arguments.number("frames", 0, 1);
    const Document document = readInput(arguments.positional(0));
    Inspect::Trace trace;
    DryRun dryRun(readDryRunOptions(arguments, document),
                  arguments.has("trace") ? &trace : nullptr);
    Transcript transcript(dryRun, output);
    const bool succeeded =
        arguments.json() ? transcript.writeJson(numFrames) : transcript.write(numFrames);
    if (arguments.has("trace"))
        saveFile(arguments.value("trace"), trace.toTraceEvents());
    return succeeded ? kSuccess : kFound;
}

} // namespace Kestrin::Orv::Program
