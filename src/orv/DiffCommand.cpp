// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Arguments.h"
#include "Command.h"
#include "Input.h"
#include "Output.h"
#include "Trouble.h"

#include <Kestrin/Orv/Inspect/Diff.h>

#include <QtCore/QJsonObject>

namespace Kestrin::Orv::Program {

namespace {

int run(const Arguments& arguments, Output& output)
{
    if (arguments.plain(0) == QLatin1String("-") && arguments.plain(1) == QLatin1String("-"))
        throw Misuse(QStringLiteral("cannot read standard input twice"));
    const Document before = readInput(arguments.plain(0));
    const Document after = readInput(arguments.plain(1));
    const QVector<Inspect::Change> changes = Inspect::diff(before.snapshot, after.snapshot);
    if (arguments.json())
        output.write(QJsonObject{{QStringLiteral("changes"), Inspect::toJson(changes)}});
    else
        output.write(Inspect::toText(changes));
    return changes.isEmpty() ? kFine : kFound;
}

} // namespace

const Command& diffCommand()
{
    static const Command command{
        QStringLiteral("diff"),
        QStringLiteral("OLD NEW"),
        QStringLiteral("Tell what has changed from one graph to another"),
        QString(),
        {},
        2,
        2,
        QStringLiteral("0 for no changes, 1 for some"),
        QStringLiteral("$ orv diff scene.json new.json\n"
                       "parameter-changed Angle: double 30 -> double 45\n"
                       "enabled-changed Grain: disabled -> enabled\n"
                       "node-removed Overlay: pass of type OverlayPass -> nothing\n"),
        run};
    return command;
}

} // namespace Kestrin::Orv::Program
