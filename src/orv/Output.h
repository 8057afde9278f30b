// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_PROGRAM_OUTPUT_H
#define KESTRIN_ORV_PROGRAM_OUTPUT_H

#include <QtCore/QByteArray>
#include <QtCore/QString>

class QJsonObject;

namespace Kestrin::Orv::Program {

/// Standard output, written in large pieces. Throws a SystemError if writing fails.
class Output
{
public:
    void write(const QByteArray& bytes);
    void write(const QString& text);
    /// Writes the object with indentation, and a line break.
    void write(const QJsonObject& object);
    /// Writes the bytes that have not been written yet.
    void flush();

private:
    QByteArray pending;
};

/// Writes a file as a whole: a failure leaves the old file unchanged. A device or a pipe is not
/// replaced but written directly. Throws a SystemError if that fails.
void saveFile(const QString& file, const QByteArray& bytes);

} // namespace Kestrin::Orv::Program

#endif
