// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Arguments.h"
#include "Command.h"
#include "CommandFunctions.h"
#include "Errors.h"
#include "Input.h"
#include "Output.h"

#include <Kestrin/Orv/Inspect/Diff.h>

#include <QtCore/QJsonObject>

namespace Kestrin::Orv::Program {

int runDiff(const Arguments& arguments, Output& output)
{
    if (arguments.positional(0) == QLatin1String("-")
        && arguments.positional(1) == QLatin1String("-"))
        throw UsageError(QStringLiteral("cannot read standard input twice"));
    const Document before = readInput(arguments.positional(0));
    const Document after = readInput(arguments.positional(1));
    const QVector<Inspect::Change> changes = Inspect::diff(before.snapshot, after.snapshot);
    if (arguments.json())
        output.write(QJsonObject{{QStringLiteral("changes"), Inspect::toJson(changes)}});
    else
        output.write(Inspect::toText(changes));
    return changes.isEmpty() ? kSuccess : kFound;
}

} // namespace Kestrin::Orv::Program
