// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_PROGRAM_INPUT_H
#define KESTRIN_ORV_PROGRAM_INPUT_H

#include <Kestrin/Orv/Inspect/Document.h>

namespace Kestrin::Orv::Program {

/// A document that was read.
struct Document
{
    QString name; ///< the name in messages: the file, or <stdin>
    Inspect::Snapshot snapshot;
    Inspect::Places places;
};

/// Reads a document; "-" is standard input. Throws an InputError if the file cannot be read or the
/// document has errors.
Document readInput(const QString& file);

} // namespace Kestrin::Orv::Program

#endif
