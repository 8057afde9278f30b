// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "DryRunOptions.h"

#include "Arguments.h"
#include "Errors.h"
#include "ParameterValue.h"
#include "PathResolver.h"

namespace Kestrin::Orv::Program {

using Inspect::Paths;
using Inspect::Snapshot;

namespace {

[[noreturn]] void throwUsage(const char* option, const char* needed, const QString& word)
{
    throw UsageError(QLatin1String("option --") + QLatin1String(option) + QLatin1String(" needs ")
                     + QLatin1String(needed) + QLatin1String(", not \"") + word + QLatin1Char('"'));
}

void readSlow(const QString& word, const PathResolver& resolver, DryRunSetup& setup)
{
    const int equals = word.lastIndexOf(QLatin1Char('='));
    bool isNumber = false;
    const int milliseconds = word.mid(equals + 1).toInt(&isNumber);
    if (equals < 0 || !isNumber || milliseconds < 0)
        throwUsage("slow", "PASS=MS", word);
    setup.behaviours[resolver.resolvePass(word.left(equals))].milliseconds = milliseconds;
}

void readFail(const QString& word, const PathResolver& resolver, DryRunSetup& setup)
{
    const int equals = word.lastIndexOf(QLatin1Char('='));
    bool isNumber = equals < 0;
    const unsigned int code = equals < 0 ? 1 : word.mid(equals + 1).toUInt(&isNumber);
    if (!isNumber || code == 0)
        throwUsage("fail", "PASS or PASS=CODE with a code of at least 1", word);
    setup.behaviours[resolver.resolvePass(word.left(equals))].errorCode = code;
}

void readParameter(const QString& word, const PathResolver& resolver, const Paths& paths,
                   Document& document)
{
    const int equals = word.indexOf(QLatin1Char('='));
    if (equals < 0)
        throwUsage("parameter", "NAME=VALUE", word);
    const int parameter = resolver.resolveParameter(word.left(equals));
    QVariant& value = document.snapshot.parameters[parameter];
    const QVariant given = parameterValue(word.mid(equals + 1), value);
    if (!given.isValid())
        throw InputError(document.name, "bad-value",
                         paths.input(0, parameter) + QLatin1String(" needs a value of type ")
                             + QLatin1String(value.typeName()) + QLatin1String(", not \"")
                             + word.mid(equals + 1) + QLatin1Char('"'));
    value = given;
}

/// Sets the parameter of the renderer that staggers its first frames; adds it if it is missing.
void setStaggered(Snapshot& snapshot)
{
    const QString name = QStringLiteral("Orv_bool_staggeredFirstFrame");
    int index = 0;
    while (index < snapshot.parameters.size() && snapshot.input(0, index).name != name)
        ++index;
    if (index == snapshot.parameters.size()) {
        Inspect::PortRecord port;
        port.name = name;
        snapshot.nodes[0].inputs.append(port);
        snapshot.parameters.append(QVariant());
    }
    snapshot.parameters[index] = true;
}

} // namespace

DryRunSetup readDryRunOptions(const Arguments& arguments, const Document& document)
{
    const Paths paths(document.snapshot);
    const PathResolver resolver(document.name, document.snapshot, paths);
    DryRunSetup setup{document, {}};
    for (const QString& word : arguments.values("slow"))
        readSlow(word, resolver, setup);
    for (const QString& word : arguments.values("fail"))
        readFail(word, resolver, setup);
    for (const QString& word : arguments.values("disable"))
        setup.document.snapshot.nodes[resolver.resolvePass(word)].enabled = false;
    for (const QString& word : arguments.values("parameter"))
        readParameter(word, resolver, paths, setup.document);
    if (arguments.has("staggered"))
        setStaggered(setup.document.snapshot);
    return setup;
}

} // namespace Kestrin::Orv::Program
