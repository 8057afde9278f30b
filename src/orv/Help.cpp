// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Help.h"

#include <QtCore/QStringList>

namespace Kestrin::Orv::Program {

namespace {

QString optionText(const Option& option)
{
    QString text = QStringLiteral("  ");
    text += option.letter.isNull() ? QStringLiteral("    ")
                                   : QLatin1Char('-') + option.letter + QLatin1String(", ");
    text += QLatin1String("--") + option.name;
    if (!option.value.isEmpty())
        text += QLatin1Char(' ') + option.value;
    return text;
}

/// Two columns, the second one aligned.
QString table(const QVector<QPair<QString, QString>>& rows)
{
    int width = 0;
    for (const auto& row : rows)
        width = qMax(width, row.first.size());
    QString text;
    for (const auto& row : rows)
        text +=
            row.first.leftJustified(width) + QLatin1String("  ") + row.second + QLatin1Char('\n');
    return text;
}

} // namespace

const QVector<const Command*>& commands()
{
    static const QVector<const Command*> all{&lintCommand(), &orderCommand(),   &explainCommand(),
                                             &dotCommand(),  &pictureCommand(), &reportCommand(),
                                             &diffCommand(), &runCommand()};
    return all;
}

const Command* findCommand(const QString& name)
{
    for (const Command* command : commands()) {
        if (command->name == name)
            return command;
    }
    return nullptr;
}

QVector<Option> allOptions(const Command& command)
{
    return command.options
        + QVector<Option>{
            {QStringLiteral("json"), {}, QStringLiteral("write one JSON object"), {}},
            {QStringLiteral("help"), {}, QStringLiteral("show this help"), QLatin1Char('h')}};
}

QString help()
{
    QVector<QPair<QString, QString>> rows;
    for (const Command* command : commands())
        rows.append({QLatin1String("  ") + command->name, command->summary});
    return QStringLiteral("Usage: orv COMMAND [OPTION...] [FILE]\n"
                          "\n"
                          "Answers questions about render graphs that are written as documents.\n"
                          "\n"
                          "Commands:\n")
        + table(rows)
        + QLatin1String("\n"
                        "FILE is a document; without it, or for -, standard input is read.\n"
                        "\n"
                        "orv help COMMAND tells more; orv --version tells the version.\n");
}

QString help(const Command& command)
{
    QVector<QPair<QString, QString>> rows;
    const QVector<Option> options = allOptions(command);
    for (const Option& option : options)
        rows.append({optionText(option), option.text});
    QString text = QLatin1String("Usage: orv ") + command.name + QLatin1String(" [OPTION...] ")
        + command.usage + QLatin1String("\n\n") + command.summary + QLatin1String(".\n");
    if (!command.text.isEmpty())
        text += QLatin1Char('\n') + command.text;
    text += QLatin1String("\nOptions:\n") + table(rows);
    text +=
        QLatin1String("\nExit status: ") + command.exitCodes + QLatin1String(", 2 for trouble.\n");
    text += QLatin1String("\nExample:\n");
    const QStringList lines = command.example.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    for (const QString& line : lines)
        text += QLatin1String("  ") + line + QLatin1Char('\n');
    return text;
}

} // namespace Kestrin::Orv::Program
