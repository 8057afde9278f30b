// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Input.h"

#include "Errors.h"

#include <QtCore/QFile>

#include <unistd.h>

namespace Kestrin::Orv::Program {

Document readInput(const QString& file)
{
    const bool isStandardInput = file == QLatin1String("-");
    const QString name = isStandardInput ? QStringLiteral("<stdin>") : file;
    QFile source(file);
    const bool isOpen = isStandardInput
        ? source.open(STDIN_FILENO, QIODevice::ReadOnly, QFileDevice::DontCloseHandle)
        : source.open(QIODevice::ReadOnly);
    const QByteArray bytes = isOpen ? source.readAll() : QByteArray();
    if (source.error() != QFileDevice::NoError)
        throw InputError(name, "unreadable", source.errorString());

    const Inspect::ReadResult result = Inspect::readDocument(bytes);
    if (!result.problems.isEmpty())
        throw InputError(name, result.problems);
    return {name, result.snapshot, result.places};
}

} // namespace Kestrin::Orv::Program
