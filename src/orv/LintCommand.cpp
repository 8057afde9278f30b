// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Arguments.h"
#include "Command.h"
#include "CommandFunctions.h"
#include "Input.h"
#include "Messages.h"
#include "Output.h"

#include <Kestrin/Orv/Inspect/Lint.h>

#include <QtCore/QJsonArray>
#include <QtCore/QJsonObject>

namespace Kestrin::Orv::Program {

using Inspect::Finding;
using Inspect::Paths;
using Inspect::Place;
using Inspect::Places;

namespace {

Place placeOf(const Finding& finding, const Places& places)
{
    if (finding.edge >= 0)
        return places.edges.value(finding.edge);
    if (finding.port.node >= 0) {
        const QVector<QVector<Place>>& ports =
            finding.port.isOutput ? places.outputs : places.inputs;
        const Place place = ports.value(finding.port.node).value(finding.port.index);
        if (place.line > 0)
            return place;
    }
    return places.nodes.value(finding.node);
}

QJsonObject toJson(const Finding& finding, const Document& document, const Paths& paths)
{
    const Place place = placeOf(finding, document.places);
    const QString path =
        finding.port.node >= 0 ? paths.port(finding.port) : paths.node(finding.node);
    return {{QStringLiteral("file"), document.name},  {QStringLiteral("line"), place.line},
            {QStringLiteral("column"), place.column}, {QStringLiteral("code"), finding.code},
            {QStringLiteral("text"), finding.text},   {QStringLiteral("path"), path}};
}

void writeCodes(const Arguments& arguments, Output& output)
{
    const QVector<Inspect::LintCode> codes = Inspect::lintCodes();
    QJsonArray all;
    for (const Inspect::LintCode& code : codes) {
        all.append(QJsonObject{{QStringLiteral("code"), code.code},
                               {QStringLiteral("meaning"), code.meaning}});
        if (!arguments.json())
            output.write(code.code + QLatin1String(": ") + code.meaning + QLatin1Char('\n'));
    }
    if (arguments.json())
        output.write(QJsonObject{{QStringLiteral("codes"), all}});
}

} // namespace

int runLint(const Arguments& arguments, Output& output)
{
    if (arguments.has("codes")) {
        writeCodes(arguments, output);
        return kSuccess;
    }
    const Document document = readInput(arguments.positional(0));
    const QVector<Finding> findings = Inspect::lint(document.snapshot);
    if (arguments.json()) {
        const Paths paths(document.snapshot);
        QJsonArray all;
        for (const Finding& finding : findings)
            all.append(toJson(finding, document, paths));
        output.write(QJsonObject{{QStringLiteral("findings"), all}});
    } else {
        for (const Finding& finding : findings)
            output.write(messageLine(document.name, placeOf(finding, document.places), finding.code,
                                     finding.text));
    }
    return findings.isEmpty() ? kSuccess : kFound;
}

} // namespace Kestrin::Orv::Program
