// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Help.h"

#include "Commands.h"

#include <QtCore/QPair>
#include <QtCore/QStringList>

namespace Kestrin::Orv::Program {

namespace {

/// Rows of two columns.
using Table = QVector<QPair<QString, QString>>;

/// The rows as lines, with the second column aligned.
QString toText(const Table& rows)
{
    int width = 0;
    for (const auto& row : rows)
        width = qMax(width, row.first.size());
    QString text;
    for (const auto& row : rows)
        text += QLatin1String("  ") + row.first.leftJustified(width) + QLatin1String("  ")
            + row.second + QLatin1Char('\n');
    return text;
}

QString optionText(const Option& option)
{
    QString text = QStringLiteral("    ");
    if (option.letter != '\0')
        text = QLatin1Char('-') + QString(QLatin1Char(option.letter)) + QLatin1String(", ");
    text += QLatin1String("--") + QLatin1String(option.name);
    if (option.value)
        text += QLatin1Char(' ') + QLatin1String(option.value);
    return text;
}

QString optionTable(const Command& command)
{
    Table rows;
    for (const Option& option : command.options)
        rows.append({optionText(option), QLatin1String(option.text)});
    return toText(rows);
}

QString exitStatusTable(const Command& command)
{
    Table rows{{QString::number(kSuccess), QLatin1String(command.success)}};
    if (command.found)
        rows.append({QString::number(kFound), QLatin1String(command.found)});
    rows.append({QString::number(kError), QStringLiteral("an error")});
    return toText(rows);
}

} // namespace

QString help()
{
    Table rows;
    for (const Command& command : commands())
        rows.append({QLatin1String(command.name), QLatin1String(command.summary)});
    return QStringLiteral("Usage: orv COMMAND [OPTION...] [FILE]\n"
                          "\n"
                          "Answers questions about render graphs that are stored as documents.\n"
                          "\n"
                          "Commands:\n")
        + toText(rows)
        + QLatin1String(
               "\n"
               "FILE is a document. Without FILE, or if FILE is -, orv reads standard "
               "input.\n"
               "\n"
               "orv help COMMAND describes a command. orv --version prints the version.\n");
}

QString help(const Command& command)
{
    QString text = QLatin1String("Usage: orv ") + QLatin1String(command.name)
        + QLatin1String(" [OPTION...] ") + QLatin1String(command.positionals.usage)
        + QLatin1String("\n\n") + QLatin1String(command.summary) + QLatin1String(".\n");
    const QString details = QLatin1String(command.details);
    if (!details.isEmpty())
        text += QLatin1Char('\n') + details;
    text += QLatin1String("\nOptions:\n") + optionTable(command);
    text += QLatin1String("\nExit status:\n") + exitStatusTable(command);
    text += QLatin1String("\nExample:\n");
    const QStringList lines =
        QString::fromUtf8(command.example).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    for (const QString& line : lines)
        text += QLatin1String("  ") + line + QLatin1Char('\n');
    return text;
}

} // namespace Kestrin::Orv::Program
