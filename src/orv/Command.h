// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_PROGRAM_COMMAND_H
#define KESTRIN_ORV_PROGRAM_COMMAND_H

#include <QtCore/QString>
#include <QtCore/QVector>

namespace Kestrin::Orv::Program {

class Arguments;
class Output;

/// What the program exits with.
enum ExitCode { kFine = 0, kFound = 1, kTrouble = 2 };

/// An option of a command.
struct Option
{
    QString name;           ///< without the dashes
    QString value;          ///< what the help calls its value; empty if it takes none
    QString text;           ///< one line for the help
    QChar letter = QChar(); ///< its short form; null for none
};

/// A command of the program. All that people read about it stands in its source.
struct Command
{
    QString name;
    QString usage;           ///< what follows the name and the options, such as "[FILE]"
    QString summary;         ///< one line
    QString text;            ///< more, in lines; may be empty
    QVector<Option> options; ///< beside --json and --help, which all commands have
    int minArguments;
    int maxArguments;
    QString exitCodes; ///< what 0 and 1 mean
    QString example;   ///< a command line and what it prints, as in a terminal
    int (*run)(const Arguments& arguments, Output& output);
};

/// Every command, in the order of the help.
const QVector<const Command*>& commands();
/// The command of a name; null if there is none.
const Command* findCommand(const QString& name);
/// The options of a command, with those that all have.
QVector<Option> allOptions(const Command& command);

const Command& lintCommand();
const Command& orderCommand();
const Command& explainCommand();
const Command& dotCommand();
const Command& pictureCommand();
const Command& reportCommand();
const Command& diffCommand();
const Command& runCommand();

} // namespace Kestrin::Orv::Program

#endif
