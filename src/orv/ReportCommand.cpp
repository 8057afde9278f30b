// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Arguments.h"
#include "Command.h"
#include "CommandFunctions.h"
#include "DotProgram.h"
#include "DryRun.h"
#include "DryRunOptions.h"
#include "Errors.h"
#include "Input.h"
#include "Messages.h"
#include "Output.h"

#include <Kestrin/Orv/Inspect/Picture.h>
#include <Kestrin/Orv/Inspect/Report.h>

#include <QtCore/QJsonObject>

namespace Kestrin::Orv::Program {

namespace {

/// Draws the graph as SVG. The picture is empty if Graphviz cannot draw it: the report then shows
/// the Graphviz text.
QByteArray draw(const Inspect::Snapshot& snapshot, const QVector<int>& failedNodes, int timeout)
{
    const DotProgram dot;
    if (!dot.isInstalled())
        return {};
    try {
        return dot.draw(Inspect::toGraphviz(snapshot, failedNodes), QStringLiteral("svg"), timeout);
    } catch (const SystemError& error) {
        printError(error.text);
        return {};
    }
}

} // namespace

int runReport(const Arguments& arguments, Output& output)
{
    const int numFrames = arguments.number("frames", 0, 100);
    const int timeout = arguments.number("timeout", 1, 60);
    const Document document = readInput(arguments.positional(0));
    Inspect::Trace trace;
    DryRun dryRun(readDryRunOptions(arguments, document), &trace);
    dryRun.setup();
    for (int frame = 0; frame < numFrames; ++frame)
        dryRun.runFrame();
    dryRun.teardown();

    Inspect::ReportContent content;
    content.title = document.name;
    content.snapshot = &dryRun.snapshot();
    content.trace = numFrames > 0 ? &trace : nullptr;
    content.failed = dryRun.failedNodes();
    content.picture = draw(dryRun.snapshot(), dryRun.failedNodes(), timeout);
    const QByteArray html = Inspect::toHtml(content);

    if (arguments.has("output"))
        saveFile(arguments.value("output"), html);
    if (arguments.json())
        output.write(arguments.has("output")
                         ? QJsonObject{{QStringLiteral("file"), arguments.value("output")}}
                         : QJsonObject{{QStringLiteral("html"), QString::fromUtf8(html)}});
    else if (!arguments.has("output"))
        output.write(html);
    return kSuccess;
}

} // namespace Kestrin::Orv::Program
