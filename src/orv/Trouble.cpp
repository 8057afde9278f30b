// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Trouble.h"

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

} // namespace

QString shownName(const QString& file)
{
    return file == QLatin1String("-") ? QStringLiteral("<stdin>") : file;
}

QString message(const QString& file, const Inspect::Place& place, const QString& code,
                const QString& text)
{
    QString line = file;
    if (place.line > 0)
        line += QLatin1Char(':') + QString::number(place.line) + QLatin1Char(':')
            + QString::number(place.column);
    return line + QLatin1String(": ") + code + QLatin1String(": ") + text + QLatin1Char('\n');
}

void complain(const QString& text)
{
    writeError(QLatin1String("orv: ") + text + QLatin1Char('\n'));
}

void tell(const BadInput& input, bool json, Output& output)
{
    if (!json) {
        QString text;
        for (const Inspect::Problem& problem : input.problems)
            text += message(input.file, problem.place, problem.code, problem.text);
        writeError(text);
        return;
    }

    QJsonArray problems;
    for (const Inspect::Problem& problem : input.problems) {
        QJsonObject object{{QStringLiteral("file"), input.file},
                           {QStringLiteral("code"), problem.code},
                           {QStringLiteral("text"), problem.text}};
        if (problem.place.line > 0) {
            object.insert(QStringLiteral("line"), problem.place.line);
            object.insert(QStringLiteral("column"), problem.place.column);
        }
        if (!input.candidates.isEmpty())
            object.insert(QStringLiteral("candidates"),
                          QJsonArray::fromStringList(input.candidates));
        problems.append(object);
    }
    output.write(QJsonObject{{QStringLiteral("problems"), problems}});
}

} // namespace Kestrin::Orv::Program
