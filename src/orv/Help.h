// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_PROGRAM_HELP_H
#define KESTRIN_ORV_PROGRAM_HELP_H

#include "Command.h"

namespace Kestrin::Orv::Program {

/// What the program does, and its commands.
QString help();
/// What a command does, its options and an example.
QString help(const Command& command);

} // namespace Kestrin::Orv::Program

#endif
