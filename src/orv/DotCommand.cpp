// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Arguments.h"
#include "Command.h"
#include "Input.h"
#include "Output.h"

#include <Kestrin/Orv/Inspect/Picture.h>

#include <QtCore/QJsonObject>

namespace Kestrin::Orv::Program {

namespace {

int run(const Arguments& arguments, Output& output)
{
    const QByteArray dot = Inspect::toGraphviz(readInput(arguments.plain(0)).snapshot);
    if (arguments.json())
        output.write(QJsonObject{{QStringLiteral("dot"), QString::fromUtf8(dot)}});
    else
        output.write(dot);
    return kFine;
}

} // namespace

const Command& dotCommand()
{
    static const Command command{QStringLiteral("dot"),
                                 QStringLiteral("[FILE]"),
                                 QStringLiteral("Write a graph as Graphviz text"),
                                 QString(),
                                 {},
                                 0,
                                 1,
                                 QStringLiteral("0 for a text"),
                                 QStringLiteral("$ orv dot scene.json >scene.dot\n"),
                                 run};
    return command;
}

} // namespace Kestrin::Orv::Program
