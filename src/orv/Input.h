// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_PROGRAM_INPUT_H
#define KESTRIN_ORV_PROGRAM_INPUT_H

#include <Kestrin/Orv/Inspect/Document.h>

namespace Kestrin::Orv::Program {

/// A document that was read.
struct Document
{
    QString name; ///< how messages call it
    Inspect::Snapshot snapshot;
    Inspect::Places places;
};

/// Reads a document; "-" is standard input. Throws a BadInput if there is anything wrong with it.
Document readInput(const QString& file);

} // namespace Kestrin::Orv::Program

#endif
