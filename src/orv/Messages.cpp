// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Messages.h"

#include "Errors.h"
#include "Output.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonObject>

#include <cstdio>

namespace Kestrin::Orv::Program {

namespace {

void writeError(const QString& text)
{
    const QByteArray bytes = text.toUtf8();
    static_cast<void>(
        std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), stderr));
}

QJsonObject toJson(const Inspect::Problem& problem, const InputError& error)
{
    QJsonObject object{{QStringLiteral("file"), error.file},
                       {QStringLiteral("code"), problem.code},
                       {QStringLiteral("text"), problem.text}};
    if (problem.place.line > 0) {
        object.insert(QStringLiteral("line"), problem.place.line);
        object.insert(QStringLiteral("column"), problem.place.column);
    }
    if (!error.candidates.isEmpty())
        object.insert(QStringLiteral("candidates"), QJsonArray::fromStringList(error.candidates));
    return object;
}

} // namespace

QString messageLine(const QString& file, const Inspect::Place& place, const QString& code,
                    const QString& text)
{
    QString line = file;
    if (place.line > 0)
        line += QLatin1Char(':') + QString::number(place.line) + QLatin1Char(':')
            + QString::number(place.column);
    return line + QLatin1String(": ") + code + QLatin1String(": ") + text + QLatin1Char('\n');
}

void printError(const QString& text)
{
    writeError(QLatin1String("orv: ") + text + QLatin1Char('\n'));
}

void printError(const char* command, const QString& text)
{
    writeError(QLatin1String("orv ") + QLatin1String(command) + QLatin1String(": ") + text
               + QLatin1Char('\n'));
}

void printProblems(const InputError& error, bool json, Output& output)
{
    if (json) {
        QJsonArray problems;
        for (const Inspect::Problem& problem : error.problems)
            problems.append(toJson(problem, error));
        output.write(QJsonObject{{QStringLiteral("problems"), problems}});
        return;
    }
    QString text;
    for (const Inspect::Problem& problem : error.problems)
        text += messageLine(error.file, problem.place, problem.code, problem.text);
    writeError(text);
}

} // namespace Kestrin::Orv::Program
