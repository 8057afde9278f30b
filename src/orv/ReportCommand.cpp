// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Arguments.h"
#include "Command.h"
#include "DotProgram.h"
#include "Output.h"
#include "Player.h"
#include "Trouble.h"

#include <Kestrin/Orv/Inspect/Picture.h>
#include <Kestrin/Orv/Inspect/Report.h>

#include <QtCore/QJsonObject>

#include <memory>

namespace Kestrin::Orv::Program {

namespace {

/// The picture as SVG; empty where Graphviz does not draw it: the report shows its text then.
QByteArray draw(const Inspect::Snapshot& snapshot, const QVector<int>& failed, int timeout)
{
    const DotProgram dot;
    if (!dot.isInstalled())
        return {};
    try {
        return dot.draw(Inspect::toGraphviz(snapshot, failed), QStringLiteral("svg"), timeout);
    } catch (const Failure& failure) {
        complain(failure.text);
        return {};
    }
}

int run(const Arguments& arguments, Output& output)
{
    const int numFrames = arguments.number("frames", 0, 100);
    const int timeout = arguments.number("timeout", 1, 60);
    const Document document = readInput(arguments.plain(0));
    Inspect::Trace trace;
    Player player(arguments, document, &trace);
    player.setup();
    for (int frame = 0; frame < numFrames; ++frame)
        player.frame();
    player.teardown();

    Inspect::ReportContent content;
    content.title = document.name;
    content.snapshot = &player.snapshot();
    content.trace = numFrames > 0 ? &trace : nullptr;
    content.failed = player.failed();
    content.picture = draw(player.snapshot(), player.failed(), timeout);
    const QByteArray html = Inspect::toHtml(content);

    if (arguments.has("output"))
        saveFile(arguments.value("output"), html);
    if (arguments.json())
        output.write(arguments.has("output")
                         ? QJsonObject{{QStringLiteral("file"), arguments.value("output")}}
                         : QJsonObject{{QStringLiteral("html"), QString::fromUtf8(html)}});
    else if (!arguments.has("output"))
        output.write(html);
    return kFine;
}

} // namespace

const Command& reportCommand()
{
    static const Command command{
        QStringLiteral("report"),
        QStringLiteral("[FILE]"),
        QStringLiteral("Write a report on a graph and its frames as one HTML file"),
        QStringLiteral(
            "Frames are run with stand-ins in place of the passes. Without --output, the report\n"
            "is written on standard output.\n"),
        QVector<Option>{{QStringLiteral("output"), QStringLiteral("FILE"),
                         QStringLiteral("write FILE"), QLatin1Char('o')},
                        {QStringLiteral("frames"),
                         QStringLiteral("N"),
                         QStringLiteral("run N frames, 100 if not told"),
                         {}},
                        {QStringLiteral("timeout"),
                         QStringLiteral("SECONDS"),
                         QStringLiteral("wait so long for Graphviz, 60 if not told"),
                         {}}}
            + Player::options(),
        0,
        1,
        QStringLiteral("0 for a report"),
        QStringLiteral("$ orv report --frames 10 -o scene.html scene.json\n"),
        run};
    return command;
}

} // namespace Kestrin::Orv::Program
