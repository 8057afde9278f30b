// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_PROGRAM_COMMAND_H
#define KESTRIN_ORV_PROGRAM_COMMAND_H

#include <QtCore/QVector>

namespace Kestrin::Orv::Program {

class Arguments;
class Output;

/// The exit status of the program.
enum ExitCode { kSuccess = 0, kFound = 1, kError = 2 };

/// An option of a command.
struct Option
{
    const char* name;   ///< without the dashes
    const char* value;  ///< the name of its value in the help; null if it takes none
    const char* text;   ///< one line for the help
    char letter = '\0'; ///< the short form; null for none
};

/// The positional arguments of a command.
struct Positionals
{
    const char* usage; ///< as the help shows them, such as "[FILE]"
    int minimum;       ///< how many there must be
    int maximum;       ///< how many there may be
};

/// A command of the program: the texts of its help, its options, and the function that runs it.
struct Command
{
    const char* name;
    const char* summary; ///< one line
    int (*run)(const Arguments& arguments, Output& output);
    Positionals positionals;
    QVector<Option> options;
    const char* details; ///< complete lines; may be empty
    const char* success; ///< the meaning of exit status 0
    const char* found;   ///< the meaning of exit status 1; null if it does not occur
    const char* example; ///< a command line and its output, as in a terminal
};

} // namespace Kestrin::Orv::Program

#endif
