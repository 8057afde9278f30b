// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Arguments.h"
#include "Command.h"
#include "CommandFunctions.h"
#include "DotProgram.h"
#include "Errors.h"
#include "Input.h"
#include "Output.h"

#include <Kestrin/Orv/Inspect/Picture.h>

#include <QtCore/QFileInfo>
#include <QtCore/QJsonObject>

namespace Kestrin::Orv::Program {

int runPicture(const Arguments& arguments, Output& output)
{
    const QString file = arguments.value("output");
    const QString format =
        arguments.has("output") ? QFileInfo(file).suffix().toLower() : QStringLiteral("svg");
    if (format != QLatin1String("svg") && format != QLatin1String("png")
        && format != QLatin1String("pdf"))
        throw UsageError(QLatin1String("cannot write \"") + file
                         + QLatin1String("\": the suffix must be .svg, .png or .pdf"));
    const int timeout = arguments.number("timeout", 1, 60);
    const DotProgram dot;
    if (!dot.isInstalled())
        throw SystemError(QStringLiteral("cannot draw: the program dot of Graphviz is not "
                                         "installed (orv dot writes its input)"));

    const Document document = readInput(arguments.positional(0));
    const QByteArray picture = dot.draw(Inspect::toGraphviz(document.snapshot), format, timeout);
    QJsonObject result{{QStringLiteral("format"), format}};
    if (arguments.has("output")) {
        saveFile(file, picture);
        result.insert(QStringLiteral("file"), file);
    } else if (arguments.json()) {
        result.insert(QStringLiteral("picture"), QString::fromUtf8(picture));
    } else {
        output.write(picture);
    }
    if (arguments.json())
        output.write(result);
    return kSuccess;
}

} // namespace Kestrin::Orv::Program
