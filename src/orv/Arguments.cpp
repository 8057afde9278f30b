// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Arguments.h"

#include "Command.h"
#include "Errors.h"

#include <algorithm>

namespace Kestrin::Orv::Program {

namespace {

/// The option of a word such as "--output" or "-o".
const Option& findOption(const QVector<Option>& known, const QString& word)
{
    const auto* const option =
        std::find_if(known.begin(), known.end(), [&word](const Option& each) {
            return word.startsWith(QLatin1String("--"))
                ? word.mid(2) == QLatin1String(each.name)
                : each.letter != '\0' && word.at(1) == QLatin1Char(each.letter);
        });
    if (option == known.end())
        throw UsageError(QLatin1String("unknown option ") + word);
    return *option;
}

} // namespace

Arguments::Arguments(const Command& command, const QStringList& words)
{
    readOptions(command.options, words);
    if (help())
        return;
    const Positionals& accepted = command.positionals;
    if (positionalWords.size() < accepted.minimum)
        throw UsageError(QLatin1String("missing argument: needs ") + QLatin1String(accepted.usage));
    if (positionalWords.size() > accepted.maximum)
        throw UsageError(QLatin1String("unexpected argument \"")
                         + positionalWords.at(accepted.maximum) + QLatin1Char('"'));
}

void Arguments::readOptions(const QVector<Option>& known, const QStringList& words)
{
    bool onlyPositionals = false;
    for (int i = 0; i < words.size(); ++i) {
        const QString& word = words.at(i);
        if (onlyPositionals || !word.startsWith(QLatin1Char('-')) || word.size() == 1) {
            positionalWords.append(word);
            continue;
        }
        if (word == QLatin1String("--")) {
            onlyPositionals = true;
            continue;
        }

        // --name, --name=value, --name value, -n, -nvalue, -n value
        const bool isLong = word.startsWith(QLatin1String("--"));
        const int equals = isLong ? word.indexOf(QLatin1Char('=')) : -1;
        const QString name = isLong ? word.left(equals) : word.left(2);
        const bool isAttached = isLong ? equals >= 0 : word.size() > 2;
        QString value = isLong ? word.mid(equals + 1) : word.mid(2);
        const Option& option = findOption(known, name);
        if (!option.value) {
            if (isAttached)
                throw UsageError(QLatin1String("option ") + name
                                 + QLatin1String(" takes no value"));
        } else if (!isAttached) {
            if (++i == words.size())
                throw UsageError(QLatin1String("option ") + name + QLatin1String(" needs a value: ")
                                 + QLatin1String(option.value));
            value = words.at(i);
        }
        given[QString::fromLatin1(option.name)].append(value);
    }
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

int Arguments::number(const char* option, int minimum, int defaultValue) const
{
    if (!has(option))
        return defaultValue;
    const int maximum = 1000000;
    bool isNumber = false;
    const int number = value(option).toInt(&isNumber);
    if (!isNumber || number < minimum || number > maximum)
        throw UsageError(QLatin1String("option --") + QLatin1String(option)
                         + QLatin1String(" needs a number from ") + QString::number(minimum)
                         + QLatin1String(" to ") + QString::number(maximum)
                         + QLatin1String(", not \"") + value(option) + QLatin1Char('"'));
    return number;
}

QString Arguments::positional(int index) const
{
    return positionalWords.value(index, QStringLiteral("-"));
}

} // namespace Kestrin::Orv::Program
