// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Arguments.h"
#include "Command.h"
#include "Help.h"
#include "Output.h"
#include "Trouble.h"

#include <Kestrin/Orv/Core.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QTextCodec>

#include <csignal>
#include <new>

#include <fcntl.h>
#include <unistd.h>

using namespace Kestrin::Orv;
using namespace Kestrin::Orv::Program;

namespace {

int runCommandLine(const Command& command, const QStringList& words, Output& output)
{
    bool json = false;
    try {
        const Arguments arguments(command, words);
        json = arguments.json();
        if (!arguments.help())
            return command.run(arguments, output);
        output.write(help(command));
        return kFine;
    } catch (const Misuse& misuse) {
        complain(command.name + QLatin1Char(' ') + misuse.text + QLatin1String(" (see orv help ")
                 + command.name + QLatin1Char(')'));
    } catch (const BadInput& input) {
        tell(input, json, output);
    }
    return kTrouble;
}

int run(const QStringList& words, Output& output)
{
    const QString first = words.value(0);
    const QString second = words.value(1);
    if (first == QLatin1String("--version")) {
        output.write(QLatin1String("orv ") + CoreVersions::getVersion() + QLatin1Char('\n'));
        return kFine;
    }
    const bool helpWanted = first == QLatin1String("help") || first == QLatin1String("--help")
        || first == QLatin1String("-h");
    if (helpWanted && second.isEmpty()) {
        output.write(help());
        return kFine;
    }
    const QString name = helpWanted ? second : first;
    const Command* command = findCommand(name);
    if (!command) {
        complain((name.isEmpty() ? QStringLiteral("needs a command")
                                 : QLatin1String("has no command ") + name)
                 + QLatin1String(" (see orv help)"));
        return kTrouble;
    }
    if (helpWanted) {
        output.write(help(*command));
        return kFine;
    }
    return runCommandLine(*command, words.mid(1), output);
}

/// Where a standard stream is closed, another file would take its number. What stands in answers
/// reading and writing with the same error.
void keepStandardStreams()
{
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (fcntl(stream, F_GETFD) == -1)
            open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY);
    }
}

} // namespace

int main(int argc, char** argv)
{
    keepStandardStreams();
    // A reader that has gone is an error of write(), not the end.
    static_cast<void>(std::signal(SIGPIPE, SIG_IGN));
    // Names of files and in graphs are UTF-8 whatever the locale says.
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));
    QStringList words;
    for (int i = 1; i < argc; ++i)
        words.append(QString::fromUtf8(argv[i]));
    const QCoreApplication application(argc, argv);

    try {
        Output output;
        const int code = run(words, output);
        output.flush();
        return code;
    } catch (const Failure& failure) {
        complain(failure.text);
    } catch (const std::bad_alloc&) {
        complain(QStringLiteral("out of memory"));
    }
    return kTrouble;
}
