// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_PROGRAM_TROUBLE_H
#define KESTRIN_ORV_PROGRAM_TROUBLE_H

#include <Kestrin/Orv/Inspect/Document.h>

#include <QtCore/QStringList>

#include <exception>
#include <utility>

namespace Kestrin::Orv::Program {

class Output;

/// A command line that a command does not take.
struct Misuse : std::exception
{
    explicit Misuse(QString what)
        : text(std::move(what))
    {
    }
    QString text; ///< goes on from "orv COMMAND: "
};

/// Something outside the documents that failed: a file that cannot be written, a missing program.
struct Failure : std::exception
{
    explicit Failure(QString what)
        : text(std::move(what))
    {
    }
    QString text;
};

/// What is wrong with a file that was to be read, or with a name that it does not hold.
struct BadInput : std::exception
{
    BadInput(QString name, QVector<Inspect::Problem> all)
        : file(std::move(name))
        , problems(std::move(all))
    {
    }
    BadInput(QString name, const char* code, const QString& text, QStringList names = QStringList())
        : file(std::move(name))
        , problems{{QString::fromLatin1(code), text, {}}}
        , candidates(std::move(names))
    {
    }
    QString file; ///< as shownName() has it
    QVector<Inspect::Problem> problems;
    QStringList candidates; ///< what may have been meant
};

/// How messages call a file: by its name, or <stdin>.
QString shownName(const QString& file);

/// "file:line:column: code: text"; without a place, "file: code: text".
QString message(const QString& file, const Inspect::Place& place, const QString& code,
                const QString& text);

/// Writes a line on standard error: "orv: " and the text.
void complain(const QString& text);
/// Tells what is wrong: on standard error, or as JSON on the output.
void tell(const BadInput& input, bool json, Output& output);

} // namespace Kestrin::Orv::Program

#endif
