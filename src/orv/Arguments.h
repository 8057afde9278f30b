// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_PROGRAM_ARGUMENTS_H
#define KESTRIN_ORV_PROGRAM_ARGUMENTS_H

#include <QtCore/QHash>
#include <QtCore/QStringList>
#include <QtCore/QVector>

namespace Kestrin::Orv::Program {

struct Command;
struct Option;

/// The command line after the name of the command.
class Arguments
{
public:
    /// Throws a UsageError if the command does not accept these words.
    Arguments(const Command& command, const QStringList& words);

    bool has(const char* option) const;
    /// The value of an option: the last one if the option is repeated, empty without the option.
    QString value(const char* option) const;
    /// All values of an option, in order.
    QStringList values(const char* option) const;
    /// The value of an option as a number; \p defaultValue without the option. Throws a UsageError
    /// if the value is not a number from \p minimum to a million.
    int number(const char* option, int minimum, int defaultValue) const;

    bool json() const { return has("json"); }
    bool help() const { return has("help"); }
    const QStringList& positionals() const { return positionalWords; }
    /// One of the positional arguments; "-" if it is left out.
    QString positional(int index) const;

private:
    void readOptions(const QVector<Option>& known, const QStringList& words);

    QHash<QString, QStringList> given; ///< values of options, by the names of the options
    QStringList positionalWords;
};

} // namespace Kestrin::Orv::Program

#endif
