// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_PROGRAM_ARGUMENTS_H
#define KESTRIN_ORV_PROGRAM_ARGUMENTS_H

#include "Command.h"

#include <QtCore/QHash>
#include <QtCore/QStringList>

namespace Kestrin::Orv::Program {

/// What stands on the command line behind the name of a command.
class Arguments
{
public:
    /// Throws a Misuse if the command does not take them.
    Arguments(const Command& command, const QStringList& words);

    bool has(const char* option) const;
    /// The value of an option; the last one if it stands there several times, empty without it.
    QString value(const char* option) const;
    /// The values of an option in their order.
    QStringList values(const char* option) const;
    /// The value of an option as a number; \p otherwise without the option. Throws a Misuse if it
    /// is no number from \p minimum to a million.
    int number(const char* option, int minimum, int otherwise) const;

    bool json() const { return has("json"); }
    bool help() const { return has("help"); }
    /// What is no option.
    const QStringList& plain() const { return plainWords; }
    /// What is no option; "-" where nothing stands.
    QString plain(int index) const;

private:
    const Option& find(const QString& name) const;
    const Option& find(QChar letter) const;

    QVector<Option> known;
    QHash<QString, QStringList> given;
    QStringList plainWords;
};

} // namespace Kestrin::Orv::Program

#endif
