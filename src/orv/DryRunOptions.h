// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_PROGRAM_DRYRUNOPTIONS_H
#define KESTRIN_ORV_PROGRAM_DRYRUNOPTIONS_H

#include "DryRun.h"

namespace Kestrin::Orv::Program {

class Arguments;

/// Applies the options --slow, --fail, --disable, --parameter and --staggered to a document. Throws
/// a UsageError for an option that it cannot read, and an InputError for a name that the document
/// does not have.
DryRunSetup readDryRunOptions(const Arguments& arguments, const Document& document);

} // namespace Kestrin::Orv::Program

#endif
