// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Arguments.h"
#include "Commands.h"
#include "Errors.h"
#include "Help.h"
#include "Messages.h"
#include "Output.h"

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
        return kSuccess;
    } catch (const UsageError& error) {
        printError(command.name,
                   error.text + QLatin1String(" (see orv help ") + QLatin1String(command.name)
                       + QLatin1Char(')'));
    } catch (const InputError& error) {
        printProblems(error, json, output);
    }
    return kError;
}

int run(const QStringList& words, Output& output)
{
    const QString first = words.value(0);
    const QString second = words.value(1);
    if (first == QLatin1String("--version")) {
        output.write(QLatin1String("orv ") + CoreVersions::getVersion() + QLatin1Char('\n'));
        return kSuccess;
    }
    const bool wantsHelp = first == QLatin1String("help") || first == QLatin1String("--help")
        || first == QLatin1String("-h");
    if (wantsHelp && second.isEmpty()) {
        output.write(help());
        return kSuccess;
    }
    const QString name = wantsHelp ? second : first;
    const Command* command = findCommand(name);
    if (!command) {
        printError((name.isEmpty() ? QStringLiteral("missing command")
                                   : QLatin1String("unknown command \"") + name + QLatin1Char('"'))
                   + QLatin1String(" (see orv help)"));
        return kError;
    }
    if (wantsHelp) {
        output.write(help(*command));
        return kSuccess;
    }
    return runCommandLine(*command, words.mid(1), output);
}

/// Opens a replacement for each standard stream that is closed, because another file would take its
/// number. Reading and writing the replacement fail with the same error.
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
    // When the reader of the output has closed the pipe, write() reports an error.
    static_cast<void>(std::signal(SIGPIPE, SIG_IGN));
    // Names of files and nodes are UTF-8 in every locale.
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
    } catch (const SystemError& error) {
        printError(error.text);
    } catch (const std::bad_alloc&) {
        printError(QStringLiteral("out of memory"));
    }
    return kError;
}
