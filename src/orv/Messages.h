// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_PROGRAM_MESSAGES_H
#define KESTRIN_ORV_PROGRAM_MESSAGES_H

#include <Kestrin/Orv/Inspect/Document.h>

#include <QtCore/QString>

namespace Kestrin::Orv::Program {

class Output;
struct InputError;

/// "file:line:column: code: text" and a line break; "file: code: text" without a place.
QString messageLine(const QString& file, const Inspect::Place& place, const QString& code,
                    const QString& text);

/// Writes a line to standard error: "orv: " and the text.
void printError(const QString& text);
/// Writes a line to standard error: "orv COMMAND: " and the text.
void printError(const char* command, const QString& text);
/// Writes the problems to standard error, or as a JSON object to the output.
void printProblems(const InputError& error, bool json, Output& output);

} // namespace Kestrin::Orv::Program

#endif
