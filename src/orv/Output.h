// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_PROGRAM_OUTPUT_H
#define KESTRIN_ORV_PROGRAM_OUTPUT_H

#include <QtCore/QByteArray>
#include <QtCore/QString>

class QJsonObject;

namespace Kestrin::Orv::Program {

/// Standard output, written in large pieces. Throws a Failure when it cannot be written.
class Output
{
public:
    void write(const QByteArray& bytes);
    void write(const QString& text);
    /// An indented object and a line break.
    void write(const QJsonObject& object);
    /// Writes what is still kept.
    void flush();

private:
    QByteArray kept;
};

/// Puts a file in place once it is complete. Throws a Failure when that fails.
void saveFile(const QString& file, const QByteArray& bytes);

} // namespace Kestrin::Orv::Program

#endif
