// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Arguments.h"
#include "Command.h"
#include "CommandFunctions.h"
#include "Input.h"
#include "Output.h"

#include <Kestrin/Orv/Inspect/Picture.h>

#include <QtCore/QJsonObject>

namespace Kestrin::Orv::Program {

int runDot(const Arguments& arguments, Output& output)
{
    const QByteArray dot = Inspect::toGraphviz(readInput(arguments.positional(0)).snapshot);
    if (arguments.json())
        output.write(QJsonObject{{QStringLiteral("dot"), QString::fromUtf8(dot)}});
    else
        output.write(dot);
    return kSuccess;
}

} // namespace Kestrin::Orv::Program
