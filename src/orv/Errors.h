// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_PROGRAM_ERRORS_H
#define KESTRIN_ORV_PROGRAM_ERRORS_H

#include <Kestrin/Orv/Inspect/Document.h>

#include <QtCore/QStringList>

#include <exception>
#include <utility>

namespace Kestrin::Orv::Program {

/// A command line that a command does not accept.
struct UsageError : std::exception
{
    explicit UsageError(QString what)
        : text(std::move(what))
    {
    }
    QString text; ///< follows "orv COMMAND: "
};

/// A document that cannot be read or has errors, or a name that the document does not have.
struct InputError : std::exception
{
    InputError(QString name, QVector<Inspect::Problem> all)
        : file(std::move(name))
        , problems(std::move(all))
    {
    }
    InputError(QString name, const char* code, const QString& text,
               QStringList names = QStringList())
        : file(std::move(name))
        , problems{{QString::fromLatin1(code), text, {}}}
        , candidates(std::move(names))
    {
    }
    QString file; ///< as Document::name
    QVector<Inspect::Problem> problems;
    QStringList candidates; ///< the names that may be meant
};

/// A failure outside of the documents: a file cannot be written, or another program fails.
struct SystemError : std::exception
{
    explicit SystemError(QString what)
        : text(std::move(what))
    {
    }
    QString text;
};

} // namespace Kestrin::Orv::Program

#endif
