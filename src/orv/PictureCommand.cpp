// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Arguments.h"
#include "Command.h"
#include "DotProgram.h"
#include "Input.h"
#include "Output.h"
#include "Trouble.h"

#include <Kestrin/Orv/Inspect/Picture.h>

#include <QtCore/QFileInfo>
#include <QtCore/QJsonObject>

namespace Kestrin::Orv::Program {

namespace {

int run(const Arguments& arguments, Output& output)
{
    const QString file = arguments.value("output");
    const QString format =
        arguments.has("output") ? QFileInfo(file).suffix().toLower() : QStringLiteral("svg");
    if (format != QLatin1String("svg") && format != QLatin1String("png")
        && format != QLatin1String("pdf"))
        throw Misuse(QLatin1String("writes files that end in .svg, .png or .pdf, not ") + file);
    const int timeout = arguments.number("timeout", 1, 60);
    const DotProgram dot;
    if (!dot.isInstalled())
        throw Failure(
            QStringLiteral("pictures are drawn by the program dot of Graphviz, which is not "
                           "installed (orv dot writes its input)"));

    const Document document = readInput(arguments.plain(0));
    const QByteArray picture = dot.draw(Inspect::toGraphviz(document.snapshot), format, timeout);
    QJsonObject told{{QStringLiteral("format"), format}};
    if (arguments.has("output")) {
        saveFile(file, picture);
        told.insert(QStringLiteral("file"), file);
    } else if (arguments.json()) {
        told.insert(QStringLiteral("picture"), QString::fromUtf8(picture));
    } else {
        output.write(picture);
    }
    if (arguments.json())
        output.write(told);
    return kFine;
}

} // namespace

const Command& pictureCommand()
{
    static const Command command{
        QStringLiteral("picture"),
        QStringLiteral("[FILE]"),
        QStringLiteral("Draw a graph, by Graphviz"),
        QStringLiteral("Without --output, the picture is written on standard output, as SVG.\n"),
        {{QStringLiteral("output"), QStringLiteral("FILE"),
          QStringLiteral("write FILE, in the format that it ends in: .svg, .png or .pdf"),
          QLatin1Char('o')},
         {QStringLiteral("timeout"),
          QStringLiteral("SECONDS"),
          QStringLiteral("wait so long for Graphviz, 60 if not told"),
          {}}},
        0,
        1,
        QStringLiteral("0 for a picture"),
        QStringLiteral("$ orv picture -o scene.svg scene.json\n"),
        run};
    return command;
}

} // namespace Kestrin::Orv::Program
