// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Arguments.h"

#include "Trouble.h"

#include <algorithm>

namespace Kestrin::Orv::Program {

Arguments::Arguments(const Command& command, const QStringList& words)
    : known(allOptions(command))
{
    bool onlyPlain = false;
    for (int i = 0; i < words.size(); ++i) {
        const QString& word = words.at(i);
        if (onlyPlain || !word.startsWith(QLatin1Char('-')) || word.size() == 1) {
            plainWords.append(word);
            continue;
        }
        if (word == QLatin1String("--")) {
            onlyPlain = true;
            continue;
        }

        // --name, --name=value, --name value, -n, -nvalue, -n value
        const bool isLong = word.startsWith(QLatin1String("--"));
        const int equals = isLong ? word.indexOf(QLatin1Char('=')) : -1;
        const Option& option =
            isLong ? find(word.mid(2, equals < 0 ? -1 : equals - 2)) : find(word.at(1));
        const bool attached = isLong ? equals >= 0 : word.size() > 2;
        QString value = isLong ? word.mid(equals + 1) : word.mid(2);
        const QString shown = isLong ? word.left(equals) : word.left(2);
        if (option.value.isEmpty()) {
            if (attached)
                throw Misuse(shown + QLatin1String(" takes no value"));
        } else if (!attached) {
            if (++i == words.size())
                throw Misuse(shown + QLatin1String(" needs a value: ") + option.value);
            value = words.at(i);
        }
        given[option.name].append(value);
    }

    if (help())
        return;
    if (plainWords.size() < command.minArguments)
        throw Misuse(QLatin1String("needs ") + command.usage);
    if (plainWords.size() > command.maxArguments)
        throw Misuse(QLatin1String("does not take ") + plainWords.at(command.maxArguments));
}

const Option& Arguments::find(const QString& name) const
{
    const auto* const option = std::find_if(
        known.begin(), known.end(), [&name](const Option& each) { return each.name == name; });
    if (option == known.end())
        throw Misuse(QLatin1String("has no option --") + name);
    return *option;
}

const Option& Arguments::find(QChar letter) const
{
    const auto* const option =
        std::find_if(known.begin(), known.end(), [letter](const Option& each) {
            return !each.letter.isNull() && each.letter == letter;
        });
    if (option == known.end())
        throw Misuse(QLatin1String("has no option -") + letter);
    return *option;
}

bool Arguments::has(const char* option) const
{
    return given.contains(QString::fromLatin1(option));
}

QString Arguments::value(const char* option) const
{
    const QStringList all = values(option);
    return all.isEmpty() ? QString() : all.last();
}

QStringList Arguments::values(const char* option) const
{
    return given.value(QString::fromLatin1(option));
}

int Arguments::number(const char* option, int minimum, int otherwise) const
{
    if (!has(option))
        return otherwise;
    const int maximum = 1000000;
    bool isNumber = false;
    const int number = value(option).toInt(&isNumber);
    if (!isNumber || number < minimum || number > maximum)
        throw Misuse(QLatin1String("takes a number from ") + QString::number(minimum)
                     + QLatin1String(" to ") + QString::number(maximum) + QLatin1String(" for --")
                     + QLatin1String(option) + QLatin1String(", not ") + value(option));
    return number;
}

QString Arguments::plain(int index) const
{
    return plainWords.value(index, QStringLiteral("-"));
}

} // namespace Kestrin::Orv::Program
